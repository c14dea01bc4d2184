// State: seven 32-bit words, the counter (4, low word first), the key (2, low word first) and the
// position. All zero is refused; of the position the lowest bit is taken, so that zero words with
// another even position make the one state that is read but cannot be set.

#include "tfl_rng/philox4x32.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/substreams.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::philox4x32;

static_assert(kStateLen<Core> == 7);
constexpr std::size_t kSerialLimit = 1024;
// A normal costs several times a uniform, so that shorter leaves pay, and more so the more idle
// threads there are.
constexpr Split kNormalSplit{2048, true};

class philox4x32_plugin : public PluginRNGInversion<Core> {
 public:
  explicit philox4x32_plugin(boost::shared_ptr<Core> generator)
      : PluginRNGInversion(std::move(generator), kSerialLimit, kNormalSplit) {}

  void getStateComponents(void* const* buffers) const override {
    Core::State const state = core->state();
    auto* words = static_cast<std::uint32_t*>(buffers[0]);
    words = std::ranges::copy(state.counter, words).out;
    words = std::ranges::copy(state.key, words).out;
    *words = state.position;
  }

  void setStateComponents(void const* const* buffers) override {
    auto const* words = static_cast<std::uint32_t const*>(buffers[0]);
    if (std::all_of(words, words + kStateLen<Core>, [](std::uint32_t word) { return word == 0; })) {
      errors::raise(errors::GeneratorErrors<Core>::InvalidState());
    }
    Core::State state{};
    std::copy_n(words, 4, state.counter.begin());
    std::copy_n(words + 4, 2, state.key.begin());
    state.position = words[6];
    core->setState(state);
  }
};

}  // namespace

IPluginRNG* make_philox4x32_10(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                               double const* /*params*/, std::size_t nParams) {
  return makeWithStreams<philox4x32_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
