#pragma once

// Generators by their names: as the stream factory knows them, and as users may call them.

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/ascii_case.h"
#include "host/closest_name.h"
#include "tfl_rng/generator_catalogue.h"

namespace rng {

namespace detail {

struct Spelling {
  std::string_view text;  // "" stands for none
  tfl_rng::Generator const* generator;
};

constexpr std::size_t kCount = tfl_rng::generators().size();
// What the factory knows comes first.
inline constexpr auto kSpellings = [] {
  std::array<Spelling, 3 * kCount> all;
  for (std::size_t i = 0; i < kCount; ++i) {
    tfl_rng::Generator const& row = tfl_rng::generators()[i];
    all[2 * i] = {row.name, &row};
    all[2 * i + 1] = {row.otherSpelling, &row};
    all[2 * kCount + i] = {row.traits.shortName, &row};
  }
  return all;
}();
constexpr std::span<Spelling const> kOfFactory(kSpellings.data(), 2 * kCount);

constexpr tfl_rng::Generator const* find(std::span<Spelling const> spellings,
                                         std::string_view text) {
  for (Spelling const& spelling : spellings)
    if (!text.empty() && ascii_case::equal(text, spelling.text)) return spelling.generator;
  return nullptr;
}

}  // namespace detail

// The generator that the stream factory makes for `type`, its name or other spelling in any case;
// null for none.
constexpr tfl_rng::Generator const* generatorNamed(std::string_view type) {
  return detail::find(detail::kOfFactory, type);
}

// The generator that a user means: the same, or by its short name in any case; null for none.
constexpr tfl_rng::Generator const* findGenerator(std::string_view spelling) {
  return detail::find(detail::kSpellings, spelling);
}

// The spelling that was probably meant where findGenerator() finds none; empty when none is close.
inline std::string closestGenerator(std::string_view spelling) {
  std::vector<std::string> known;
  for (detail::Spelling const& row : detail::kSpellings)
    if (!row.text.empty()) known.emplace_back(row.text);
  return names::closestName(spelling, known);
}

}  // namespace rng
