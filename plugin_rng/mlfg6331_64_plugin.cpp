// State: 130 words of 64 bits.
//
//     0 to  62  the last 63 words of the generator, as a ring
//          63   1
//    64 to 126  the 63 words at the start of the stream, oldest first
//         127   1
//         128   reserved: written 0, ignored
//         129   position of the oldest word in the ring, below 63
//
// Words 0 to 127 must be odd.

#include "tfl_rng/mlfg6331_64.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/substreams.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::mlfg6331_64;

constexpr std::size_t kStart = Core::kLag + 1;
constexpr std::size_t kTables = 2 * kStart;
constexpr std::size_t kPosition = kTables + 1;
static_assert(kStateLen<Core> == kPosition + 1);
// A jump costs as much as some ten thousand draws.
constexpr std::size_t kSerialLimit = 131072;

class mlfg6331_64_plugin : public PluginRNGSubstreams<Core> {
 public:
  explicit mlfg6331_64_plugin(boost::shared_ptr<Core> generator)
      : PluginRNGSubstreams(std::move(generator), kSerialLimit) {}

  void getStateComponents(void* const* buffers) const override {
    Core::State const state = core->state();
    auto* words = static_cast<std::uint64_t*>(buffers[0]);
    words = std::ranges::copy(state.ring, words).out;
    *words++ = 1;
    words = std::ranges::copy(state.start, words).out;
    *words++ = 1;
    *words++ = 0;
    *words = state.position;
  }

  void setStateComponents(void const* const* buffers) override {
    auto const* words = static_cast<std::uint64_t const*>(buffers[0]);
    const bool odd =
        std::all_of(words, words + kTables, [](std::uint64_t word) { return word % 2 != 0; });
    if (!odd || words[kPosition] >= Core::kLag) {
      errors::raise(errors::GeneratorErrors<Core>::InvalidState());
    }
    Core::State state;
    std::copy_n(words, Core::kLag, state.ring.begin());
    std::copy_n(words + kStart, Core::kLag, state.start.begin());
    state.position = words[kPosition];
    core->setState(state);
  }

 private:
  [[noreturn]] void cannotJump() const override {
    errors::raise(TALVOR::RandStream::mlfg6331_64::UnableToComputeALFGState());
  }
};

}  // namespace

IPluginRNG* make_mlfg6331_64(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                             double const* /*params*/, std::size_t nParams) {
  return makeWithStreams<mlfg6331_64_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
