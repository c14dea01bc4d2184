#pragma once

// All core generators as one list of types, made and saved in one way.

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>
#include <vector>

#include <core_headers.h>  // of all cores; written by tfl_rng/CMakeLists.txt

namespace testing_support {

// The lists below begin with a type that is none of theirs, so that each core brings its comma.
template <class First, class... Rest>
struct After {
  using Types = testing::Types<Rest...>;
};

using Cores = After<void
#define TFL_GENERATOR(name, core, ...) , tfl_rng::core
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
                    >::Types;

#define TV_STREAMS_Single(core)
#define TV_STREAMS_Substreams(core) , tfl_rng::core
using StreamCores = After<void
#define TFL_GENERATOR(name, core, otherSpelling, family, ...) TV_STREAMS_##family(core)
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
                          >::Types;
#undef TV_STREAMS_Substreams
#undef TV_STREAMS_Single

template <class Core>
constexpr bool kHasNormals = requires(Core core, double* out) {
  core.randn(out, 1);
};

template <class Core>
Core makeCore(std::uint32_t seed, bool fullPrecision) {
  if constexpr (std::is_base_of_v<tfl_rng::CoreStreamRNG, Core>)
    return Core(seed, 1, fullPrecision);
  else
    return Core(seed, fullPrecision);
}

template <class Core>
auto stateOf(Core const& core) {
  std::vector<typename Core::StateWord> words(Core::kStateWords);
  core.save(words.data());
  return words;
}
template <class Core>
void setState(Core& core, std::vector<typename Core::StateWord> const& words) {
  if (!core.load(words.data())) throw std::logic_error("a state that was saved is refused");
}

template <class Core>
std::vector<double> draw(Core& core, std::size_t n) {
  std::vector<double> values(n);
  core.randu(values.data(), n);
  return values;
}

}  // namespace testing_support
