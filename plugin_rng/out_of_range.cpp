#include "plugin_rng/substreams.h"

namespace plugin_rng {

template <class Core>
void OutOfRangeError() {
  errors::raise(typename errors::GeneratorErrors<Core>::SubstreamsIndexOutOfRange());
}

#define TV_INSTANTIATE_Single(core)
// A core's class is hidden here, and would hide what is instantiated for it.
#define TV_INSTANTIATE_Substreams(core) template TV_EXPORT void OutOfRangeError<tfl_rng::core>();
#define TFL_GENERATOR(name, core, otherSpelling, family, ...) TV_INSTANTIATE_##family(core)
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
#undef TV_INSTANTIATE_Substreams
#undef TV_INSTANTIATE_Single

}  // namespace plugin_rng
