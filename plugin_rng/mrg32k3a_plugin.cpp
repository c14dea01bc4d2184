// State: twelve 32-bit words, the last three terms of both recurrences (oldest first) now and at
// the start of the stream. Words 0 to 2 and 6 to 8 must be below the first modulus, the others
// below the second, and no three that belong together all zero.

#include "tfl_rng/mrg32k3a.h"

#include <algorithm>

#include "plugin_rng/factories.h"
#include "plugin_rng/substreams.h"

namespace plugin_rng {
namespace {

using Core = tfl_rng::mrg32k3a;

static_assert(kStateLen<Core> == 12);
constexpr std::size_t kSerialLimit = 1024;

bool validTerms(std::uint32_t const* terms, std::uint32_t modulus) {
  return std::all_of(terms, terms + 3, [=](std::uint32_t term) { return term < modulus; }) &&
         std::any_of(terms, terms + 3, [](std::uint32_t term) { return term != 0; });
}

bool validWords(std::uint32_t const* words) {
  return validTerms(words, Core::kModulus1) && validTerms(words + 3, Core::kModulus2);
}

class mrg32k3a_plugin : public PluginRNGSubstreams<Core> {
 public:
  explicit mrg32k3a_plugin(boost::shared_ptr<Core> generator)
      : PluginRNGSubstreams(std::move(generator), kSerialLimit) {}

  void getStateComponents(void* const* buffers) const override {
    auto* words = static_cast<std::uint32_t*>(buffers[0]);
    words = std::ranges::copy(core->state().current, words).out;
    std::ranges::copy(core->state().start, words);
  }

  void setStateComponents(void const* const* buffers) override {
    auto const* words = static_cast<std::uint32_t const*>(buffers[0]);
    if (!validWords(words) || !validWords(words + 6)) {
      errors::raise(errors::GeneratorErrors<Core>::InvalidState());
    }
    Core::State state;
    std::copy_n(words, 6, state.current.begin());
    std::copy_n(words + 6, 6, state.start.begin());
    core->setState(state);
  }
};

}  // namespace

IPluginRNG* make_mrg32k3a(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                          double const* /*params*/, std::size_t nParams) {
  return makeWithStreams<mrg32k3a_plugin, Core>(numStreams, streamIndex, seed, nParams);
}

}  // namespace plugin_rng
