#include "plugin_rng/generator_plugins.h"

#include <core_headers.h>  // of all cores; written by tfl_rng/CMakeLists.txt

#include <memory>

#include "plugin_rng/factories.h"

namespace plugin_rng {
namespace {

// The plug-in over a core that starts in full precision, after the checks in their order. A number
// of single streams of 0 is taken like 1. Of a generator with streams the core is built between the
// checks because it knows the limits, and the index is held against the generator's limit only, not
// against the number of streams asked for.
template <class Plugin, class Core>
IPluginRNG* make(std::uint64_t numStreams, std::uint64_t streamIndex, std::uint32_t seed,
                 std::uint64_t nParams) {
  using Errors = errors::GeneratorErrors<Core>;
  if (nParams != 0) errors::raise(typename Errors::InvalidParameter());
  if constexpr (std::is_base_of_v<IPluginRNGSubstreams, Plugin>) {
    auto plugin =
        std::make_unique<Own<Plugin>>(boost::shared_ptr<Core>(new Core(seed, streamIndex, true)));
    if (plugin->checkNumStreams(numStreams) != tfl_rng::ok)
      errors::raise(typename Errors::TooManyStreams());
    return plugin.release();
  } else {
    if (numStreams > 1 || streamIndex != 0) errors::raise(typename Errors::MultipleStreams());
    return new Own<Plugin>(boost::shared_ptr<Core>(new Core(seed, true)));
  }
}

}  // namespace

template <class Core>
void OutOfRangeError() {
  errors::raise(typename errors::GeneratorErrors<Core>::SubstreamsIndexOutOfRange());
}

#define TV_INSTANTIATE_Single(core)
#define TV_INSTANTIATE_Substreams(core) template TV_EXPORT void OutOfRangeError<tfl_rng::core>();
#define TFL_GENERATOR(name, core, otherSpelling, family, ...)                          \
  TV_INSTANTIATE_##family(core) IPluginRNG* make_##name(                               \
      std::uint64_t numStreams, std::uint64_t streamIndex, std::uint32_t seed,         \
      double const* /*params*/, std::uint64_t nParams) {                               \
    return make<core##_plugin, tfl_rng::core>(numStreams, streamIndex, seed, nParams); \
  }
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
#undef TV_INSTANTIATE_Substreams
#undef TV_INSTANTIATE_Single

}  // namespace plugin_rng
