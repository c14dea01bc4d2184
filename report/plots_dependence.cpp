// Values far apart, and values of neighbouring streams: correlations.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "report/chances.h"
#include "report/plots.h"

namespace report {

namespace {

// Sum of products; several sums at a time let the processor overlap them.
double dot(float const* a, float const* b, std::size_t n) {
  float parts[16];
  double sum = 0;
  constexpr std::size_t kRun = 1024;  // floats lose nothing that matters over so few
  for (std::size_t from = 0; from < n; from += kRun) {
    std::size_t const to = std::min(n, from + kRun);
    std::fill(std::begin(parts), std::end(parts), 0.0F);
    std::size_t i = from;
    for (; i + 16 <= to; i += 16) {
      for (std::size_t k = 0; k < 16; ++k) parts[k] += a[i + k] * b[i + k];
    }
    for (; i < to; ++i) parts[0] += a[i] * b[i];
    for (float const part : parts) sum += static_cast<double>(part);
  }
  return sum;
}

// Uniforms minus their mean, in units of their standard deviation.
std::vector<float> standardised(randstream& stream, std::uint64_t n) {
  std::vector<float> out;
  out.reserve(n);
  double const scale = std::sqrt(12.0);
  eachBlock(stream, n, [&](double const* values, std::uint64_t length) {
    for (std::uint64_t i = 0; i < length; ++i) {
      out.push_back(static_cast<float>((values[i] - 0.5) * scale));
    }
  });
  return out;
}

}  // namespace

Finding measureAutocorrelation(Subject const& subject) {
  constexpr std::size_t kLags = 640;
  constexpr std::uint64_t kDraws = std::uint64_t{1} << 20;
  auto const stream = subject.stream();
  std::vector<float> const x = standardised(*stream, kDraws + kLags);
  double const root = std::sqrt(static_cast<double>(kDraws));
  std::vector<double> z;
  double worst = 0;
  double squares = 0;
  std::size_t worstLag = 1;
  for (std::size_t lag = 1; lag <= kLags; ++lag) {
    z.push_back(dot(x.data(), x.data() + lag, kDraws) / root);
    squares += z.back() * z.back();
    if (std::fabs(z.back()) > std::fabs(worst)) {
      worst = z.back();
      worstLag = lag;
    }
  }
  Finding finding;
  finding.tests = {{"autocorrelation, worst lag", smallestOf(normalP(worst), kLags)},
                   {"autocorrelation, all lags", chiSquareP(squares, kLags)}};
  finding.good = fmt::format("No memory: none of {} lags is correlated, the largest is {}.", kLags,
                             readable(worst / root, 2));
  finding.bad = fmt::format("Memory: values {} draws apart are correlated, {}.", worstLag,
                            readable(worst / root, 2));
  finding.note = fmt::format(
      "Correlation of values a number of draws apart, over {} draws. The lags of the generator's "
      "own recurrence or block are marked: that is where a weakness would show.",
      readable(static_cast<double>(kDraws)));
  finding.draw = [=, lags = subject.traits.lags](Frame const& frame) {
    double const limit = largestNormalLimit(frame.level, kLags) / root;
    double const usual = 1.96 / root;
    double const reach = 1.6 * std::max(limit, std::min(std::fabs(worst) / root, 3 * limit));
    Svg svg(frame.width, 300, "Autocorrelation by lag, with the expected band");
    Chart chart(svg, frame.plot(300, 58), linearAxis(0, kLags + 5, "lag, draws", 8),
                linearAxis(-reach, reach, "correlation", 4));
    chart.band(-limit, limit, "band");
    chart.band(-usual, usual, "core");
    chart.frame();
    std::vector<Point> inside;
    std::vector<Point> outside;
    for (std::size_t i = 0; i < kLags; ++i) {
      double const r = z[i] / root;
      (std::fabs(r) > limit ? outside : inside).push_back({static_cast<double>(i + 1), r});
    }
    for (int const lag : lags) {
      if (lag > 0) chart.mark(lag, fmt::format("own lag {}", lag));
    }
    chart.dots(inside, "dot small");
    chart.dots(outside, "dot bad");
    chart.label(kLags, -limit, "limit of the verdict", Anchor::end, 0, 15);
    return std::move(svg).finish();
  };
  return finding;
}

Finding measureNeighbours(Subject const& subject) {
  constexpr std::uint64_t kDraws = std::uint64_t{1} << 18;
  std::vector<std::vector<float>> series;
  std::vector<std::string> names;
  for (std::uint64_t i = 0; i < kNeighbours; ++i) {
    series.push_back(standardised(*neighbour(subject, i), kDraws));
    names.push_back(neighbourName(subject, i));
  }
  double const root = std::sqrt(static_cast<double>(kDraws));
  std::vector<double> z(kNeighbours * kNeighbours, std::nan(""));
  double worst = 0;
  std::string worstPair;
  for (std::size_t a = 0; a < kNeighbours; ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      double const score = dot(series[a].data(), series[b].data(), kDraws) / root;
      z[a * kNeighbours + b] = score;
      z[b * kNeighbours + a] = score;
      if (std::fabs(score) > std::fabs(worst)) {
        worst = score;
        worstPair = names[b] + " and " + names[a];
      }
    }
  }
  constexpr double kPairs = kNeighbours * (kNeighbours - 1) / 2.0;
  char const* const what = subject.hasSubstreams ? "streams and substreams" : "seeds";
  Finding finding;
  finding.tests = {{"neighbours", smallestOf(normalP(worst), kPairs)}};
  finding.good = fmt::format("Neighbouring {} are strangers: the largest correlation is {}.", what,
                             readable(worst / root, 2));
  finding.bad = fmt::format("Neighbouring {} know each other: {} have correlation {}.", what,
                            worstPair, readable(worst / root, 2));
  finding.note = fmt::format(
      "Correlation of {} draws of each with each{}. Colours are standard deviations; "
      "a pair beyond the ends of the scale is outlined.",
      readable(static_cast<double>(kDraws)),
      subject.hasSubstreams ? "; 3.2 is stream 3, substream 2"
                            : "; this generator has one stream, so neighbouring seeds stand in");
  finding.sketch = [=](Svg& svg, Box box, double level) {
    double const side = std::min(box.width, box.height);
    heatMap(svg, {box.x + (box.width - side) / 2, box.y, side, side}, z, kNeighbours,
            largestNormalLimit(level, kPairs));
  };
  finding.draw = [=](Frame const& frame) {
    double const limit = largestNormalLimit(frame.level, kPairs);
    double const left = subject.hasSubstreams ? 34 : 96;
    double const side = std::min(frame.width - left - 10, 400.0);
    Box const plot{(frame.width - side - left) / 2 + left, 34, side, side};
    Svg svg(frame.width, side + 104, "Correlation of neighbouring streams");
    heatMap(svg, plot, z, kNeighbours, limit);
    double const step = side / kNeighbours;
    for (std::size_t i = 0; i < kNeighbours; ++i) {
      double const middle = (static_cast<double>(i) + 0.5) * step;
      svg.text(plot.x - 6, plot.y + middle + 4, names[i], "tick", Anchor::end);
      if (subject.hasSubstreams && (i % 2 == 0 || !frame.isNarrow())) {
        svg.text(plot.x + middle, plot.y - 7, names[i], "tick", Anchor::middle);
      }
    }
    double const keyWidth = std::min(frame.width - 30, 300.0);
    heatMapKey(svg, (frame.width - keyWidth) / 2, side + 56, keyWidth,
               fmt::format("−{:.1f}", limit), "standard deviations", fmt::format("+{:.1f}", limit));
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
