// The plug-in of mt19937ar. State: 625 words, the 624 of the vector and then the position.

#include "tfl_rng/mt19937ar.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/plugin_rng.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::mt19937ar;
constexpr std::size_t kStateWords = Core::kWords + 1;

class mt19937ar_plugin final : public PluginRNGRandn<Core, IPluginRNG::uint32State> {
 public:
  explicit mt19937ar_plugin(boost::shared_ptr<Core> generator)
      : PluginRNGRandn(std::move(generator), kStateWords, "Ziggurat") {}

  void getStateComponents(void* const* buffers) const override {
    auto* words = static_cast<std::uint32_t*>(buffers[0]);
    Core::State const& state = core->state();
    words = std::copy(state.words.begin(), state.words.end(), words);
    *words = state.position;
  }

  void setStateComponents(void const* const* buffers) override {
    auto const* words = static_cast<std::uint32_t const*>(buffers[0]);
    Core::State state;
    std::copy_n(words, Core::kWords, state.words.begin());
    state.position = words[Core::kWords];
    const bool allZero = std::all_of(state.words.begin(), state.words.end(),
                                     [](std::uint32_t word) { return word == 0; });
    if (allZero || state.position > Core::kWords)
      errors::raise(TALVOR::RandStream::mt19937ar::InvalidState());
    core->setState(state);
  }
};

}  // namespace

IPluginRNG* make_mt19937ar(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                           double const* /*params*/, std::size_t nParams) {
  return makeSingleStream<mt19937ar_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
