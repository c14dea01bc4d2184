// The plug-in of dsfmt19937. State: 776 words, the core's 384 of 64 bits (low half first), the
// position and 7 reserved words.

#include "tfl_rng/dsfmt19937.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/plugin_rng.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::dsfmt19937;
static_assert(kStateLen<Core> ==
              2 * (Core::kOutputs + 2) + 1 + std::tuple_size_v<decltype(Core::State::reserved)>);

class dsfmt19937_plugin : public PluginRNGRandn<Core> {
 public:
  using PluginRNGRandn::PluginRNGRandn;

  void getStateComponents(void* const* buffers) const override {
    auto* words = static_cast<std::uint32_t*>(buffers[0]);
    const Core::State state = core->state();
    for (std::uint64_t word : state.words) {
      *words++ = static_cast<std::uint32_t>(word);
      *words++ = static_cast<std::uint32_t>(word >> 32);
    }
    *words++ = state.position;
    std::copy(state.reserved.begin(), state.reserved.end(), words);
  }

  // Refuses nothing but zeros: a saved block is taken as it stands, and the core copes with any.
  void setStateComponents(void const* const* buffers) override {
    auto const* words = static_cast<std::uint32_t const*>(buffers[0]);
    if (std::all_of(words, words + kStateLen<Core>, [](std::uint32_t word) { return word == 0; }))
      errors::raise(TALVOR::RandStream::dsfmt19937::InvalidState());
    Core::State state;
    for (std::uint64_t& word : state.words) {
      word = (std::uint64_t{words[1]} << 32) | words[0];
      words += 2;
    }
    state.position = *words++;
    std::copy_n(words, state.reserved.size(), state.reserved.begin());
    core->setState(state);
  }
};

}  // namespace

IPluginRNG* make_dsfmt19937(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                            double const* /*params*/, std::size_t nParams) {
  return makeSingleStream<dsfmt19937_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
