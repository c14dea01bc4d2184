#pragma once

// The catalogue of generators: what generators.def says of each one. Whoever names generators, or
// needs to know something about one, asks here; rng/generator_names.h finds them by their names.

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>

namespace tfl_rng {

enum class Family { Single, Substreams };

// What the statistical tests of this library find.
enum class Verdict { untold, passes, fails };

// Which steps of a generator belong together.
struct Ties {
  enum class Kind {
    recent,      // a step comes of the `far` steps before it, or shares a block of as many
    lags,        // step n comes of steps n - near and n - far
    difference,  // the same, by u(n) = u(n - near) - u(n - far) modulo 1, less a borrow
  };
  Kind kind;
  int near;
  int far;
};

struct GeneratorTraits {
  char const* shortName;  // the one that most users know it by; "" for none
  int bits;               // leading bits of a draw that vary: in full precision,
  int reducedBits;        // and in reduced precision; equal where the modes are the same
  // Steps of a draw in full precision, where lengths of streams and ties count steps. In reduced
  // precision it is one.
  int stepsADraw;
  int log2Draws;  // of the draws of full precision in a period
  Ties ties;
  int zigguratLayers;  // of its normals by Ziggurat: 128, or 256 as the stream's has
  Verdict battery;
};

struct Generator {
  char const* name;
  char const* otherSpelling;  // "" for none
  Family family;
  int stateClass;  // 0 double, 7 uint32, 9 uint64
  std::size_t stateLen;
  char const* nativeNormals;  // "" for none
  char const* period;
  GeneratorTraits traits;

  constexpr bool hasSubstreams() const { return family == Family::Substreams; }
  constexpr bool hasTwoPrecisions() const { return traits.reducedBits != traits.bits; }
};

namespace detail {

using enum Family;
inline constexpr Generator kGenerators[] = {
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, period, \
                      ...)                                                                      \
  {#name, otherSpelling, family, stateClass, stateLen, normals, period, {__VA_ARGS__}},
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};

inline constexpr auto kNames = [] {
  std::array<char const*, std::size(kGenerators)> names{};
  std::ranges::transform(kGenerators, names.begin(), &Generator::name);
  return names;
}();

// A row that leaves a trait out would give it a value of its own making.
static_assert(std::ranges::all_of(kGenerators,
                                  [](Generator const& g) {
                                    GeneratorTraits const& t = g.traits;
                                    return t.shortName && t.reducedBits > 0 &&
                                           t.bits >= t.reducedBits && t.stepsADraw > 0 &&
                                           t.log2Draws > 0 && t.ties.near > 0 &&
                                           t.ties.far >= t.ties.near &&
                                           (t.zigguratLayers == 128 || t.zigguratLayers == 256) &&
                                           t.battery != Verdict::untold;
                                  }),
              "a row of generators.def leaves a trait out");

}  // namespace detail

// All of them, in the order of the registry.
constexpr std::span<Generator const> generators() { return detail::kGenerators; }
constexpr std::span<char const* const> generatorNames() { return detail::kNames; }

// The row of a core class.
template <class Core>
inline constexpr Generator const* kGeneratorOf = nullptr;
namespace detail {
enum class Row : std::size_t {
#define TFL_GENERATOR(name, ...) name,
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};
}  // namespace detail
#define TFL_GENERATOR(name, core, ...)                   \
  class core;                                            \
  template <>                                            \
  inline constexpr Generator const* kGeneratorOf<core> = \
      &detail::kGenerators[static_cast<std::size_t>(detail::Row::name)];
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR

// The generators behind the older two-part syntax, rand('state',1) and so on, by keyword.
struct LegacyKeyword {
  char const* keyword;
  Generator const* generator;
  bool fullPrecision;
};
inline constexpr LegacyKeyword kLegacyUniforms[] = {
    {"seed", kGeneratorOf<mcg16807>, false},
    {"state", kGeneratorOf<swb2712>, true},
    {"twister", kGeneratorOf<mt19937ar>, true},
};
inline constexpr LegacyKeyword kLegacyNormals[] = {
    {"seed", kGeneratorOf<mcg16807>, false},
    {"state", kGeneratorOf<shr3cong>, true},
};

}  // namespace tfl_rng
