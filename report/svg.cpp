#include "report/svg.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>

namespace report {

namespace {

// A coordinate, to a tenth and without a trailing ".0".
std::string at(double value) {
  long const tenths = std::lround(value * 10);
  if (tenths % 10 == 0) return fmt::format("{}", tenths / 10);
  return fmt::format("{}{}.{}", tenths < 0 ? "-" : "", std::labs(tenths) / 10,
                     std::labs(tenths) % 10);
}

std::string withTitle(std::string_view element, std::string_view title) {
  if (title.empty()) return "/>\n";
  return fmt::format("><title>{}</title></{}>\n", escaped(title), element);
}

std::string groupedThousands(double whole) {
  std::string digits = fmt::format("{:.0f}", whole);
  for (std::size_t i = digits.size(); i > 3;) {
    i -= 3;
    digits.insert(i, 1, ',');
  }
  return digits;
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string out;
  for (char const c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string powerText(int base, int exponent) {
  static constexpr char const* kDigits[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
  std::string out = std::to_string(base);
  if (exponent < 0) out += "⁻";
  for (char const c : std::to_string(std::abs(exponent))) out += kDigits[c - '0'];
  return out;
}

std::string readable(double value, int digits) {
  if (std::isnan(value)) return "undefined";
  if (std::isinf(value)) return value < 0 ? "−∞" : "∞";
  std::string const sign = value < 0 ? "−" : "";
  double const size = std::fabs(value);
  if (size == 0) return "0";
  if (size == std::floor(size) && size < 1e10) return sign + groupedThousands(size);
  int const exponent = static_cast<int>(std::floor(std::log10(size)));
  if (exponent < -4 || exponent > 9) {
    double const lead = size / std::pow(10, exponent);
    return fmt::format("{}{:.{}g}×{}", sign, lead, digits, powerText(10, exponent));
  }
  if (exponent >= digits) return sign + groupedThousands(std::round(size));
  return sign + fmt::format("{:.{}g}", size, digits);
}

Svg::Svg(double width, double height, std::string_view title)
    : out_(fmt::format("<svg viewBox=\"0 0 {} {}\" role=\"img\" aria-label=\"{}\">\n<title>{}"
                       "</title>\n",
                       at(width), at(height), escaped(title), escaped(title))) {}

void Svg::line(double x1, double y1, double x2, double y2, std::string_view style) {
  out_ += fmt::format("<path class=\"{}\" d=\"M{} {}L{} {}\"/>\n", style, at(x1), at(y1), at(x2),
                      at(y2));
}

void Svg::rectangle(double x, double y, double width, double height, std::string_view style,
                    std::string_view title) {
  out_ += fmt::format("<rect class=\"{}\" x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\"{}", style,
                      at(x), at(y), at(width), at(height), withTitle("rect", title));
}

void Svg::circle(double x, double y, double radius, std::string_view style,
                 std::string_view title) {
  out_ += fmt::format("<circle class=\"{}\" cx=\"{}\" cy=\"{}\" r=\"{}\"{}", style, at(x), at(y),
                      at(radius), withTitle("circle", title));
}

void Svg::path(std::string_view commands, std::string_view style) {
  if (commands.empty()) return;
  out_ += fmt::format("<path class=\"{}\" d=\"{}\"/>\n", style, commands);
}

void Svg::text(double x, double y, std::string_view text, std::string_view style, Anchor anchor) {
  static constexpr char const* kAnchors[] = {"", " text-anchor=\"middle\"", " text-anchor=\"end\""};
  out_ += fmt::format("<text class=\"{}\" x=\"{}\" y=\"{}\"{}>{}</text>\n", style, at(x), at(y),
                      kAnchors[static_cast<int>(anchor)], escaped(text));
}

std::string Svg::finish() && { return std::move(out_) + "</svg>\n"; }

void Path::add(char command, double x, double y) {
  commands_ += fmt::format("{}{} {}", command, at(x), at(y));
}

void Path::dot(double x, double y) {
  moveTo(x, y);
  commands_ += "h0";
}

void Path::box(double x, double y, double width, double height) {
  moveTo(x, y);
  commands_ += fmt::format("h{}v{}h-{}Z", at(width), at(height), at(width));
}

}  // namespace report
