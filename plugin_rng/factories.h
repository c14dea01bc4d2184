#pragma once

// The plug-in factory of every registered generator: plugin_rng::make_mt19937ar and so on.

#include "plugin_rng/interfaces.h"

namespace plugin_rng {

#define TFL_GENERATOR(name, ...)                                                                   \
  IPluginRNG* make_##name(std::uint64_t numStreams, std::uint64_t streamIndex, std::uint32_t seed, \
                          double const* params, std::uint64_t nParams);
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR

}  // namespace plugin_rng
