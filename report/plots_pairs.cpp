// Successive values together: pairs, whole and in a thin strip, and triples seen along planes.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/chances.h"
#include "report/plots.h"

namespace report {

namespace {

constexpr std::size_t kDotsShown = 4000;

std::vector<double> scores(std::span<std::uint64_t const> counts, double expected) {
  std::vector<double> out;
  for (std::uint64_t const count : counts) {
    out.push_back((static_cast<double>(count) - expected) / std::sqrt(expected));
  }
  return out;
}

double largestOf(std::span<double const> values) {
  double largest = 0;
  for (double const v : values) largest = std::max(largest, std::fabs(v));
  return largest;
}

}  // namespace

Finding measurePairs(Subject const& subject) {
  constexpr std::size_t kSide = 48;
  constexpr std::size_t kCells = kSide * kSide;
  constexpr std::uint64_t kPairs = std::uint64_t{1} << 23;
  std::vector<std::uint64_t> counts(kCells);
  auto const stream = subject.stream();
  eachBlock(*stream, 2 * kPairs, [&](double const* values, std::uint64_t n) {
    for (std::uint64_t i = 0; i + 1 < n; i += 2) {
      auto const column = binOf(values[i], kSide);
      auto const row = binOf(values[i + 1], kSide);
      ++counts[(kSide - 1 - row) * kSide + column];
    }
  });
  double const expected = static_cast<double>(kPairs) / kCells;
  std::vector<double> const z = scores(counts, expected);
  double const largest = largestOf(z);
  Finding finding;
  finding.tests = {
      {"pairs, all cells", chiSquareP(chiSquareOfEqualCounts(counts, expected), kCells - 1)},
      {"pairs, worst cell", smallestOf(normalP(largest), kCells)}};
  finding.good = "No pattern: every value follows every other equally often.";
  finding.bad = "A pattern: some pairs of values come too often or too seldom.";
  finding.note = fmt::format(
      "{} pairs, first value to the right, next value upwards, counted in {} × {} cells. Colours "
      "are standard deviations from the expected {}; even speckle is "
      "what chance looks like, and cells beyond the ends of the scale are outlined.",
      readable(static_cast<double>(kPairs)), kSide, kSide, readable(std::round(expected)));
  finding.draw = [=](Frame const& frame) {
    double const limit = largestNormalLimit(frame.level, kCells);
    double const side = std::min(frame.width - 60, 400.0);
    Svg svg(frame.width, side + 140, "Pairs of successive values, counted in cells");
    Box const plot{(frame.width - side) / 2 + 14, 34, side, side};
    heatMap(svg, plot, z, kSide, limit);
    Chart chart(svg, plot, linearAxis(0, 1, "value", 2), linearAxis(0, 1, "", 2));
    chart.frame();
    svg.text(plot.x, 24, "next value", "name");
    double const keyWidth = std::min(frame.width - 30, 300.0);
    heatMapKey(svg, (frame.width - keyWidth) / 2, side + 96, keyWidth,
               fmt::format("−{:.1f}", limit), "standard deviations", fmt::format("+{:.1f}", limit));
    return std::move(svg).finish();
  };
  return finding;
}

Finding measureStrip(Subject const& subject) {
  constexpr double kStrip = 0x1p-10;
  constexpr std::uint64_t kDraws = std::uint64_t{1} << 23;
  constexpr std::size_t kSide = 32;
  std::vector<Point> points;
  std::vector<std::uint64_t> counts(kSide * kSide);
  double before = 1;
  std::uint64_t seen = 0;
  auto const stream = subject.stream();
  choosePrecision(*stream, false);
  eachBlock(*stream, kDraws, [&](double const* values, std::uint64_t n) {
    for (std::uint64_t i = 0; i < n; ++i) {
      if (before < kStrip) {
        ++seen;
        if (points.size() < kDotsShown) points.push_back({before, values[i]});
        auto const column = binOf(before / kStrip, kSide);
        ++counts[column * kSide + binOf(values[i], kSide)];
      }
      before = values[i];
    }
  });
  double const expected = static_cast<double>(seen) / (kSide * kSide);
  double const spreadP =
      seen == 0 ? 1 : chiSquareP(chiSquareOfEqualCounts(counts, expected), kSide * kSide - 1);
  auto const empty = static_cast<std::size_t>(std::count(counts.begin(), counts.end(), 0));
  Finding finding;
  finding.tests = {{"strip", spreadP}, {"strip, how many", binomialP(seen, kDraws, kStrip)}};
  finding.good = "No lines: the strip is filled like rain on a pavement.";
  finding.bad = empty > kSide ? fmt::format("Lines: {} of {} cells of the strip stay empty.", empty,
                                            kSide * kSide)
                              : "The strip is not filled evenly, or too much or too little.";
  finding.note = fmt::format(
      "The same pairs under a magnifying glass: first values below 1/1024 only, in raw outputs of "
      "{} draws. A multiplicative generator's pairs lie on few steep lines here. Expected: dots "
      "without lines, about {} in each of {} × {} cells.",
      readable(static_cast<double>(kDraws)), readable(std::round(expected)), kSide, kSide);
  finding.sketch = [=](Svg& svg, Box box, double level) {
    Chart chart(svg, box, linearAxis(0, kStrip, ""), linearAxis(0, 1, ""));
    std::span<Point const> const some(points.data(), std::min<std::size_t>(points.size(), 1500));
    chart.dots(some, spreadP < level ? "speck bad" : "speck");
  };
  finding.draw = [=](Frame const& frame) {
    Svg svg(frame.width, 340, "Pairs of successive values in a thin strip");
    Box const plot = frame.plot(340, 36);
    Axis x = linearAxis(0, kStrip, "value, 0 to 1/1024");
    x.ticks = {{0, "0"}, {kStrip / 2, "1/2048"}, {kStrip, "1/1024"}};
    Chart chart(svg, plot, x, linearAxis(0, 1, "next value", 4));
    chart.frame();
    chart.dots(points, spreadP < frame.level ? "speck bad" : "speck");
    return std::move(svg).finish();
  };
  return finding;
}

Finding measurePlanes(Subject const& subject) {
  constexpr std::uint64_t kDraws = std::uint64_t{1} << 22;
  constexpr std::size_t kBins = 128;
  Planes const planes = subject.traits.planes;
  int const reach = *std::ranges::max_element(planes.lags);
  std::vector<double> window;
  std::vector<Point> points;
  std::vector<std::uint64_t> counts(kBins);
  std::uint64_t seen = 0;
  auto const stream = subject.stream();
  choosePrecision(*stream, false);
  eachBlock(*stream, kDraws, [&](double const* values, std::uint64_t n) {
    // The last values of the block before stay in front.
    window.insert(window.end(), values, values + n);
    for (std::size_t i = 0; i + static_cast<std::size_t>(reach) < window.size(); ++i) {
      double sum = 0;
      for (std::size_t k = 0; k < 3; ++k) {
        sum += planes.factors[k] * window[i + static_cast<std::size_t>(planes.lags[k])];
      }
      double const off = sum - std::round(sum);
      ++counts[binOf(off + 0.5, kBins)];
      if (points.size() < kDotsShown) points.push_back({window[i], off});
      ++seen;
    }
    window.erase(window.begin(), window.end() - reach);
  });
  double const expected = static_cast<double>(seen) / kBins;
  std::vector<double> const z = scores(counts, expected);
  Finding finding;
  finding.tests = {{"planes", chiSquareP(chiSquareOfEqualCounts(counts, expected), kBins - 1)}};
  finding.good = "No planes: triples fill the space between them evenly.";
  finding.bad = "Planes: the triples crowd on some of them.";
  finding.note = fmt::format(
      "Triples of values seen along {}: the height is {}·u(n{}) {} {}·u(n{}) {} {}·u(n{}) minus "
      "the "
      "nearest whole number. Where triples lie on those planes, all dots have height 0. Right: {} "
      "triples by height, with the expected band.",
      planes.origin, planes.factors[0], planes.lags[0] ? fmt::format("+{}", planes.lags[0]) : "",
      planes.factors[1] < 0 ? "−" : "+", std::abs(planes.factors[1]),
      planes.lags[1] ? fmt::format("+{}", planes.lags[1]) : "", planes.factors[2] < 0 ? "−" : "+",
      std::abs(planes.factors[2]), planes.lags[2] ? fmt::format("+{}", planes.lags[2]) : "",
      readable(static_cast<double>(seen)));
  finding.sketch = [=](Svg& svg, Box box, double level) {
    Chart chart(svg, box, linearAxis(0, 1, ""), linearAxis(-0.5, 0.5, ""));
    std::span<Point const> const some(points.data(), std::min<std::size_t>(points.size(), 1500));
    chart.dots(some, largestOf(z) > largestNormalLimit(level, kBins) ? "speck bad" : "speck");
  };
  finding.draw = [=](Frame const& frame) {
    double const limit = largestNormalLimit(frame.level, kBins);
    Svg svg(frame.width, 340, "Triples seen along planes");
    double const side = frame.isNarrow() ? 90 : 150;
    Box left = frame.plot(340, 42);
    left.width -= side + 24;
    Chart chart(svg, left, linearAxis(0, 1, "first value", 4),
                linearAxis(-0.5, 0.5, "distance from the nearest plane, in gaps", 4));
    chart.frame();
    bool const bad = largestOf(z) > limit;
    chart.dots(points, bad ? "speck bad" : "speck");
    Box const right{left.x + left.width + 24, left.y, side, left.height};
    double const reachZ = 1.3 * limit;
    Chart margin(svg, right, linearAxis(-reachZ, reachZ, "std. deviations", 3),
                 Axis{Scale(Scale::Kind::linear, -0.5, 0.5), "", {}});
    svg.rectangle(margin.x(-limit), right.y, margin.x(limit) - margin.x(-limit), right.height,
                  "band");
    svg.rectangle(margin.x(-1.96), right.y, margin.x(1.96) - margin.x(-1.96), right.height, "core");
    margin.frame();
    svg.line(margin.x(0), right.y, margin.x(0), right.y + right.height, "zero");
    std::vector<Point> inside;
    std::vector<Point> outside;
    for (std::size_t i = 0; i < kBins; ++i) {
      (std::fabs(z[i]) > limit ? outside : inside)
          .push_back({z[i], (static_cast<double>(i) + 0.5) / kBins - 0.5});
    }
    margin.dots(inside, "dot small");
    margin.dots(outside, "dot small bad");
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
