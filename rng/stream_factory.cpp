#include "rng/stream_factory.h"

#include "errors/explained.h"
#include "errors/keys.h"
#include "plugin_rng/factories.h"
#include "rng/generator_names.h"
#include "rng/mr_functions.h"
#include "tfl_rng/float_environment.h"

namespace {

// In the order of the catalogue.
constexpr plugin_rng::Factory kFactories[] = {
#define TFL_GENERATOR(name, ...) plugin_rng::make_##name,
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};

}  // namespace

randstream* mrCreateRNGStream(char const* type, std::uint64_t numStreams, std::uint64_t streamIndex,
                              unsigned int seed, std::uint64_t* params, std::uint64_t nParams) {
  const tfl_rng::FloatEnvironment environment;
  if (!type) type = "";
  tfl_rng::Generator const* const generator = rng::generatorNamed(type);
  if (!generator) {
    // Short names are for those above; here their generator is the name to take.
    tfl_rng::Generator const* const meant = rng::findGenerator(rng::closestGenerator(type));
    errors::raiseExplained(TALVOR::RandStream::create::UnknownRNGType(type),
                           errors::didYouMean(meant ? meant->name : ""));
  }
  auto const factory = kFactories[generator - tfl_rng::generators().data()];
  // No generator reads parameter words; only their number counts.
  PluginOwner plugin(
      factory(numStreams, streamIndex, seed, reinterpret_cast<double const*>(params), nParams));
  return streamOver(type, seed, std::move(plugin), numStreams, streamIndex).release();
}
