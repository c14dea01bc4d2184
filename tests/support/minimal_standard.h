#pragma once

// The published words of the minimal standard generator from 1, and the normals that the polar
// method makes of them.

#include <cmath>
#include <utility>
#include <vector>

#include "tests/support/known_answers.h"

namespace known_answers {

// The first 100 words.
inline std::vector<double> minimalStandardWords() {
  std::vector<double> words;
  for (auto const& row : rows("kat/minstd16807.txt"))
    if (words.size() < 100) words.push_back(std::stod(row.at(1)));
  return words;
}

// The normals of each accepted pair of them; `used`, if given, becomes the number of words used.
inline std::vector<std::pair<double, double>> polarPairs(std::size_t* used = nullptr) {
  std::vector<std::pair<double, double>> pairs;
  auto const words = minimalStandardWords();
  for (std::size_t i = 0; i + 1 < words.size(); i += 2) {
    const double x = 2 * words[i] / 2147483647 - 1;
    const double y = 2 * words[i + 1] / 2147483647 - 1;
    const double s = x * x + y * y;
    if (s > 1) continue;
    const double scale = std::sqrt(-2 * std::log(s) / s);
    pairs.emplace_back(x * scale, y * scale);
    if (used) *used = i + 2;
  }
  return pairs;
}

}  // namespace known_answers
