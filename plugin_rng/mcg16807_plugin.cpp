#include "tfl_rng/mcg16807.h"

#include "plugin_rng/exchange_halves.h"
#include "plugin_rng/factories.h"
#include "plugin_rng/plugin_rng.h"
#include "tfl_rng/convert.h"
#include "tfl_rng/minimal_standard.h"

namespace plugin_rng {
namespace {

// The state is the generator's word with its halves exchanged, as a double.
class mcg16807_plugin : public PluginRNGRandn<tfl_rng::mcg16807> {
 public:
  using PluginRNGRandn::PluginRNGRandn;

  void getStateComponents(void* const* buffers) const override {
    *static_cast<double*>(buffers[0]) = exchangeHalves(core->word());
  }

  void setStateComponents(void const* const* buffers) override {
    const std::uint32_t word =
        exchangeHalves(tfl_rng::toLow32(*static_cast<double const*>(buffers[0])));
    if (word == 0 || word >= tfl_rng::kMinimalStandardModulus) {
      errors::raise(TALVOR::RandStream::mcg16807::InvalidState());
    }
    core->setWord(word);
  }
};

}  // namespace

IPluginRNG* make_mcg16807(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                          double const* /*params*/, std::size_t nParams) {
  return makeSingleStream<mcg16807_plugin, tfl_rng::mcg16807>(numStreams, streamIndex, seed,
                                                              nParams);
}

}  // namespace plugin_rng
