#include "shell/explain.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "host/ascii_case.h"
#include "report/position.h"
#include "rng/mr_functions.h"
#include "shell/counting_view.h"

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
std::optional<report::Position> positionOf(randstream& stream) {
  try {
    std::shared_ptr<randstream> const start(
        mrCreateRNGStream(stream.generatorType(), stream.numStreams(), stream.streamIndex(),
                          stream.seed(), nullptr, 0));
    if (stream.getSubstream() != 0) start->setSubstream(stream.getSubstream());
    return report::positionBehind(stream, start, kSearched);
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
        before(positionOf(*mrGetCPPRandStreamFromTxArray(object.get()))),
        counted(*mrGetCPPRandStreamFromTxArray(object.get())),
        pending(counted.stream().pendingNormal()) {}

  std::string name;
  txArrayPtr object;  // keeps the stream, unless it is deleted
  std::optional<report::Position> before;
  CountedStream counted;
  bool pending;
  DrawCounts told;  // by lines so far
};

Explanation::Explanation(std::vector<Named> streams) {
  for (Named& named : streams) {
    randstream const* const stream = mrGetCPPRandStreamFromTxArray(named.object.get());
    bool const known = std::ranges::any_of(
        streams_, [&](auto const& watched) { return &watched->counted.stream() == stream; });
    if (!known) streams_.push_back(std::make_unique<Watched>(std::move(named)));
  }
}

Explanation::~Explanation() = default;

void Explanation::called(std::string_view name, randstream& stream, txArray const* result) {
  auto const found = std::ranges::find_if(streams_, [&](auto const& watched) {
    return watched->counted.isAlive() && &watched->counted.stream() == &stream;
  });
  if (found == streams_.end()) {
    lines_.push_back(
        fmt::format("  {:<9} from a stream that is new here and was not counted", name));
    return;
  }
  Watched& watched = **found;
  DrawCounts const now = watched.counted.counts();
  std::uint64_t const drawn = now.uniforms - watched.told.uniforms;
  std::uint64_t const normals = now.normals - watched.told.normals;
  std::uint64_t const passed = now.passedOver - watched.told.passedOver;
  std::string what;
  if (name == "advance") {
    what = passed || drawn == 0 ? fmt::format("jumped over {}", counted(passed, "draw"))
                                : fmt::format("drew and discarded {}", counted(drawn, "uniform"));
  } else if (name == "reset") {
    what = "went back to the start of its seed";
  } else {
    std::uint64_t const values = result ? result->numel() * (result->isComplex() ? 2 : 1) : 0;
    std::uint64_t const used =
        std::min(drawn, usedUniforms(name, stream, values, watched.pending, drawn));
    what = counted(values, "value");
    if (name == "randn") what += fmt::format(" by {}", stream.getRandnAlg());
    if (normals > 0) {
      what += fmt::format(": {} drawn, of the generator's own", counted(normals, "normal"));
    } else {
      what += fmt::format(": {} drawn, {} used, {} discarded", counted(drawn, "uniform"),
                          grouped(used), grouped(drawn - used));
    }
    if (stream.pendingNormal()) what += "; one normal waits for the next call";
  }
  watched.told = now;
  watched.pending = stream.pendingNormal();
  lines_.push_back(fmt::format("  {:<9} {}  [{}]", name, what, watched.name));
}

std::string Explanation::text() {
  std::string out;
  for (std::string const& line : lines_) out += line + '\n';
  if (lines_.empty()) out += "  nothing was drawn\n";
  for (auto const& watched : streams_) {
    DrawCounts const counts = watched->counted.counts();  // looking for the place counts too
    if (counts.uniforms == 0 && counts.normals == 0 && counts.passedOver == 0 && !counts.moved) {
      continue;
    }
    if (!watched->counted.isAlive()) {
      out += fmt::format("  {} is gone\n", watched->name);
      continue;
    }
    randstream& stream = watched->counted.stream();
    auto position = positionOf(stream);
    // Where drawing alone has brought it is known from where it came.
    if (!position && watched->before && !counts.moved && counts.normals == 0 &&
        stream.fullPrecision()) {
      position = watched->before;
      position->draws += counts.uniforms + counts.passedOver;
    }
    out += fmt::format("  {} ({}, seed {}", watched->name, stream.generatorType(), stream.seed());
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
    out += watched->before ? fmt::format(", before {}\n", place(*watched->before)) : "\n";
  }
  streams_.clear();
  return out;
}

}  // namespace shell
