#include "shell/generators_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

#include "rng/mr_functions.h"
#include "rng/randstream.h"
#include "tfl_rng/generator_catalogue.h"

namespace shell {

namespace {

// 2^61, or 2^64 - 2, or the number itself.
std::string countText(std::uint64_t count) {
  std::uint64_t const missing = std::uint64_t{0} - count;
  if (count != 0 && missing < 10) return fmt::format("2^64 - {}", missing);
  return std::has_single_bit(count) && count > 1 ? fmt::format("2^{}", std::countr_zero(count))
                                                 : fmt::format("{}", count);
}

// The time of a jump whose length has many bits set, the quickest of a few.
std::string jumpCost(randstream& stream) {
  using Clock = std::chrono::steady_clock;
  constexpr int kJumps = 20;
  constexpr std::uint64_t kLength = 0x1E3779B97F4A7C15;
  Clock::duration best = Clock::duration::max();
  for (int i = 0; i < 5; ++i) {
    auto const start = Clock::now();
    for (int j = 0; j < kJumps; ++j) stream.advance(kLength);
    best = std::min(best, Clock::now() - start);
  }
  double const nanoseconds = std::chrono::duration<double, std::nano>(best).count() / kJumps;
  return nanoseconds < 1000 ? fmt::format("{:.0f} ns", nanoseconds)
                            : fmt::format("{:.0f} us", nanoseconds / 1000);
}

std::vector<std::string> cellsOf(tfl_rng::Generator const& row) {
  auto const orNone = [](char const* text) { return *text ? text : "-"; };
  std::string const shortName = orNone(row.traits.shortName);
  std::string const normals = orNone(row.nativeNormals);
  if (!row.hasSubstreams()) return {row.name, shortName, row.period, "1", "1", "-", normals};
  std::unique_ptr<randstream> const stream(mrCreateRNGStream(row.name, 1, 0, 0, nullptr, 0));
  randstream::streamParamsStruct parameters{};
  stream->getStreamParameters(&parameters);
  return {row.name,
          shortName,
          row.period,
          countText(parameters.numStreams),
          countText(parameters.numSubstreams),
          jumpCost(*stream),
          normals};
}

}  // namespace

std::string generatorsTable() {
  std::vector<std::vector<std::string>> table{
      {"generator", "short name", "period", "streams", "substreams", "jump", "normals"}};
  for (tfl_rng::Generator const& row : tfl_rng::generators()) table.push_back(cellsOf(row));
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
    out += text + '\n';
  }
  return out;
}

}  // namespace shell
