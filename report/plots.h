#pragma once

// The plots of a report: each measures something of a generator, says in one line whether it lies
// where that of a perfect source would, and draws it together with the band where it should lie.

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "report/chart.h"
#include "report/subject.h"

namespace report {

struct Test {
  std::string name;
  double p;  // that a perfect source looks at least as odd
};

// What a drawing is made for.
struct Frame {
  double width;
  // A test with a p below this turns the verdict red. Bands are drawn for it, so that what is red
  // lies outside of its band.
  double level;

  bool isNarrow() const { return width < 500; }
  // The usual chart of a height: room for the axes' texts on the left, above and below.
  Box plot(double height, double left = 52) const {
    return {left, 34, width - left - 12, height - 34 - 44};
  }
};

// Times of a value: of rand and randn in large requests, of rand alone.
struct Nanoseconds {
  double uniforms = 0;
  double normals = 0;
  double alone = 0;
};

struct Finding {
  std::vector<Test> tests;
  std::string good;  // the verdict in one line
  std::string bad;
  std::string note;  // how to read the drawing
  std::function<std::string(Frame const&)> draw;
  // The same without texts, small, where generators are compared; not of every plot.
  std::function<void(Svg&, Box, double level)> sketch;
  Nanoseconds nanoseconds;  // of the plot of speed
  bool holds = true;        // false: red whatever the tests say
  bool isFact = false;      // has no verdict
};

struct Plot {
  char const* id;
  char const* group;
  char const* title;
  Finding (*measure)(Subject const&);
  bool alone;  // measures time or changes settings of the process: nothing may run beside it
};

std::span<Plot const> plots();

// Each in the file of its group.
Finding measureDensity(Subject const& subject);
Finding measureEcdf(Subject const& subject);
Finding measureBits(Subject const& subject);
Finding measureQuantiles(Subject const& subject);
Finding measureSeam(Subject const& subject);
Finding measurePairs(Subject const& subject);
Finding measureStrip(Subject const& subject);
Finding measurePlanes(Subject const& subject);
Finding measureAutocorrelation(Subject const& subject);
Finding measureNeighbours(Subject const& subject);
Finding measureIntegers(Subject const& subject);
Finding measurePermutations(Subject const& subject);
Finding measureStreamMap(Subject const& subject);
Finding measureEquality(Subject const& subject);
Finding measureSpeed(Subject const& subject);

}  // namespace report
