#include "report/p_value_section.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/chances.h"
#include "report/page.h"
#include "report/report.h"

namespace report {

namespace {

constexpr double kSmallestShown = 1e-12;

std::string draw(Frame const& frame, std::vector<Test> const& sorted) {
  auto const n = static_cast<std::uint64_t>(sorted.size());
  auto const m = static_cast<double>(n);
  double const low = std::max(kSmallestShown, std::min(1e-5, sorted.front().p / 10));
  Svg svg(frame.width, 340, "All p-values of the page, sorted, with the expected band");
  Chart chart(svg, frame.plot(340, 58),
              logAxis(0.5 / m, 1, "rank among the tests, as a share", 10, 4),
              logAxis(low, 1, "p", 10, 6));
  std::vector<Point> lower;
  std::vector<Point> upper;
  std::vector<Point> limit;
  for (std::uint64_t k = 1; k <= n; ++k) {
    double const x = (static_cast<double>(k) - 0.5) / m;
    lower.push_back({x, orderStatisticQuantile(0.025, k, n)});
    upper.push_back({x, orderStatisticQuantile(0.975, k, n)});
    limit.push_back({x, kFamilyError / (m - static_cast<double>(k) + 1)});
  }
  chart.band(lower, upper, "core");
  chart.frame();
  chart.line(limit, "limit");
  // Red are those below the limit, up to the first one above it.
  std::vector<Point> good;
  std::vector<Point> bad;
  for (std::uint64_t k = 0; k < n; ++k) {
    bool const below = good.empty() && sorted[k].p < limit[k].y;
    (below ? bad : good).push_back({limit[k].x, std::max(sorted[k].p, low)});
  }
  chart.dots(good, "dot");
  chart.dots(bad, "dot bad");
  chart.label(limit[n / 8].x, limit[n / 8].y, "below this line: red", Anchor::middle, 0, 16);
  chart.label(0.5 / m, std::max(sorted[0].p, low), sorted[0].name, Anchor::start, 8, -8);
  return std::move(svg).finish();
}

}  // namespace

std::string pValueSection(std::vector<Test> const& tests, double level) {
  std::vector<Test> sorted = tests;
  std::sort(sorted.begin(), sorted.end(), [](Test const& a, Test const& b) { return a.p < b.p; });
  std::vector<double> p;
  p.reserve(sorted.size());
  for (Test const& test : sorted) p.push_back(test.p);
  std::vector<double> const adjusted = holm(p);
  auto const red = static_cast<std::size_t>(std::count_if(
      adjusted.begin(), adjusted.end(), [](double value) { return value < kFamilyError; }));
  std::string const text =
      red == 0
          ? fmt::format("None of {} p-values is smaller than chance allows.", tests.size())
          : fmt::format("{} of {} p-values are smaller than chance allows.", red, tests.size());
  return section(
      "p-values", "Are the p-values themselves uniform?", red ? Verdict::bad : Verdict::good, text,
      responsive([&](Frame const& frame) { return draw(frame, sorted); }, level),
      "A p-value is the chance that a perfect source looks at least as odd; over many tests they "
      "spread evenly over 0 to 1. Shaded: where 19 of 20 of the sorted p-values lie for "
      "independent "
      "tests. Some tests share their numbers and some are bounds, so that the dots may lie above "
      "it.");
}

}  // namespace report
