#pragma once

// Charts in a drawing: two scales, ticks that fit, bands, lines, dots and labels beside them.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "report/svg.h"

namespace report {

struct Point {
  double x;
  double y;
};

// From values to places along an axis.
class Scale {
 public:
  // `signedLog` is linear around 0 and logarithmic far from it, on both sides; log scales take
  // positive values.
  enum class Kind { linear, log, signedLog };

  struct Tick {
    double value;
    std::string label;
  };

  // `linearPart` is where a signedLog scale turns from linear to logarithmic.
  Scale(Kind kind, double low, double high, double linearPart = 0);

  // 0 at `low`, 1 at `high`; values beyond are cut off.
  double operator()(double value) const;
  double low() const { return low_; }
  double high() const { return high_; }
  // Round values, about `wanted` of them; powers of ten on log scales, of two when `base` is 2.
  std::vector<Tick> ticks(int wanted, int base = 10) const;

 private:
  double bent(double value) const;

  Kind kind_;
  double low_;
  double high_;
  double linearPart_;
};

struct Axis {
  Scale scale;
  std::string name;
  std::vector<Scale::Tick> ticks;
};
Axis linearAxis(double low, double high, std::string name, int ticks = 5);
Axis logAxis(double low, double high, std::string name, int base = 10, int ticks = 6);

// A place of the drawing, in its units.
struct Box {
  double x;
  double y;
  double width;
  double height;
};

// One chart on a drawing. The name of the vertical axis stands above it, that of the horizontal one
// below.
class Chart {
 public:
  Chart(Svg& svg, Box plot, Axis x, Axis y);

  // Grid, axes and their texts; what is drawn later lies on top.
  void frame();

  double x(double value) const { return plot_.x + plot_.width * x_.scale(value); }
  double y(double value) const { return plot_.y + plot_.height * (1 - y_.scale(value)); }
  Box const& plot() const { return plot_; }

  // The area between two lines.
  void band(std::span<Point const> lower, std::span<Point const> upper, std::string_view style);
  void band(double lower, double upper, std::string_view style);
  void line(std::span<Point const> points, std::string_view style);
  // Values of equal bins from x.low() to x.high(), as stairs.
  void stairs(std::span<double const> values, std::string_view style);
  // Those outside of the y axis are drawn at its end.
  void dots(std::span<Point const> points, std::string_view style);
  void horizontal(double value, std::string_view style);
  // A vertical line with its label on top; labels that would overlap move to the next row.
  void mark(double value, std::string_view label);
  // Text beside a point, moved by (dx, dy).
  void label(double atX, double atY, std::string_view text, Anchor anchor, double dx = 0,
             double dy = 0, std::string_view style = "mark");

 private:
  Svg& svg_;
  Box plot_;
  Axis x_;
  Axis y_;
  std::vector<double> markEnds_;  // by row
};

// About how wide a text is in the page's font.
double textWidth(std::string_view utf8, double size = 12);

// A matrix of values as squares of diverging colours: -`limit` to `limit` in steps, values beyond
// in the colour of what is wrong. Rows from top to bottom.
void heatMap(Svg& svg, Box box, std::span<double const> values, std::size_t columns, double limit);
// Its key: colours with the values at their ends and in the middle.
void heatMapKey(Svg& svg, double x, double y, double width, std::string_view low,
                std::string_view middle, std::string_view high);

}  // namespace report
