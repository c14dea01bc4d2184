// Whole numbers and permutations.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/chances.h"
#include "report/plots.h"

namespace report {

Finding measureIntegers(Subject const& subject) {
  constexpr std::uint64_t kDraws = std::uint64_t{1} << 22;
  constexpr std::size_t kShownRange = 100;
  constexpr std::size_t kRanges[] = {2, 6, kShownRange, 1000, 65536};
  Finding finding;
  std::vector<double> shown;
  double worst = 0;
  auto const stream = subject.stream();
  for (std::size_t const range : kRanges) {
    std::vector<std::uint64_t> counts(range);
    std::vector<int> block(1000);
    for (std::uint64_t done = 0; done < kDraws;) {
      std::uint64_t const n = std::min<std::uint64_t>(block.size(), kDraws - done);
      stream->randiFcn(0, static_cast<double>(range - 1), block.data(), n);
      for (std::uint64_t i = 0; i < n; ++i) ++counts[static_cast<std::size_t>(block[i])];
      done += n;
    }
    double const expected = static_cast<double>(kDraws) / static_cast<double>(range);
    finding.tests.push_back(
        {fmt::format("integers, {} values", range),
         chiSquareP(chiSquareOfEqualCounts(counts, expected), static_cast<double>(range - 1))});
    if (range != kShownRange) continue;
    for (std::uint64_t const count : counts) {
      shown.push_back(static_cast<double>(count) / expected);
      worst = std::max(worst, std::fabs(shown.back() - 1));
    }
  }
  double const expected = static_cast<double>(kDraws) / kShownRange;
  double const spread = std::sqrt((1 - 1.0 / kShownRange) / expected);
  finding.tests.push_back(
      {"integers, worst value", smallestOf(normalP(worst / spread), kShownRange)});
  finding.good = fmt::format("Fair: of 1 to {}, no value is off by more than {} %.", kShownRange,
                             readable(100 * worst, 2));
  finding.bad = "Not fair: some whole numbers come too often or too seldom.";
  int const bits = subject.traits.freeBits;
  finding.note = fmt::format(
      "Above: {1} values of randi(100). Below: how uneven randi(k) can be by construction. It cuts "
      "(0,1), which holds {0} values, into k parts, and a part may get one value more than "
      "another: a relative difference of k / {0} at most.",
      powerText(2, bits), readable(static_cast<double>(kDraws)));
  finding.draw = [=](Frame const& frame) {
    double const limit = spread * largestNormalLimit(frame.level, kShownRange);
    double const reach = 1.35 * std::max(limit, std::min(worst, 4 * limit));
    Svg svg(frame.width, 500, "Counts of whole numbers, and the bound of their bias by range");
    Box const upper = frame.plot(260);
    Axis values = linearAxis(0.5, kShownRange + 0.5, "value of randi(100)", 5);
    values.ticks = {{1, "1"}, {25, "25"}, {50, "50"}, {75, "75"}, {100, "100"}};
    Chart counts(svg, upper, values,
                 linearAxis(1 - reach, 1 + reach, "frequency relative to 1/100", 4));
    counts.band(1 - limit, 1 + limit, "band");
    counts.band(1 - 1.96 * spread, 1 + 1.96 * spread, "core");
    counts.frame();
    counts.horizontal(1, "zero");
    counts.stairs(shown, "data");
    counts.label(100, 1 + limit, "limit of the verdict", Anchor::end, -4, -5);

    Box lower = frame.plot(240);
    lower.y += 260;
    Chart bias(svg, lower, logAxis(1, 0x1p53, "range k of randi(k)", 10, frame.isNarrow() ? 5 : 9),
               logAxis(0x1p-54, 1, "largest bias by construction", 10, 5));
    bias.frame();
    double const grid = std::ldexp(1.0, -bits);
    std::vector<Point> const bound{{2, 2 * grid}, {0x1p52, 0x1p52 * grid}};
    bias.line(bound, "data");
    struct Example {
      double range;
      char const* name;
    };
    for (Example const& example :
         {Example{6, "a die"}, Example{1e6, "a million"}, Example{0x1p32, "2³²"}}) {
      Point const at[] = {{example.range, example.range * grid}};
      bias.dots(at, "dot");
      bias.label(example.range, at[0].y, fmt::format("{}: {}", example.name, readable(at[0].y, 2)),
                 Anchor::start, 9, 12);
    }
    return std::move(svg).finish();
  };
  return finding;
}

Finding measurePermutations(Subject const& subject) {
  constexpr std::size_t kLength = 12;
  constexpr std::uint64_t kPermutations = std::uint64_t{1} << 18;
  std::vector<std::uint64_t> counts(kLength * kLength);
  auto const stream = subject.stream();
  for (std::uint64_t i = 0; i < kPermutations; ++i) {
    double order[kLength];
    stream->randkpermFcn(order, kLength, kLength);
    for (std::size_t at = 0; at < kLength; ++at) {
      ++counts[(static_cast<std::size_t>(order[at]) - 1) * kLength + at];
    }
  }
  double const expected = static_cast<double>(kPermutations) / kLength;
  double const spread = std::sqrt(expected * (1 - 1.0 / kLength));
  std::vector<double> z;
  double worst = 0;
  for (std::uint64_t const count : counts) {
    z.push_back((static_cast<double>(count) - expected) / spread);
    worst = std::max(worst, std::fabs(z.back()));
  }
  // Rows and columns of a permutation sum to 1, which leaves (k-1)^2 degrees of freedom and makes
  // the usual sum too large by k / (k-1).
  double const statistic = chiSquareOfEqualCounts(counts, expected) * (kLength - 1) / kLength;
  Finding finding;
  finding.tests = {{"permutations", chiSquareP(statistic, (kLength - 1) * (kLength - 1))}};
  finding.good = "Every value is equally likely in every place.";
  finding.bad = "Some values prefer some places.";
  finding.note = fmt::format(
      "{} permutations of 12, randperm(12,12): how often each value stands in each place, in "
      "standard deviations from the expected {}; what lies beyond the ends of the scale is "
      "outlined.",
      readable(static_cast<double>(kPermutations)), readable(std::round(expected)));
  finding.draw = [=](Frame const& frame) {
    double const limit = largestNormalLimit(frame.level, kLength * kLength);
    double const side = std::min(frame.width - 60, 380.0);
    Svg svg(frame.width, side + 140, "Permutations: value by position");
    Box const plot{(frame.width - side) / 2 + 14, 34, side, side};
    heatMap(svg, plot, z, kLength, limit);
    double const step = side / kLength;
    for (std::size_t i = 0; i < kLength; ++i) {
      double const middle = (static_cast<double>(i) + 0.5) * step;
      svg.text(plot.x - 7, plot.y + middle + 4, fmt::format("{}", i + 1), "tick", Anchor::end);
      svg.text(plot.x + middle, plot.y + side + 18, fmt::format("{}", i + 1), "tick",
               Anchor::middle);
    }
    svg.text(plot.x - 20, 24, "value", "name");
    svg.text(plot.x + side, plot.y + side + 36, "position", "name", Anchor::end);
    double const keyWidth = std::min(frame.width - 30, 300.0);
    heatMapKey(svg, (frame.width - keyWidth) / 2, side + 96, keyWidth,
               fmt::format("−{:.1f}", limit), "standard deviations", fmt::format("+{:.1f}", limit));
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
