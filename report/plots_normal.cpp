// Normal values: their quantiles out into the tails, and the seam of the ziggurat.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/chances.h"
#include "report/plots.h"

namespace report {

namespace {

constexpr std::uint64_t kNormals = std::uint64_t{1} << 25;
constexpr std::uint64_t kBlock = 1000;

template <class Use>
void eachNormal(randstream& stream, Use use) {
  double block[kBlock];
  for (std::uint64_t done = 0; done < kNormals;) {
    std::uint64_t const length = std::min(kBlock, kNormals - done);
    stream.randnFcn(block, length, false);
    for (std::uint64_t i = 0; i < length; ++i) use(block[i]);
    done += length;
  }
}

// Places of the quantile plot: counts below fixed thresholds in the middle, the extreme values
// themselves in the tails.
constexpr double kMiddle = 4.5;
constexpr double kStep = 0.05;
constexpr std::size_t kBins = 180;
constexpr std::uint64_t kExtremes[] = {1, 2, 3, 5, 8, 13, 21, 34, 55, 89};

struct Quantiles {
  std::vector<Point> points;  // theoretical quantile, sample quantile minus it
  double p = 1;               // of the oddest place
  double mean = 0;
  double meanP = 1;
  double spreadP = 1;
};

Quantiles quantilesOf(randstream& stream) {
  std::vector<std::uint64_t> bins(kBins);
  std::vector<double> low;
  std::vector<double> high;
  double sum = 0;
  double squares = 0;
  eachNormal(stream, [&](double z) {
    sum += z;
    squares += z * z;
    if (z < -kMiddle)
      low.push_back(z);
    else if (z >= kMiddle)
      high.push_back(-z);
    else
      ++bins[std::min(static_cast<std::size_t>((z + kMiddle) / kStep), kBins - 1)];
  });
  std::sort(low.begin(), low.end());
  std::sort(high.begin(), high.end());
  auto const n = static_cast<double>(kNormals);
  Quantiles out;
  out.mean = sum / n;
  out.meanP = normalP(sum / std::sqrt(n));
  out.spreadP = normalP((squares - n) / std::sqrt(2 * n));
  double smallest = 1;
  auto const take = [&](double sample, double below, double p) {
    double const theory = normalQuantile(below);
    out.points.push_back({theory, sample - theory});
    smallest = std::min(smallest, p);
  };
  auto const extreme = [&](std::vector<double> const& tail, std::uint64_t k, double sign) {
    if (k > tail.size()) return;
    double const value = tail[k - 1];
    double const below = (static_cast<double>(k) - 0.5) / n;
    double const theory = normalQuantile(below);
    out.points.push_back({sign * theory, sign * (value - theory)});
    smallest = std::min(smallest, orderStatisticP(normalBelow(value), k, kNormals));
  };
  for (std::uint64_t const k : kExtremes) extreme(low, k, 1);
  std::uint64_t below = low.size();
  for (std::size_t i = 0; i < kBins; ++i) {
    below += bins[i];
    double const edge = -kMiddle + kStep * static_cast<double>(i + 1);
    if (below == 0 || below == kNormals) {
      smallest = std::min(smallest, binomialP(below, kNormals, normalBelow(edge)));
      continue;
    }
    take(edge, static_cast<double>(below) / n, binomialP(below, kNormals, normalBelow(edge)));
  }
  for (std::uint64_t const k : kExtremes) extreme(high, k, -1);
  std::sort(out.points.begin(), out.points.end(),
            [](Point const& a, Point const& b) { return a.x < b.x; });
  out.p = std::min(1.0, smallest * static_cast<double>(kBins + 2 * std::size(kExtremes)));
  return out;
}

// Where a perfect sample's quantiles lie with probability 1 - p, minus the theoretical ones.
struct Band {
  std::vector<Point> lower;
  std::vector<Point> upper;
};
Band quantileBand(double p) {
  Band band;
  auto const n = static_cast<double>(kNormals);
  auto const add = [&](double x, std::uint64_t k, double sign) {
    double const lower = normalQuantile(orderStatisticQuantile(p / 2, k, kNormals)) - x;
    double const upper = -normalQuantile(orderStatisticQuantile(p / 2, kNormals + 1 - k, kNormals));
    band.lower.push_back({sign * x, sign < 0 ? -(upper - x) : lower});
    band.upper.push_back({sign * x, sign < 0 ? -lower : upper - x});
  };
  std::vector<std::uint64_t> ranks(std::begin(kExtremes), std::end(kExtremes));
  for (double x = -4.4; x < -0.01; x += 0.1) {
    ranks.push_back(static_cast<std::uint64_t>(n * normalBelow(x)));
  }
  for (std::uint64_t const k : ranks) add(normalQuantile((static_cast<double>(k) - 0.5) / n), k, 1);
  for (std::size_t i = ranks.size(); i-- > 0;) {
    add(normalQuantile((static_cast<double>(ranks[i]) - 0.5) / n), ranks[i], -1);
  }
  return band;
}

}  // namespace

Finding measureQuantiles(Subject const& subject) {
  auto const stream = subject.stream();
  std::string const method = stream->getRandnAlg();
  Quantiles const found = quantilesOf(*stream);
  Finding finding;
  finding.tests = {{"normals, mean", found.meanP},
                   {"normals, variance", found.spreadP},
                   {"normals, quantiles", found.p}};
  double const furthest =
      found.points.empty() ? 0 : std::max(-found.points.front().x, found.points.back().x);
  finding.good = fmt::format("Normal as far as the sample reaches, {} σ; mean {}.",
                             readable(furthest, 2), readable(found.mean, 2));
  finding.bad = fmt::format("Not standard normal: mean {}, or quantiles outside of the band.",
                            readable(found.mean, 2));
  finding.note = fmt::format(
      "Quantiles of {} normals by {} minus those of the normal law. Near 0 the scale is fine; from "
      "0.001 on each step is ten times the last, so that the tails fit in.",
      readable(static_cast<double>(kNormals)), method);
  finding.draw = [=](Frame const& frame) {
    Band const limit = quantileBand(frame.level / static_cast<double>(kBins + 20));
    Band const usual = quantileBand(0.05);
    constexpr double kFine = 5e-4;
    Svg svg(frame.width, 320, "Normal quantiles minus the diagonal, with the expected band");
    Scale const y(Scale::Kind::signedLog, -2, 2, kFine);
    std::vector<Scale::Tick> ticks;
    for (auto const& tick : y.ticks(9)) ticks.push_back(tick);
    Chart chart(svg, frame.plot(320, 58),
                linearAxis(-6, 6, "theoretical quantile, σ", frame.isNarrow() ? 6 : 12),
                Axis{y, "sample quantile minus theoretical", ticks});
    chart.band(limit.lower, limit.upper, "band");
    chart.band(usual.lower, usual.upper, "core");
    chart.frame();
    std::vector<Point> middle;
    std::vector<Point> tails;
    for (Point const& point : found.points) {
      (std::fabs(point.x) > kMiddle ? tails : middle).push_back(point);
    }
    chart.line(middle, "data");
    chart.dots(tails, "dot small");
    chart.label(-5.9, 2, "extreme values, one dot each", Anchor::start, 0, 14);
    chart.label(0, 0.006, "limit of the verdict", Anchor::middle, 0, -2);
    chart.label(0, -0.006, "inner band: 19 of 20 quantiles", Anchor::middle, 0, 12);
    return std::move(svg).finish();
  };
  return finding;
}

Finding measureSeam(Subject const& subject) {
  constexpr std::size_t kCells = 50;
  constexpr double kWidth = 0.02;
  auto const stream = subject.stream();
  // The legacy stream brings one method, which is a ziggurat.
  if (subject.name != "legacy") stream->setRandnAlg("Ziggurat");
  double const seam = subject.traits.zigguratSeam;
  double const from = seam - kWidth * kCells / 2;
  std::vector<std::uint64_t> counts(kCells);
  eachNormal(*stream, [&](double z) {
    double const at = (std::fabs(z) - from) / kWidth;
    if (at >= 0 && at < kCells) ++counts[static_cast<std::size_t>(at)];
  });
  std::vector<double> relative;
  std::vector<double> expected;
  double statistic = 0;
  double smallest = 1;
  double rest = static_cast<double>(kNormals);
  std::uint64_t seen = 0;
  for (std::size_t i = 0; i < kCells; ++i) {
    double const left = from + kWidth * static_cast<double>(i);
    double const chance = 2 * (normalBelow(-left) - normalBelow(-left - kWidth));
    expected.push_back(chance * static_cast<double>(kNormals));
    auto const count = static_cast<double>(counts[i]);
    relative.push_back(count / expected[i]);
    statistic += (count - expected[i]) * (count - expected[i]) / expected[i];
    smallest = std::min(smallest, binomialP(counts[i], kNormals, chance));
    rest -= expected[i];
    seen += counts[i];
  }
  double const restSeen = static_cast<double>(kNormals - seen);
  statistic += (restSeen - rest) * (restSeen - rest) / rest;
  Finding finding;
  finding.tests = {{"seam, all cells", chiSquareP(statistic, kCells)},
                   {"seam, worst cell", std::min(1.0, smallest * kCells)}};
  finding.good = "No step where the ziggurat's layers end and its tail begins.";
  finding.bad = "A step where the ziggurat's layers end and its tail begins.";
  finding.note = fmt::format(
      "A lens on |z| from {:.2f} to {:.2f}: {} normals by Ziggurat, counted in cells of {}.", from,
      from + kWidth * kCells, readable(static_cast<double>(kNormals)), kWidth);
  finding.draw = [=](Frame const& frame) {
    Svg svg(frame.width, 280, "Density of normals around the seam of the ziggurat");
    auto const bandOf = [&](double p) {
      Band band;
      double const z = -normalQuantile(p / 2);
      for (std::size_t i = 0; i < kCells; ++i) {
        double const x = from + kWidth * (static_cast<double>(i) + 0.5);
        // Counts are nearly Poisson; the square root makes their spread even.
        double const root = std::sqrt(expected[i]);
        band.lower.push_back({x, std::pow(std::max(0.0, root - z / 2), 2) / expected[i]});
        band.upper.push_back({x, std::pow(root + z / 2, 2) / expected[i]});
      }
      return band;
    };
    Band const limit = bandOf(frame.level / kCells);
    Band const usual = bandOf(0.05);
    double const reach = 1.2 * (limit.upper.back().y - 1);
    Chart chart(svg, frame.plot(280), linearAxis(from, from + kWidth * kCells, "|z|"),
                linearAxis(1 - reach, 1 + reach, "frequency relative to the normal density", 4));
    chart.band(limit.lower, limit.upper, "band");
    chart.band(usual.lower, usual.upper, "core");
    chart.frame();
    chart.horizontal(1, "zero");
    chart.stairs(relative, "data");
    chart.mark(seam, fmt::format("seam at {:.4f}", seam));
    chart.label(from + 0.02, limit.upper[1].y, "limit of the verdict", Anchor::start, 0, -6);
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
