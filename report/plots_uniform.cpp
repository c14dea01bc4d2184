// Single uniform values: their density, their distribution function, their bits.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/chances.h"
#include "report/plots.h"
#include "statistics/p_values.h"

namespace report {

namespace {

constexpr std::uint64_t kDraws = std::uint64_t{1} << 24;

std::vector<std::uint64_t> countInBins(Subject const& subject, std::size_t bins) {
  std::vector<std::uint64_t> counts(bins);
  auto const stream = subject.stream();
  eachBlock(*stream, kDraws, [&](double const* values, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i) ++counts[binOf(values[i], bins)];
  });
  return counts;
}

}  // namespace

Finding measureDensity(Subject const& subject) {
  constexpr std::size_t kBins = 256;
  auto const counts = countInBins(subject, kBins);
  double const expected = static_cast<double>(kDraws) / kBins;
  double const spread = std::sqrt((1 - 1.0 / kBins) / expected);  // of a relative frequency
  std::vector<double> relative;
  double largest = 0;
  for (std::uint64_t const count : counts) {
    relative.push_back(static_cast<double>(count) / expected);
    largest = std::max(largest, std::fabs(relative.back() - 1));
  }
  Finding finding;
  finding.tests = {
      {"density, all bins", chiSquareP(chiSquareOfEqualCounts(counts, expected), kBins - 1)},
      {"density, worst bin", smallestOf(normalP(largest / spread), kBins)}};
  finding.good = fmt::format("Flat: no bin is off by more than {} %.", readable(100 * largest, 2));
  finding.bad = fmt::format("Not flat: a bin is off by {} %.", readable(100 * largest, 2));
  finding.note = fmt::format("{} values in {} bins; 1 is the share that each bin should have.",
                             readable(static_cast<double>(kDraws)), kBins);
  finding.draw = [=](Frame const& frame) {
    double const limit = spread * largestNormalLimit(frame.level, kBins);
    double const reach = 1.35 * std::max(limit, std::min(largest, 4 * limit));
    Svg svg(frame.width, 280, "Density of uniform values, bin by bin, with the expected band");
    Chart chart(svg, frame.plot(280), linearAxis(0, 1, "value"),
                linearAxis(1 - reach, 1 + reach, "frequency relative to a flat density", 4));
    chart.band(1 - limit, 1 + limit, "band");
    chart.band(1 - 1.96 * spread, 1 + 1.96 * spread, "core");
    chart.frame();
    chart.horizontal(1, "zero");
    chart.stairs(relative, "data");
    chart.label(1, 1 + limit, "limit of the verdict", Anchor::end, -4, -5);
    chart.label(1, 1 - limit, "inner band: 19 of 20 bins", Anchor::end, -4, 14);
    return std::move(svg).finish();
  };
  return finding;
}

Finding measureEcdf(Subject const& subject) {
  constexpr std::size_t kGrid = std::size_t{1} << 16;
  constexpr std::size_t kShownStep = kGrid / 1024;
  auto const counts = countInBins(subject, kGrid);
  auto const n = static_cast<double>(kDraws);
  std::vector<Point> shown{{0, 0}};
  Point worst{0, 0};
  std::uint64_t below = 0;
  for (std::size_t i = 0; i < kGrid; ++i) {
    below += counts[i];
    double const at = static_cast<double>(i + 1) / kGrid;
    double const gap = static_cast<double>(below) / n - at;
    if (std::fabs(gap) > std::fabs(worst.y)) worst = {at, gap};
    if ((i + 1) % kShownStep == 0) shown.push_back({at, gap});
  }
  Finding finding;
  finding.tests = {{"distribution", statistics::kolmogorovTail(std::fabs(worst.y), kDraws)}};
  finding.good = fmt::format("On the diagonal: the widest gap is {}.", readable(worst.y, 2));
  finding.bad = fmt::format("Off the diagonal: the widest gap is {}.", readable(worst.y, 2));
  finding.note =
      "The share of values up to x, minus x. A perfect source wanders like this and returns to 0 "
      "at 1; the band is that of Kolmogorov and Smirnov.";
  finding.sketch = [=](Svg& svg, Box box, double level) {
    double const limit = kolmogorovLimit(level, kDraws);
    Chart chart(svg, box, linearAxis(0, 1, ""), linearAxis(-1.3 * limit, 1.3 * limit, ""));
    chart.band(-limit, limit, "band");
    double const usual = kolmogorovLimit(0.05, kDraws);
    chart.band(-usual, usual, "core");
    chart.horizontal(0, "zero");
    std::vector<Point> thin;
    for (std::size_t i = 0; i < shown.size(); i += 8) thin.push_back(shown[i]);
    chart.line(thin, "data");
  };
  finding.draw = [=](Frame const& frame) {
    double const limit = kolmogorovLimit(frame.level, kDraws);
    double const usual = kolmogorovLimit(0.05, kDraws);
    double const reach = 1.3 * std::max(limit, std::min(std::fabs(worst.y), 6 * limit));
    Svg svg(frame.width, 280, "Empirical distribution function minus x, with the expected band");
    Chart chart(svg, frame.plot(280, 66), linearAxis(0, 1, "x"),
                linearAxis(-reach, reach, "share of values ≤ x, minus x", 4));
    chart.band(-limit, limit, "band");
    chart.band(-usual, usual, "core");
    chart.frame();
    chart.line(shown, "data");
    Point const tip[] = {worst};
    chart.dots(tip, std::fabs(worst.y) > limit ? "dot bad" : "dot");
    chart.label(worst.x, std::clamp(worst.y, -reach, reach), "widest gap",
                worst.x > 0.5 ? Anchor::end : Anchor::start, worst.x > 0.5 ? -9 : 9,
                worst.y > 0 ? -4 : 13);
    chart.label(1, limit, "limit of the verdict", Anchor::end, -4, -5);
    chart.label(1, -limit, "inner band: 19 of 20 curves", Anchor::end, -4, 14);
    return std::move(svg).finish();
  };
  return finding;
}

