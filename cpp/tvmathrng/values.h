#pragma once

// Seeds, counts and positions as types of their own: none stands in for another, and none comes
// from a bare number unasked. Seed{-1} does not compile.

#include <tvmathrng/cxx20.h>

#include <compare>
#include <concepts>
#include <cstdint>

namespace tvmathrng {

/// A whole number with a meaning, which `Meaning` keeps apart from all others.
template <class Meaning, std::unsigned_integral T>
class Number {
 public:
  using value_type = T;

  constexpr explicit Number(T value) noexcept : value_(value) {}
  constexpr T value() const noexcept { return value_; }
  friend constexpr auto operator<=>(Number, Number) noexcept = default;

 private:
  T value_;
};

/// Where a stream starts: the same seed, the same numbers, on every machine.
using Seed = Number<struct SeedMeaning, std::uint32_t>;
/// How many streams of one seed there are.
using StreamCount = Number<struct StreamCountMeaning, std::uint64_t>;
/// Which of them, from 0; stream k of the host language is StreamIndex{k - 1}.
using StreamIndex = Number<struct StreamIndexMeaning, std::uint64_t>;
/// A substream of a stream, from 0; substream k of the host language is Substream{k - 1}.
using Substream = Number<struct SubstreamMeaning, std::uint64_t>;
/// How many values there are to choose from.
using Population = Number<struct PopulationMeaning, std::uint64_t>;

/// A closed range of whole numbers.
template <class T>
struct Limits {
  T lowest;
  T highest;
};

}  // namespace tvmathrng
