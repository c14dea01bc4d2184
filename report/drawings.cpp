#include "report/drawings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "embedded_host/interrupt.h"
#include "report/page_style.h"

namespace report {

namespace {

constexpr std::size_t kTextBins = 21;
constexpr std::size_t kFileBins = 60;
constexpr double kFileWidth = 680;
constexpr double kFileHeight = 320;

// Beyond this, ranges and their parts would leave what a double holds.
constexpr double kLargestDrawn = 1e300;
constexpr double kNarrowestDrawn = 1e-290;

bool isDrawn(double value) { return std::fabs(value) <= kLargestDrawn; }  // not NaN either

struct Range {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void take(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  bool isEmpty() const { return !(low <= high); }
  // Something to divide by, also when all values are one.
  void widen() {
    if (high - low > kNarrowestDrawn) return;
    double const half = low == 0 ? 0.5 : std::fabs(low) / 2;
    low -= half;
    high += half;
  }
};

// 1, 2 or 5 times a power of ten, at least `least`.
double roundStep(double least) {
  double const power = std::pow(10, std::floor(std::log10(least)));
  for (double const factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= least * (1 - 1e-9)) return factor * power;
  }
  return 10 * power;
}

std::string paddedLeft(std::string const& text, std::size_t columns) {
  auto const taken = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
  return std::string(columns > taken ? columns - taken : 0, ' ') + text;
}

std::string blocks(double columns) {
  static constexpr char const* kEighths[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  std::string out;
  auto const eighths = static_cast<int>(std::lround(columns * 8));
  for (int i = 0; i < eighths / 8; ++i) out += "█";
  return out + kEighths[eighths % 8];
}

std::vector<Point> finiteOnes(std::span<Point const> points) {
  std::vector<Point> out;
  embedded_host::each(points.size(), [&](std::size_t i) {
    if (isDrawn(points[i].x) && isDrawn(points[i].y)) out.push_back(points[i]);
  });
  return out;
}

bool rises(std::span<Point const> points) {
  return std::ranges::adjacent_find(points, std::greater_equal<>(), &Point::x) == points.end();
}

void rangesOf(std::span<Point const> points, Range& x, Range& y) {
  for (Point const& p : points) {
    x.take(p.x);
    y.take(p.y);
  }
  x.widen();
  y.widen();
}

std::string asFile(Svg svg) {
  std::string text = std::move(svg).finish();
  std::string const head = "<svg ";
  std::string const style =
      fmt::format("<style>{} svg {{ background: var(--paper); }}</style>", kPageStyle);
  text.replace(0, head.size(), "<svg xmlns=\"http://www.w3.org/2000/svg\" ");
  text.insert(text.find('>') + 1, style);
  return text;
}

Box fileBox() { return {64, 34, kFileWidth - 64 - 16, kFileHeight - 34 - 44}; }

// A grid of dots, two by four in each character (Unicode's braille patterns).
class DotGrid {
 public:
  DotGrid(std::size_t columns, std::size_t rows)
      : columns_(columns), rows_(rows), cells_(columns * rows) {}

  std::size_t width() const { return 2 * columns_; }
  std::size_t height() const { return 4 * rows_; }
  void set(std::size_t x, std::size_t y) {
    static constexpr unsigned kBits[4][2] = {
        {0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
    cells_[y / 4 * columns_ + x / 2] |= kBits[y % 4][x % 2];
  }
  std::string row(std::size_t row) const {
    std::string out;
    for (std::size_t i = 0; i < columns_; ++i) {
      unsigned const code = 0x2800 + cells_[row * columns_ + i];
      out += static_cast<char>(0xE0 | code >> 12);
      out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
      out += static_cast<char>(0x80 | (code & 0x3F));
    }
    return out;
  }

 private:
  std::size_t columns_;
  std::size_t rows_;
  std::vector<unsigned> cells_;
};

}  // namespace

Bins binsOf(std::span<double const> values, std::size_t most) {
  Bins bins;
  Range range;
  bool whole = true;
  embedded_host::each(values.size(), [&](std::size_t i) {
    if (!isDrawn(values[i])) return static_cast<void>(++bins.leftOut);
    range.take(values[i]);
    whole = whole && values[i] == std::floor(values[i]);
  });
  if (range.isEmpty()) return bins;
  auto const n = static_cast<double>(values.size() - bins.leftOut);
  // The rule of Rice: twice the cube root of the number of values.
  double const wanted = std::clamp(std::ceil(2 * std::cbrt(n)), 4.0, static_cast<double>(most - 1));
  double const least = (range.high - range.low) / wanted;
  bool const flat = least <= kNarrowestDrawn;
  bins.width = flat ? 1 : roundStep(whole ? std::max(least, 1.0) : least);
  bins.low = flat ? range.low : std::floor(range.low / bins.width) * bins.width;
  auto const count = static_cast<std::size_t>((range.high - bins.low) / bins.width) + 1;
  bins.counts.assign(count, 0);
  embedded_host::each(values.size(), [&](std::size_t i) {
    if (!isDrawn(values[i])) return;
    auto const bin = static_cast<std::size_t>(std::max(0.0, (values[i] - bins.low) / bins.width));
    ++bins.counts[std::min(bin, count - 1)];
  });
  return bins;
}

std::string histogramText(std::span<double const> values, int width) {
  Bins const bins = binsOf(values, kTextBins);
  if (bins.counts.empty()) return "  nothing to draw\n";
  std::vector<std::string> edges;
  std::size_t edgeWidth = 0;
  for (std::size_t i = 0; i < bins.counts.size(); ++i) {
    double const edge = std::fabs(bins.edge(i)) < bins.width * 1e-9 ? 0 : bins.edge(i);
    edges.push_back(fmt::format("{:.6g}", edge));
    edgeWidth = std::max(edgeWidth, edges.back().size());
  }
  std::uint64_t const most = *std::ranges::max_element(bins.counts);
  std::size_t const countWidth = std::to_string(most).size();
  double const room =
      std::max(8.0, static_cast<double>(width) - static_cast<double>(edgeWidth + countWidth + 6));
  std::string out;
  for (std::size_t i = 0; i < bins.counts.size(); ++i) {
    auto const count = static_cast<double>(bins.counts[i]);
    out += fmt::format("  {} │{} {}\n", paddedLeft(edges[i], edgeWidth),
                       blocks(count / static_cast<double>(most) * room), bins.counts[i]);
  }
  out += fmt::format("  {} values in bins {:.6g} wide{}\n", values.size() - bins.leftOut,
                     bins.width, bins.leftOut ? fmt::format("; {} left out", bins.leftOut) : "");
  return out;
}

std::string chartText(std::span<Point const> given, int width) {
  constexpr std::size_t kRows = 14;
  std::vector<Point> const points = finiteOnes(given);
  if (points.empty()) return "  nothing to draw\n";
  Range x;
  Range y;
  rangesOf(points, x, y);
  std::string const top = fmt::format("{:.5g}", y.high);
  std::string const bottom = fmt::format("{:.5g}", y.low);
  std::size_t const labels = std::max(top.size(), bottom.size());
  std::size_t const columns =
      std::max<std::size_t>(10, static_cast<std::size_t>(std::max(width, 30)) - labels - 5);
  DotGrid grid(columns, kRows);
  auto const place = [](double value, Range const& range, std::size_t cells) {
    double const share = (value - range.low) / (range.high - range.low);
    return std::clamp(share, 0.0, 1.0) * static_cast<double>(cells - 1);
  };
  bool const joined = rises(points) && points.size() > 1;
  embedded_host::each(points.size(), [&](std::size_t i) {
    double const px = place(points[i].x, x, grid.width());
    double const py = place(points[i].y, y, grid.height());
    auto const set = [&](double atX, double atY) {
      grid.set(static_cast<std::size_t>(std::lround(atX)),
               grid.height() - 1 - static_cast<std::size_t>(std::lround(atY)));
    };
    set(px, py);
    if (!joined || i == 0) return;
    double const fromX = place(points[i - 1].x, x, grid.width());
    double const fromY = place(points[i - 1].y, y, grid.height());
    int const steps = static_cast<int>(std::ceil(std::max(px - fromX, std::fabs(py - fromY))));
    for (int s = 1; s < steps; ++s) {
      double const share = static_cast<double>(s) / steps;
      set(fromX + (px - fromX) * share, fromY + (py - fromY) * share);
    }
  });
  std::string out;
  for (std::size_t row = 0; row < kRows; ++row) {
    std::string const label = row == 0 ? top : row == kRows - 1 ? bottom : "";
    out += fmt::format("  {} │{}\n", paddedLeft(label, labels), grid.row(row));
  }
  std::string const left = fmt::format("{:.5g}", x.low);
  std::string const right = fmt::format("{:.5g}", x.high);
  std::size_t const gap =
      columns > left.size() + right.size() ? columns - left.size() - right.size() : 1;
  return out + std::string(labels + 4, ' ') + left + std::string(gap, ' ') + right + '\n';
}

std::string histogramFile(std::span<double const> values) {
  Bins const bins = binsOf(values, kFileBins);
  Svg svg(kFileWidth, kFileHeight, fmt::format("Histogram of {} values", values.size()));
  double most = 1;
  for (std::uint64_t const count : bins.counts) most = std::max(most, static_cast<double>(count));
  Chart chart(
      svg, fileBox(),
      linearAxis(bins.low, bins.edge(std::max<std::size_t>(bins.counts.size(), 1)), "value", 8),
      linearAxis(0, most * 1.05, "values in a bin"));
  chart.frame();
  for (std::size_t i = 0; i < bins.counts.size(); ++i) {
    double const left = chart.x(bins.edge(i));
    double const right = chart.x(bins.edge(i + 1));
    double const top = chart.y(static_cast<double>(bins.counts[i]));
    svg.rectangle(left + 0.5, top, std::max(0.5, right - left - 1), chart.y(0) - top, "ink",
                  fmt::format("{} to {}: {}", readable(bins.edge(i)), readable(bins.edge(i + 1)),
                              readable(static_cast<double>(bins.counts[i]))));
  }
  return asFile(std::move(svg));
}

std::string chartFile(std::span<Point const> given) {
  std::vector<Point> const points = finiteOnes(given);
  Range x;
  Range y;
  rangesOf(points, x, y);
  if (points.empty()) x = y = {0, 1};
  Svg svg(kFileWidth, kFileHeight, fmt::format("Chart of {} points", points.size()));
  double const margin = (y.high - y.low) * 0.04;
  Chart chart(svg, fileBox(), linearAxis(x.low, x.high, "x", 8),
              linearAxis(y.low - margin, y.high + margin, "y"));
  chart.frame();
  if (rises(points) && points.size() > 1) {
    chart.line(points, "data");
  } else {
    chart.dots(points, points.size() > 500 ? "speck" : "dot small");
  }
  return asFile(std::move(svg));
}

}  // namespace report
