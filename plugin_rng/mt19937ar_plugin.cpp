// The plug-in of mt19937ar. State: 625 words, the 624 of the vector and then the position.

#include "tfl_rng/mt19937ar.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/plugin_rng.h"
#include "plugin_rng/saved_state.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::mt19937ar;
static_assert(kStateLen<Core> == Core::kWords + 1);

class mt19937ar_plugin : public PluginRNGRandn<Core> {
 public:
  using PluginRNGRandn::PluginRNGRandn;

  void getStateComponents(void* const* buffers) const override {
    saveState(*core, static_cast<std::uint32_t*>(buffers[0]));
  }
  void setStateComponents(void const* const* buffers) override {
    loadState(*core, static_cast<std::uint32_t const*>(buffers[0]));
  }
};

}  // namespace

void saveState(Core const& core, std::uint32_t* state) {
  const Core::State saved = core.state();
  state = std::copy(saved.words.begin(), saved.words.end(), state);
  *state = saved.position;
}

void loadState(Core& core, std::uint32_t const* state) {
  Core::State loaded;
  std::copy_n(state, Core::kWords, loaded.words.begin());
  loaded.position = state[Core::kWords];
  const bool allZero = std::all_of(loaded.words.begin(), loaded.words.end(),
                                   [](std::uint32_t word) { return word == 0; });
  if (allZero || loaded.position > Core::kWords)
    errors::raise(TALVOR::RandStream::mt19937ar::InvalidState());
  core.setState(loaded);
}

IPluginRNG* make_mt19937ar(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                           double const* /*params*/, std::size_t nParams) {
  return makeSingleStream<mt19937ar_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
