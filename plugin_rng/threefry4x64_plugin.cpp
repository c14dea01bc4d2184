// State: seventeen 32-bit words, the counter and the key (four 64-bit words each, low word first,
// of each the high half first) and the position. All zero is refused; of the position the two
// lowest bits are taken, so that zero words with another multiple of four make the one state that
// is read but cannot be set.

#include "tfl_rng/threefry4x64.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/substreams.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::threefry4x64;

static_assert(kStateLen<Core> == 17);
constexpr std::size_t kSerialLimit = 1024;
constexpr Split kNormalSplit{8192, false};

std::uint32_t* writeHalves(Core::Block const& block, std::uint32_t* words) {
  for (std::uint64_t word : block) {
    *words++ = static_cast<std::uint32_t>(word >> 32);
    *words++ = static_cast<std::uint32_t>(word);
  }
  return words;
}

Core::Block readHalves(std::uint32_t const* words) {
  Core::Block block;
  for (std::size_t i = 0; i < block.size(); ++i) {
    block[i] = std::uint64_t{words[2 * i]} << 32 | words[2 * i + 1];
  }
  return block;
}

class threefry4x64_plugin : public PluginRNGInversion<Core> {
 public:
  explicit threefry4x64_plugin(boost::shared_ptr<Core> generator)
      : PluginRNGInversion(std::move(generator), kSerialLimit, kNormalSplit) {}

  void getStateComponents(void* const* buffers) const override {
    Core::State const& state = core->state();
    auto* words = static_cast<std::uint32_t*>(buffers[0]);
    words = writeHalves(state.counter, words);
    words = writeHalves(state.key, words);
    *words = state.position;
  }

  void setStateComponents(void const* const* buffers) override {
    auto const* words = static_cast<std::uint32_t const*>(buffers[0]);
    if (std::all_of(words, words + kStateLen<Core>, [](std::uint32_t word) { return word == 0; })) {
      errors::raise(errors::GeneratorErrors<Core>::InvalidState());
    }
    core->setState({readHalves(words), readHalves(words + 8), words[16]});
  }
};

}  // namespace

IPluginRNG* make_threefry4x64_20(std::size_t numStreams, std::size_t streamIndex,
                                 std::uint32_t seed, double const* /*params*/,
                                 std::size_t nParams) {
  return makeWithStreams<threefry4x64_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
