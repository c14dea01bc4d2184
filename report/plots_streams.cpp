// Where the streams of a generator lie, and how far those of this page have come.

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>

#include "report/plots.h"
#include "report/position.h"

namespace report {

namespace {

constexpr std::uint64_t kDrawn = std::uint64_t{1} << 17;
constexpr std::uint64_t kSearched = std::uint64_t{1} << 20;
constexpr double kYear = 54.8;  // log2 of the draws of a year at 10^9 a second

struct Line {
  std::string name;
  std::optional<Position> position;
};

// 2⁶¹, or 2⁶⁴ − 2.
std::string countText(std::uint64_t count) {
  std::uint64_t const missing = std::uint64_t{0} - count;
  if (count != 0 && missing < 10) return powerText(2, 64) + " − " + std::to_string(missing);
  return std::has_single_bit(count) ? powerText(2, std::countr_zero(count))
                                    : readable(static_cast<double>(count));
}

double log2Of(Position const& position) {
  return std::log2(static_cast<double>(position.draws) + 1);
}

}  // namespace

Finding measureStreamMap(Subject const& subject) {
  // Each stream draws as much as the correlations of this page do, its first half as uniforms, its
  // second one by jumping. Then it is asked where it stands.
  std::vector<Line> lines;
  std::uint64_t const shown = subject.hasSubstreams ? 8 : 1;
  bool holds = true;
  for (std::uint64_t i = 0; i < shown; ++i) {
    auto const stream = neighbour(subject, i);
    std::uint64_t const jump = kDrawn + i * 1000;
    eachBlock(*stream, kDrawn, [](double const*, std::uint64_t) {});
    stream->advance(jump);
    auto const position = positionBehind(*stream, neighbour(subject, i), kSearched);
    holds = holds && position && position->draws == kDrawn + jump;
    lines.push_back({subject.hasSubstreams
                         ? fmt::format("stream {}, substream {}", i / 2 + 1, i % 2 + 1)
                         : fmt::format("seed {}", subject.seed),
                     position});
  }
  Finding finding;
  finding.holds = holds;
  finding.good = subject.hasSubstreams
                     ? "Every stream stands where its draws should have brought it."
                     : "The stream stands where its draws should have brought it.";
  finding.bad = "A stream does not stand where its draws should have brought it.";
  int end = subject.traits.log2Period;
  int substream = 0;
  if (subject.hasSubstreams) {
    randstream::streamParamsStruct sizes{};
    subject.stream()->getStreamParameters(&sizes);
    int const ofDraw = std::bit_width(static_cast<unsigned>(subject.traits.stepsADraw)) - 1;
    end = static_cast<int>(sizes.log2StreamLen) - ofDraw;
    substream = static_cast<int>(sizes.log2SubstreamLen) - ofDraw;
    finding.note = fmt::format(
        "{} streams of {} draws each, cut into {} substreams. The scale is logarithmic.",
        countText(sizes.numStreams), powerText(2, end), countText(sizes.numSubstreams));
  } else {
    finding.note =
        "One stream, on a logarithmic scale. Parallel work has no parts here that are known to lie "
        "apart: take a generator with streams for that.";
  }
  finding.note += fmt::format(
      " Dots: positions after drawing {} values and jumping over at least as many, found by "
      "comparing states with a stream that starts anew.",
      readable(static_cast<double>(kDrawn)));
  finding.draw = [=](Frame const& frame) {
    double const height = 96 + 24 * static_cast<double>(lines.size()) + 16;
    Svg svg(frame.width, height,
            "Streams and substreams, and how far those of this page have come");
    double const left = frame.isNarrow() ? 8 : 158;
    Box const plot{left, 52, frame.width - left - 14, height - 52 - 44};
    bool const longPeriod = end > 140 || end == 0;
    double const right = longPeriod ? 70 : end;
    double const wall = substream > 0 ? substream : right;
    double const reach = substream > 0 ? substream * 1.04 : right;
    std::vector<Scale::Tick> ticks;
    for (int e = 0; e <= reach; e += reach > 40 ? 12 : 6) {
      ticks.push_back({static_cast<double>(e), e == 0 ? "1" : powerText(2, e)});
    }
    Chart chart(svg, plot, Axis{Scale(Scale::Kind::linear, 0, reach), "draws", ticks},
                Axis{Scale(Scale::Kind::linear, static_cast<double>(lines.size()), 0), "", {}});
    chart.frame();
    for (std::size_t i = 0; i < lines.size(); ++i) {
      double const y = chart.y(static_cast<double>(i) + 0.5) + (frame.isNarrow() ? 5 : 0);
      svg.line(plot.x, y, chart.x(wall), y, "road");
      if (frame.isNarrow()) {
        svg.text(plot.x + 1, y - 6, lines[i].name, "tick");
      } else {
        svg.text(plot.x - 10, y + 4, lines[i].name, "tick", Anchor::end);
      }
      if (!lines[i].position) {
        svg.text(chart.x(2), y - 4, "unknown", "mark");
        continue;
      }
      double const at = log2Of(*lines[i].position);
      svg.line(plot.x, y, chart.x(at), y, "travelled");
      svg.circle(chart.x(at), y, 4.5, "here",
                 readable(static_cast<double>(lines[i].position->draws)) + " draws");
      svg.text(chart.x(at) + 9, y - 4,
               i == 0 && !frame.isNarrow()
                   ? readable(static_cast<double>(lines[i].position->draws)) + " draws"
                   : "",
               "mark");
    }
    auto const flag = [&](double at, double row, std::string const& text) {
      double const y = 16 + 17 * row;
      double const x = chart.x(at);
      bool const toLeft = x + textWidth(text) > frame.width - 4;
      svg.line(x, y - 8, x, plot.y + plot.height, "marker");
      svg.text(x + (toLeft ? -5 : 5), y, text, "mark", toLeft ? Anchor::end : Anchor::start);
    };
    if (kYear < reach) flag(kYear, 1, "a year of drawing at 10⁹/s");
    if (substream > 0) {
      flag(substream, 0, fmt::format("the next substream begins: {}", powerText(2, substream)));
    } else if (longPeriod) {
      svg.text(frame.width - 14, 16,
               end ? fmt::format("the period ends at {}", powerText(2, end)) : "", "mark",
               Anchor::end);
    } else {
      flag(end, 0, fmt::format("the period ends: {}", powerText(2, end)));
    }
    return std::move(svg).finish();
  };
  return finding;
}

}  // namespace report
