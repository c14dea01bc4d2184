#pragma once

// All core generators as one list of types, made and saved in one way.

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "tfl_rng/dsfmt19937.h"
#include "tfl_rng/mcg16807.h"
#include "tfl_rng/mlfg6331_64.h"
#include "tfl_rng/mrg32k3a.h"
#include "tfl_rng/mt19937ar.h"
#include "tfl_rng/philox4x32.h"
#include "tfl_rng/shr3cong.h"
#include "tfl_rng/swb2712.h"
#include "tfl_rng/threefry4x64.h"

namespace testing_support {

using Cores = testing::Types<tfl_rng::mt19937ar, tfl_rng::dsfmt19937, tfl_rng::mlfg6331_64,
                             tfl_rng::mrg32k3a, tfl_rng::mcg16807, tfl_rng::philox4x32,
                             tfl_rng::shr3cong, tfl_rng::swb2712, tfl_rng::threefry4x64>;
using StreamCores = testing::Types<tfl_rng::mlfg6331_64, tfl_rng::mrg32k3a, tfl_rng::philox4x32,
                                   tfl_rng::threefry4x64>;

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
  if constexpr (requires { core.state(); })
    return core.state();
  else
    return core.word();
}
template <class Core, class State>
void setState(Core& core, State const& state) {
  if constexpr (requires { core.setState(state); })
    core.setState(state);
  else
    core.setWord(state);
}

template <class Core>
std::vector<double> draw(Core& core, std::size_t n) {
  std::vector<double> values(n);
  core.randu(values.data(), n);
  return values;
}

}  // namespace testing_support
