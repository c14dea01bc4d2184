#include "tfl_rng/shr3cong.h"

#include "plugin_rng/factories.h"
#include "plugin_rng/plugin_rng.h"
#include "plugin_rng/saved_state.h"
#include "tfl_rng/convert.h"

namespace plugin_rng {
namespace {

class shr3cong_plugin : public PluginRNGRandn<tfl_rng::shr3cong> {
 public:
  using PluginRNGRandn::PluginRNGRandn;

  void getStateComponents(void* const* buffers) const override {
    saveState(*core, static_cast<double*>(buffers[0]));
  }

  void setStateComponents(void const* const* buffers) override {
    auto const* state = static_cast<double const*>(buffers[0]);
    if (state[1] == 0) errors::raise(TALVOR::RandStream::shr3cong::InvalidState());
    // Fractions and multiples of 2^32 pass the check and are 0 as words.
    const std::uint32_t shiftRegister = tfl_rng::toLow32(state[1]);
    core->setState({tfl_rng::toLow32(state[0]),
                    shiftRegister == 0 ? tfl_rng::shr3cong::kShiftRegisterDefault : shiftRegister});
  }
};

}  // namespace

void saveState(tfl_rng::shr3cong const& core, double* state) {
  state[0] = core.state().congruential;
  state[1] = core.state().shiftRegister;
}

IPluginRNG* make_shr3cong(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                          double const* /*params*/, std::size_t nParams) {
  return makeSingleStream<shr3cong_plugin, tfl_rng::shr3cong>(numStreams, streamIndex, seed,
                                                              nParams);
}

}  // namespace plugin_rng
