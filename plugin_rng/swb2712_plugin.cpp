#include "tfl_rng/swb2712.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/plugin_rng.h"
#include "plugin_rng/saved_state.h"
#include "tfl_rng/convert.h"
#include "tfl_rng/to_double.h"

namespace plugin_rng {
namespace {

using tfl_rng::kSmallestUniform;
constexpr std::size_t kLags = tfl_rng::swb2712::kLags;
constexpr std::size_t kBorrow = kLags, kPosition = kLags + 1, kCounter = kLags + 2;
static_assert(kStateLen<tfl_rng::swb2712> == kCounter + 1);
constexpr double kCounterScale = 0x1p-52;  // keeps a 32-bit counter below 1

class swb2712_plugin : public PluginRNG<tfl_rng::swb2712> {
 public:
  using PluginRNG::PluginRNG;

  void getStateComponents(void* const* buffers) const override {
    saveState(*core, static_cast<double*>(buffers[0]));
  }
  void setStateComponents(void const* const* buffers) override {
    loadState(*core, static_cast<double const*>(buffers[0]));
  }
};

}  // namespace

void saveState(tfl_rng::swb2712 const& core, double* state) {
  auto const& [lags, borrow, position, counter] = core.state();
  std::ranges::copy(lags, state);
  state[kBorrow] = borrow ? kSmallestUniform : 0;
  state[kPosition] = position * kCounterScale;
  state[kCounter] = counter * kCounterScale;
}

void loadState(tfl_rng::swb2712& core, double const* state) {
  for (std::size_t i = 0; i < kStateLen<tfl_rng::swb2712>; ++i) {
    const double least = i < kLags ? kSmallestUniform : 0;
    const bool valid = state[i] >= least && state[i] < 1;
    if (!valid) errors::raise(TALVOR::RandStream::swb2712::InvalidState());
  }
  tfl_rng::swb2712::State loaded;
  std::copy_n(state, kLags, loaded.lags.begin());
  loaded.borrow = state[kBorrow] >= kSmallestUniform;
  loaded.position = tfl_rng::toLow32(state[kPosition] / kCounterScale) % kLags;
  loaded.counter = tfl_rng::toLow32(state[kCounter] / kCounterScale);
  core.setState(loaded);
}

IPluginRNG* make_swb2712(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                         double const* /*params*/, std::size_t nParams) {
  return makeSingleStream<swb2712_plugin, tfl_rng::swb2712>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
