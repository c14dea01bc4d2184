#include "report/chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "embedded_host/interrupt.h"

namespace report {

namespace {

constexpr double kTickGap = 7;
constexpr double kMarkRow = 15;
constexpr int kHeatSteps = 4;  // on each side of the middle

std::string tickText(double value, double step) {
  if (std::fabs(value) < step * 1e-9) return "0";
  if (std::fabs(value) >= 1e5 || step < 1e-4) return readable(value, 3);
  int const decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
  return (value < 0 ? "−" : "") + fmt::format("{:.{}f}", std::fabs(value), decimals);
}

}  // namespace

Scale::Scale(Kind kind, double low, double high, double linearPart)
    : kind_(kind), low_(low), high_(high), linearPart_(linearPart) {}

double Scale::bent(double value) const {
  if (kind_ == Kind::linear) return value;
  if (kind_ == Kind::log) return std::log(value);
  return std::asinh(value / linearPart_);
}

double Scale::operator()(double value) const {
  double const from = bent(low_);
  double const clamped = std::clamp(value, std::min(low_, high_), std::max(low_, high_));
  return (bent(clamped) - from) / (bent(high_) - from);
}

std::vector<Scale::Tick> Scale::ticks(int wanted, int base) const {
  std::vector<Tick> out;
  if (kind_ == Kind::linear) {
    double const rough = (high_ - low_) / wanted;
    double const power = std::pow(10, std::floor(std::log10(rough)));
    double step = 10 * power;
    for (double const factor : {1.0, 2.0, 5.0}) {
      if (factor * power >= rough * 0.999) {
        step = factor * power;
        break;
      }
    }
    // Counted, because far from 0 a step may be too small to change the number.
    double const first = std::ceil(low_ / step - 1e-9);
    int const most = static_cast<int>((high_ - low_) / step) + 1;
    for (int i = 0; i <= most; ++i) {
      double const value = (first + i) * step;
      if (value <= high_ + step * 1e-9) out.push_back({value, tickText(value, step)});
    }
  } else if (kind_ == Kind::log) {
    double const logBase = std::log(static_cast<double>(base));
    int const first = static_cast<int>(std::ceil(std::log(low_) / logBase - 1e-9));
    int const last = static_cast<int>(std::floor(std::log(high_) / logBase + 1e-9));
    int const step = std::max(1, (last - first + wanted) / wanted);
    for (int e = first; e <= last; e += step) {
      bool const asDecimal = base == 10 && std::abs(e) < 4;
      out.push_back(
          {std::pow(base, e), asDecimal ? readable(std::pow(10, e)) : powerText(base, e)});
    }
  } else {
    std::vector<double> positive;
    double const top = std::max(high_, -low_);
    for (double v = std::pow(10, std::ceil(std::log10(linearPart_) - 1e-9)); v <= top * 1.001;
         v *= 10) {
      positive.push_back(v);
    }
    for (std::size_t i = positive.size(); i-- > 0;) {
      if (-positive[i] >= low_ * 1.001) out.push_back({-positive[i], "−" + readable(positive[i])});
    }
    out.push_back({0, "0"});
    for (double const v : positive) {
      if (v <= high_ * 1.001) out.push_back({v, readable(v)});
    }
  }
  return out;
}

Axis linearAxis(double low, double high, std::string name, int ticks) {
  Scale const scale(Scale::Kind::linear, low, high);
  return {scale, std::move(name), scale.ticks(ticks)};
}

Axis logAxis(double low, double high, std::string name, int base, int ticks) {
  Scale const scale(Scale::Kind::log, low, high);
  return {scale, std::move(name), scale.ticks(ticks, base)};
}

double textWidth(std::string_view utf8, double size) {
  auto const characters = std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  });
  return static_cast<double>(characters) * size * 0.56;
}

Chart::Chart(Svg& svg, Box plot, Axis x, Axis y)
    : svg_(svg), plot_(plot), x_(std::move(x)), y_(std::move(y)) {}

void Chart::frame() {
  double const right = plot_.x + plot_.width;
  double const bottom = plot_.y + plot_.height;
  for (auto const& tick : y_.ticks) {
    svg_.line(plot_.x, y(tick.value), right, y(tick.value), tick.value == 0 ? "zero" : "grid");
    svg_.text(plot_.x - kTickGap, y(tick.value) + 4, tick.label, "tick", Anchor::end);
  }
  svg_.line(plot_.x, bottom, right, bottom, "axis");
  for (auto const& tick : x_.ticks) {
    svg_.line(x(tick.value), bottom, x(tick.value), bottom + 4, "axis");
    svg_.text(x(tick.value), bottom + 18, tick.label, "tick", Anchor::middle);
  }
  if (!y_.name.empty()) svg_.text(0, plot_.y - 12, y_.name, "name");
  if (!x_.name.empty()) svg_.text(right, bottom + 36, x_.name, "name", Anchor::end);
}

