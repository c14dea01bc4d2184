#pragma once

// Generators by their names: as the stream factory knows them, and as users may call them.

#include <string>
#include <string_view>
#include <vector>

#include "host/ascii_case.h"
#include "host/closest_name.h"
#include "tfl_rng/generator_catalogue.h"

namespace rng {

// The generator that the stream factory makes for `type`, its name or other spelling in any case;
// null for none.
constexpr tfl_rng::Generator const* generatorNamed(std::string_view type) {
  for (tfl_rng::Generator const& row : tfl_rng::generators()) {
    if (ascii_case::equal(type, row.name)) return &row;
    if (*row.otherSpelling && ascii_case::equal(type, row.otherSpelling)) return &row;
  }
  return nullptr;
}

// The generator that a user means: the same, or by its short name in any case; null for none.
constexpr tfl_rng::Generator const* findGenerator(std::string_view spelling) {
  for (tfl_rng::Generator const& row : tfl_rng::generators())
    if (*row.traits.shortName && ascii_case::equal(spelling, row.traits.shortName)) return &row;
  return generatorNamed(spelling);
}

// The spelling that was probably meant where findGenerator() finds none; empty when none is close.
inline std::string closestGenerator(std::string_view spelling) {
  std::vector<std::string> known;
  for (tfl_rng::Generator const& row : tfl_rng::generators())
    for (char const* const one : {row.name, row.otherSpelling, row.traits.shortName})
      if (*one) known.emplace_back(one);
  return names::closestName(spelling, known);
}

}  // namespace rng
