#pragma once

// Reports of generators as one HTML file: no network, no script, light and dark, for screens of all
// sizes and for paper.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "report/plots.h"

namespace report {

// The chance that a page of a perfect source has any red verdict.
inline constexpr double kFamilyError = 1e-3;

struct Result {
  Plot const* plot;
  Finding finding;
};

// Told how much is done, 0 to 1, and what was finished last. Called from several threads, one at a
// time.
using Progress = std::function<void(double share, std::string_view what)>;

// Measures all plots of a generator, on all cores; what measures time runs after the rest, alone.
std::vector<Result> measureAll(Subject const& subject, Progress const& progress = {});

// What is red and what is not, over all tests of a page (Holm's procedure).
struct Judgement {
  double level = 0;              // a p below this is red in any case
  std::size_t tests = 0;         // on the page
  std::vector<bool> red;         // by result
  std::vector<double> smallest;  // p of each result's oddest test; NaN without tests

  std::size_t redCount() const;
};
Judgement judge(std::vector<Result> const& results);

// The page of one generator.
std::string reportPage(Subject const& subject, std::vector<Result> const& results,
                       std::string_view version);

// A generator among others.
struct Entry {
  Subject subject;
  std::vector<Result> results;
};
// One page that compares generators.
std::string comparisonPage(std::vector<Entry> const& entries, std::string_view version);

}  // namespace report