void Chart::band(std::span<Point const> lower, std::span<Point const> upper,
                 std::string_view style) {
  Path path;
  for (Point const& p : lower) {
    path.empty() ? path.moveTo(x(p.x), y(p.y)) : path.lineTo(x(p.x), y(p.y));
  }
  for (std::size_t i = upper.size(); i-- > 0;) path.lineTo(x(upper[i].x), y(upper[i].y));
  path.close();
  svg_.path(path.commands(), style);
}

void Chart::band(double lower, double upper, std::string_view style) {
  svg_.rectangle(plot_.x, y(upper), plot_.width, y(lower) - y(upper), style);
}

void Chart::line(std::span<Point const> points, std::string_view style) {
  Path path;
  embedded_host::each(points.size(), [&](std::size_t i) {
    Point const& p = points[i];
    path.empty() ? path.moveTo(x(p.x), y(p.y)) : path.lineTo(x(p.x), y(p.y));
  });
  svg_.path(path.commands(), style);
}

void Chart::stairs(std::span<double const> values, std::string_view style) {
  Path path;
  double const step = plot_.width / static_cast<double>(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    double const left = plot_.x + step * static_cast<double>(i);
    path.empty() ? path.moveTo(left, y(values[i])) : path.lineTo(left, y(values[i]));
    path.lineTo(left + step, y(values[i]));
  }
  svg_.path(path.commands(), style);
}

void Chart::dots(std::span<Point const> points, std::string_view style) {
  Path path;
  embedded_host::each(points.size(),
                      [&](std::size_t i) { path.dot(x(points[i].x), y(points[i].y)); });
  svg_.path(path.commands(), style);
}

void Chart::horizontal(double value, std::string_view style) {
  svg_.line(plot_.x, y(value), plot_.x + plot_.width, y(value), style);
}

void Chart::mark(double value, std::string_view label) {
  double const width = textWidth(label);
  double const left = std::clamp(x(value) - width / 2, plot_.x, plot_.x + plot_.width - width);
  std::size_t row = 0;
  while (row < markEnds_.size() && markEnds_[row] > left) ++row;
  if (row == markEnds_.size()) markEnds_.push_back(0);
  markEnds_[row] = left + width + 8;
  double const top = plot_.y + 12 + kMarkRow * static_cast<double>(row);
  svg_.line(x(value), top + 4, x(value), plot_.y + plot_.height, "marker");
  svg_.text(left + width / 2, top, label, "mark", Anchor::middle);
}

void Chart::label(double atX, double atY, std::string_view text, Anchor anchor, double dx,
                  double dy, std::string_view style) {
  svg_.text(x(atX) + dx, y(atY) + dy, text, style, anchor);
}

void heatMap(Svg& svg, Box box, std::span<double const> values, std::size_t columns, double limit) {
  std::vector<Path> steps(2 * kHeatSteps + 1);
  Path outside;
  std::size_t const rows = values.size() / columns;
  double const width = box.width / static_cast<double>(columns);
  double const height = box.height / static_cast<double>(rows);
  for (std::size_t i = 0; i < values.size(); ++i) {
    double const left = box.x + width * static_cast<double>(i % columns);
    std::size_t const row = i / columns;
    double const top = box.y + height * static_cast<double>(row);
    if (std::isnan(values[i])) continue;
    bool const beyond = std::fabs(values[i]) > limit;
    auto const step = std::lround(values[i] / limit * kHeatSteps) + kHeatSteps;
    Path& path = beyond ? outside : steps[static_cast<std::size_t>(step)];
    path.box(left, top, width, height);
  }
  for (std::size_t i = 0; i < steps.size(); ++i) {
    svg.path(steps[i].commands(), fmt::format("heat{}", i));
  }
  svg.path(outside.commands(), "outside");
}

void heatMapKey(Svg& svg, double x, double y, double width, std::string_view low,
                std::string_view middle, std::string_view high) {
  constexpr int kColours = 2 * kHeatSteps + 1;
  double const step = width / kColours;
  for (int i = 0; i < kColours; ++i) {
    svg.rectangle(x + step * i, y, step, 9, fmt::format("heat{}", i));
  }
  svg.text(x, y + 24, low, "tick", Anchor::start);
  svg.text(x + width / 2, y + 24, middle, "tick", Anchor::middle);
  svg.text(x + width, y + 24, high, "tick", Anchor::end);
}

}  // namespace report