Finding measureBits(Subject const& subject) {
  constexpr int kBits = 53;
  constexpr std::uint64_t kBitDraws = std::uint64_t{1} << 22;
  constexpr std::size_t kShown = 200;
  int const free = subject.traits.freeBits;
  std::vector<std::uint64_t> ones(kBits);
  std::vector<std::uint64_t> changes(kBits);
  std::vector<std::uint64_t> first;
  std::uint64_t last = 0;
  auto const stream = subject.stream();
  eachBlock(*stream, kBitDraws, [&](double const* values, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i) {
      auto const word = static_cast<std::uint64_t>(values[i] * 0x1p53);
      std::uint64_t const changed = word ^ last;
      last = word;
      if (first.size() < kShown) first.push_back(word);
      for (int bit = 0; bit < kBits; ++bit) {
        ones[bit] += word >> bit & 1;
        changes[bit] += changed >> bit & 1;
      }
    }
  });
  auto const score = [](std::uint64_t count) {
    return (2 * static_cast<double>(count) - static_cast<double>(kBitDraws)) /
           std::sqrt(static_cast<double>(kBitDraws));
  };
  // From the most significant bit on.
  std::vector<double> frequency;
  double worst = 0;
  double worstChange = 0;
  int worstBit = 1;
  for (int bit = kBits - 1; bit >= 0; --bit) {
    frequency.push_back(score(ones[bit]));
    if (kBits - bit > free) continue;
    if (std::fabs(frequency.back()) > std::fabs(worst)) {
      worst = frequency.back();
      worstBit = kBits - bit;
    }
    worstChange = std::max(worstChange, std::fabs(score(changes[bit])));
  }
  Finding finding;
  finding.tests = {{"bits, ones", smallestOf(normalP(worst), free)},
                   {"bits, changes", smallestOf(normalP(worstChange), free)}};
  finding.good = fmt::format("All {} bits are fair coins; bit {} strays the most.", free, worstBit);
  finding.bad = fmt::format("Bit {} is no fair coin, or remembers its last value.", worstBit);
  finding.note = fmt::format(
      "Left: the bits of the first values, the most significant on top, 1 dark. Right: how often "
      "each bit is 1 in {} values, in standard deviations.{}",
      readable(static_cast<double>(kBitDraws)),
      free < kBits ? fmt::format(" A value of this generator has {} free bits; what lies below "
                                 "them is fixed.",
                                 free)
                   : "");
  finding.draw = [=](Frame const& frame) {
    double const limit = largestNormalLimit(frame.level, free);
    double const gap = 44;
    double const right = frame.isNarrow() ? 118 : 190;
    Box const raster{30, 34, frame.width - 30 - gap - right, 53 * 6};
    double const height = raster.y + raster.height + 44;
    Svg svg(frame.width, height, "Bits of the first values, and how often each bit is 1");
    std::size_t const columns = frame.isNarrow() ? 60 : kShown;
    double const cell = raster.width / static_cast<double>(columns);
    Path dark;
    for (int row = 0; row < kBits; ++row) {
      for (std::size_t column = 0; column < columns;) {
        auto const isOne = [&](std::size_t at) {
          return at < columns && (first[at] >> (kBits - 1 - row) & 1) != 0;
        };
        std::size_t const from = column++;
        if (!isOne(from)) continue;
        while (isOne(column)) ++column;
        dark.box(raster.x + cell * static_cast<double>(from), raster.y + 6 * row,
                 cell * static_cast<double>(column - from), 6);
      }
    }
    svg.path(dark.commands(), "ink");
    svg.text(0, 22, "bit", "name");
    for (int const bit : {1, 10, 20, 30, 40, 53}) {
      svg.text(raster.x - 6, raster.y + 6 * bit + 1, fmt::format("{}", bit), "tick", Anchor::end);
    }
    svg.text(raster.x + raster.width, raster.y + raster.height + 18,
             fmt::format("the first {} values", columns), "name", Anchor::end);
    double const reach = 1.4 * limit;
    Chart chart(svg, {frame.width - right - 8, 34, right, raster.height},
                linearAxis(-reach, reach, "standard deviations", frame.isNarrow() ? 3 : 5),
                Axis{Scale(Scale::Kind::linear, kBits + 0.5, 0.5), "", {}});
    double const top = chart.y(0.5);
    double const bottom = chart.y(kBits + 0.5);
    svg.rectangle(chart.x(-limit), top, chart.x(limit) - chart.x(-limit), bottom - top, "band");
    svg.rectangle(chart.x(-1.96), top, chart.x(1.96) - chart.x(-1.96), bottom - top, "core");
    chart.frame();
    svg.line(chart.x(0), top, chart.x(0), bottom, "zero");
    svg.text(chart.x(0), 24, "how often 1", "name", Anchor::middle);
    std::vector<Point> inside;
    std::vector<Point> outside;
    for (int bit = 1; bit <= free; ++bit) {
      double const z = frequency[static_cast<std::size_t>(bit - 1)];
      (std::fabs(z) > limit ? outside : inside).push_back({z, static_cast<double>(bit)});
    }
    chart.dots(inside, "dot");
    chart.dots(outside, "dot bad");
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
