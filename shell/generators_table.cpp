#include "shell/generators_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

#include "rng/mr_functions.h"
#include "rng/randstream.h"

namespace shell {

namespace {

struct Row {
  char const* name;
  bool hasSubstreams;
  char const* normals;
  char const* period;
};

constexpr bool kSingle = false;
constexpr bool kSubstreams = true;
constexpr Row kRows[] = {
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, period) \
  {#name, k##family, normals, period},
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};

std::string powerOfTwo(std::uint64_t log2) { return fmt::format("2^{}", log2); }

// The time of the quickest of a few jumps over 2^40 draws.
std::string jumpCost(randstream& stream) {
  using Clock = std::chrono::steady_clock;
  Clock::duration best = Clock::duration::max();
  for (int i = 0; i < 5; ++i) {
    auto const start = Clock::now();
    stream.advance(std::uint64_t{1} << 40);
    best = std::min(best, Clock::now() - start);
  }
  return fmt::format("{:.2g} us", std::chrono::duration<double, std::micro>(best).count());
}

std::vector<std::string> cellsOf(Row const& row) {
  std::unique_ptr<randstream> const stream(mrCreateRNGStream(row.name, 1, 0, 0, nullptr, 0));
  std::string const normals = *row.normals ? row.normals : "-";
  if (!row.hasSubstreams) return {row.name, row.period, "1", "-", "draw by draw", normals};
  randstream::streamParamsStruct parameters{};
  stream->getStreamParameters(&parameters);
  return {row.name,
          row.period,
          fmt::format("{} long", powerOfTwo(parameters.log2StreamLen)),
          fmt::format("{} long", powerOfTwo(parameters.log2SubstreamLen)),
          jumpCost(*stream),
          normals};
}

}  // namespace

std::string generatorsTable(int width) {
  std::vector<std::vector<std::string>> table{
      {"generator", "period", "streams", "substreams", "jump", "own normals"}};
  for (Row const& row : kRows) table.push_back(cellsOf(row));
  std::vector<std::size_t> widths(table.front().size(), 0);
  for (auto const& line : table) {
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
  }
  std::string out;
  for (auto const& line : table) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i)
      text += fmt::format("  {:<{}}", line[i], widths[i]);
    text.erase(text.find_last_not_of(' ') + 1);
    out += text.substr(0, std::max<std::size_t>(static_cast<std::size_t>(width), 80)) + '\n';
  }
  return out;
}

}  // namespace shell
