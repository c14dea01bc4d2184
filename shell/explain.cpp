#include "shell/explain.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "host/ascii_case.h"
#include "report/position.h"
#include "rng/mr_functions.h"

namespace shell {

namespace {

constexpr char kCommand[] = "explain";
// As far as a position is looked for: some hundredths of a second.
constexpr std::uint64_t kSearched = std::uint64_t{1} << 22;

std::string grouped(std::uint64_t n) {
  std::string digits = std::to_string(n);
  for (std::size_t i = digits.size(); i > 3;) {
    i -= 3;
    digits.insert(i, 1, ',');
  }
  return digits;
}

std::string counted(std::uint64_t n, char const* what) {
  return fmt::format("{} {}{}", grouped(n), what, n == 1 ? "" : "s");
}

// Where a stream stands in its substream, as far as that can be found.
std::optional<report::Position> positionOf(randstream const& stream) {
  try {
    std::shared_ptr<randstream> const start(
        mrCreateRNGStream(stream.generatorType(), stream.numStreams(), stream.streamIndex(),
                          stream.seed(), nullptr, 0));
    if (stream.getSubstream() != 0) start->setSubstream(stream.getSubstream());
    return report::positionBehind(*stream.clone(), start, kSearched);
  } catch (std::exception const&) {
    return std::nullopt;  // not one that can be made anew: the legacy stream
  }
}

// Uniforms that the values of a call are made of; the others it drew were rejected, decided about a
// rejection, or were left over at its end.
std::uint64_t usedUniforms(std::string_view function, randstream const& stream,
                           std::uint64_t values, bool pending, std::uint64_t drawn) {
  if (function != "randn") return drawn;
  std::string_view const method = stream.getRandnAlg();
  if (ascii_case::equal(method, "ziggurat")) return 2 * values;
  if (ascii_case::equal(method, "polar")) {
    std::uint64_t const fresh = values - (pending && values > 0 ? 1 : 0);
    return 2 * ((fresh + 1) / 2);
  }
  return drawn;
}

}  // namespace

std::size_t explainedFrom(std::string_view source) {
  std::string_view const command = kCommand;
  std::size_t const begin = source.find_first_not_of(" \t");
  if (begin == std::string_view::npos || !source.substr(begin).starts_with(command)) {
    return std::string_view::npos;
  }
  std::size_t const behind = begin + command.size();
  std::size_t const from = source.find_first_not_of(" \t", behind);
  if (from == behind || from == std::string_view::npos) return std::string_view::npos;
  char const next = source[from];
  bool const isAssignment = next == '=' && (from + 1 == source.size() || source[from + 1] != '=');
  return isAssignment || next == '(' || next == '\n' || next == ';' || next == ','
             ? std::string_view::npos
             : from;
}

struct Explanation::Watched {
  explicit Watched(Named named)
      : name(std::move(named.name)),
        object(std::move(named.object)),
        stream(streamBehind(object.get())),
        before(positionOf(*stream)),
        start(stream->drawCounts()) {}

  bool isAlive() const { return streamBehind(object.get()) != nullptr; }

  std::string name;
  txArrayPtr object;  // keeps the stream, unless it is deleted
  randstream const* stream;
  std::optional<report::Position> before;
  randstream::DrawCounts start;
  bool wasCalled = false;
};

Explanation::Explanation(std::vector<Named> streams) {
  for (Named& named : streams) {
    if (std::ranges::find(streams_, streamBehind(named.object.get()), &Watched::stream) ==
        streams_.end())
      streams_.emplace_back(std::move(named));
  }
}

Explanation::~Explanation() = default;

void Explanation::called(Call const& call) {
  randstream const& stream = call.stream;
  auto const found = std::ranges::find_if(streams_, [&](Watched const& watched) {
    return watched.isAlive() && watched.stream == &stream;
  });
  if (found != streams_.end()) found->wasCalled = true;
  randstream::DrawCounts const& now = stream.drawCounts();
  std::uint64_t const drawn = now.uniforms - call.before.uniforms;
  std::uint64_t const normals = now.normals - call.before.normals;
  std::uint64_t const passed = now.passedOver - call.before.passedOver;
  std::string what;
  if (call.name == "advance") {
    what = fmt::format("jumped over {}", counted(passed, "draw"));
  } else if (call.name == "reset") {
    what = "went back to the start of its seed";
  } else if (drawn == 0 && normals == 0 && !call.hadPendingNormal) {
    what = "drew nothing";
  } else {
    txArray const* const result = call.result;
    std::uint64_t const values = result ? result->numel() * (result->isComplex() ? 2 : 1) : 0;
    std::uint64_t const used =
        std::min(drawn, usedUniforms(call.name, stream, values, call.hadPendingNormal, drawn));
    what = counted(values, "value");
    if (call.name == "randn") what += fmt::format(" by {}", stream.getRandnAlg());
    if (normals > 0) {
      what += fmt::format(": {} drawn, of the generator's own", counted(normals, "normal"));
    } else {
      what += fmt::format(": {} drawn, {} used, {} discarded", counted(drawn, "uniform"),
                          grouped(used), grouped(drawn - used));
    }
    if (stream.pendingNormal()) what += "; one normal waits for the next call";
  }
  lines_.push_back(fmt::format("  {:<9} {}  [{}]", call.name, what,
                               found != streams_.end()
                                   ? found->name
                                   : fmt::format("another stream: {}", stream.generatorType())));
}

std::string Explanation::text() const {
  std::string out;
  for (std::string const& line : lines_) out += line + '\n';
  if (lines_.empty()) out += "  nothing was drawn\n";
  for (Watched const& watched : streams_) {
    if (!watched.isAlive()) {
      if (watched.wasCalled) out += fmt::format("  {} is gone\n", watched.name);
      continue;
    }
    randstream const& stream = *watched.stream;
    randstream::DrawCounts const& now = stream.drawCounts();
    bool const moved = now.moves != watched.start.moves;
    std::uint64_t const drawn = now.drawn() - watched.start.drawn();
    if (drawn == 0 && !moved) continue;
    auto position = positionOf(stream);
    // Where drawing alone has brought it is known from where it came.
    if (!position && watched.before && !moved && now.normals == watched.start.normals &&
        stream.fullPrecision()) {
      position = watched.before;
      position->draws += drawn;
    }
    out += fmt::format("  {} ({}, seed {}", watched.name, stream.generatorType(), stream.seed());
    if (stream.numStreams() > 1) {
      out += fmt::format(", stream {} of {}", stream.streamIndex() + 1, stream.numStreams());
    }
    if (stream.getSubstream() != 0) out += fmt::format(", substream {}", stream.getSubstream() + 1);
    auto const place = [](report::Position const& at) {
      return grouped(at.draws) + (at.andAHalf ? " 1/2" : "");
    };
    if (!position) {
      out += "): how far it is from its start is unknown\n";
      continue;
    }
    out += fmt::format(") stands {} {} from {} start", place(*position),
                       position->draws == 1 && !position->andAHalf ? "draw" : "draws",
                       stream.getSubstream() == 0 ? "its" : "the substream's");
    out += watched.before ? fmt::format(", before {}\n", place(*watched.before)) : "\n";
  }
  return out;
}

}  // namespace shell
