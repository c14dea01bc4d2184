#pragma once

// Writes SVG: elements with classes that the page's style sheet gives colours to, in light and
// dark.
//
//   chart     .axis .grid .zero            lines of the frame
//   data      .data .dot .step             what was measured
//   expected  .band .limit                 where it should lie
//   .bad                                   what lies outside
//   text      .tick .name .note .mark      numbers at axes, names of axes, remarks, direct labels

#include <string>
#include <string_view>
#include <vector>

namespace report {

// Text with the characters that HTML reserves written out.
std::string escaped(std::string_view text);

// A number for reading: 0.00021, 16,777,216, 2.1×10⁻⁹; `digits` significant ones.
std::string readable(double value, int digits = 3);
// 10⁻³
std::string powerText(int base, int exponent);

enum class Anchor { start, middle, end };

// One drawing. Its title is what a screen reader says instead of showing it.
class Svg {
 public:
  Svg(double width, double height, std::string_view title);

  void line(double x1, double y1, double x2, double y2, std::string_view style);
  void rectangle(double x, double y, double width, double height, std::string_view style,
                 std::string_view title = {});
  void circle(double x, double y, double radius, std::string_view style,
              std::string_view title = {});
  // `commands` as the attribute d takes them; see Path.
  void path(std::string_view commands, std::string_view style);
  void text(double x, double y, std::string_view text, std::string_view style,
            Anchor anchor = Anchor::start);

  std::string finish() &&;

 private:
  std::string out_;
};

// The commands of a path, coordinates rounded to a tenth.
class Path {
 public:
  void moveTo(double x, double y) { add('M', x, y); }
  void lineTo(double x, double y) { add('L', x, y); }
  void close() { commands_ += 'Z'; }
  // A point of its own, drawn as a round dot as wide as the stroke.
  void dot(double x, double y);
  void box(double x, double y, double width, double height);

  bool empty() const { return commands_.empty(); }
  std::string const& commands() const { return commands_; }

 private:
  void add(char command, double x, double y);

  std::string commands_;
};

}  // namespace report
