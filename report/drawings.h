#pragma once

// Drawings of values that a user has: as text for a terminal, and as an SVG file.

#include <span>
#include <string>
#include <vector>

#include "report/chart.h"

namespace report {

// Equal bins with round edges. Values that are not finite, or beyond 1e300, lie in none.
struct Bins {
  double low = 0;
  double width = 1;
  std::vector<std::uint64_t> counts;
  std::uint64_t leftOut = 0;

  double edge(std::size_t i) const { return low + width * static_cast<double>(i); }
};
// At most `most` bins, fewer for few values; none without a value to draw.
Bins binsOf(std::span<double const> values, std::size_t most);

// Lines of at most `width` columns.
std::string histogramText(std::span<double const> values, int width);
// Points, joined by lines where x rises from each to the next.
std::string chartText(std::span<Point const> given, int width);

// Files that stand alone, light and dark.
std::string histogramFile(std::span<double const> values);
std::string chartFile(std::span<Point const> given);

}  // namespace report
