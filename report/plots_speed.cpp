// How long a value takes, alone and in large requests, on this machine.

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <thread>

#include "report/plots.h"

namespace report {

namespace {

using Clock = std::chrono::steady_clock;

// The processor as the system names it.
std::string machineName() {
  std::ifstream cpus("/proc/cpuinfo");
  std::string line;
  std::string name = "unknown processor";
  while (std::getline(cpus, line)) {
    if (line.starts_with("model name")) {
      name = line.substr(line.find(':') + 2);
      break;
    }
  }
  return fmt::format("{}, {} hardware threads", name, std::thread::hardware_concurrency());
}

// The quickest of several rounds, in nanoseconds a value.
template <class Fill>
double costOf(std::uint64_t n, Fill fill) {
  constexpr auto kRound = std::chrono::milliseconds(5);
  constexpr int kRounds = 5;
  double best = 1e300;
  for (int round = 0; round < kRounds; ++round) {
    auto const start = Clock::now();
    std::uint64_t values = 0;
    Clock::duration spent{};
    do {
      for (int i = 0; i < (n < 100 ? 100 : 1); ++i) {
        fill(n);
        values += n;
      }
      spent = Clock::now() - start;
    } while (spent < kRound);
    best = std::min(best, std::chrono::duration<double, std::nano>(spent).count() /
                              static_cast<double>(values));
  }
  return best;
}

struct Curve {
  char const* name;
  std::vector<Point> points;
};

}  // namespace

Finding measureSpeed(Subject const& subject) {
  constexpr std::uint64_t kLargest = 10'000'000;
  std::vector<double> values(kLargest);
  std::vector<int> integers(kLargest);
  auto const stream = subject.stream();
  std::vector<Curve> curves{{"rand", {}}, {"randn", {}}, {"randi(6)", {}}};
  for (std::uint64_t n = 1; n <= kLargest; n *= 10) {
    auto const at = static_cast<double>(n);
    curves[0].points.push_back(
        {at, costOf(n, [&](std::uint64_t k) { stream->randuFcn(values.data(), k); })});
    curves[1].points.push_back(
        {at, costOf(n, [&](std::uint64_t k) { stream->randnFcn(values.data(), k, false); })});
    curves[2].points.push_back(
        {at, costOf(n, [&](std::uint64_t k) { stream->randiFcn(1, 6, integers.data(), k); })});
  }
  Finding finding;
  finding.isFact = true;
  finding.nanoseconds = {curves[0].points.back().y, curves[1].points.back().y,
                         curves[0].points.front().y};
  finding.good =
      fmt::format("One value of rand takes {} ns alone and {} ns among {}.",
                  readable(curves[0].points.front().y, 2), readable(curves[0].points.back().y, 2),
                  readable(static_cast<double>(kLargest)));
  finding.note = fmt::format(
      "Nanoseconds a value by the size of a request, the best of five rounds, called from C++. "
      "Machine: {}.",
      machineName());
  finding.draw = [=](Frame const& frame) {
    double low = 1e300;
    double high = 0;
    for (Curve const& curve : curves) {
      for (Point const& p : curve.points) {
        low = std::min(low, p.y);
        high = std::max(high, p.y);
      }
    }
    Svg svg(frame.width, 300, "Time a value by the size of a request");
    Box plot = frame.plot(300);
    plot.width -= 62;
    Chart chart(svg, plot,
                logAxis(1, kLargest, "values asked for at once", 10, frame.isNarrow() ? 4 : 8),
                logAxis(std::pow(10, std::floor(std::log10(low))),
                        std::pow(10, std::ceil(std::log10(high))), "nanoseconds a value"));
    chart.frame();
    // Labels at the right end, moved apart.
    std::vector<Curve const*> order{&curves[0], &curves[1], &curves[2]};
    std::ranges::sort(order,
                      [](auto a, auto b) { return a->points.back().y > b->points.back().y; });
    double lowest = -1e9;
    for (Curve const* const curve : order) {
      std::string const series = fmt::format("series{}", curve - curves.data());
      chart.line(curve->points, "data " + series);
      for (Point const& p : curve->points) {
        svg.circle(
            chart.x(p.x), chart.y(p.y), 3, "knot " + series,
            fmt::format("{}, {} values: {} ns each", curve->name, readable(p.x), readable(p.y)));
      }
      double const y = std::max(chart.y(curve->points.back().y) + 4, lowest + 15);
      svg.text(plot.x + plot.width + 7, y, curve->name, "mark " + series);
      lowest = y;
    }
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
