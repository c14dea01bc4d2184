#include "rng/stream_factory.h"

#include "errors/keys.h"
#include "host/ascii_case.h"
#include "plugin_rng/factories.h"
#include "rng/mr_functions.h"

namespace {

struct Generator {
  char const* name;
  char const* otherSpelling;  // "" when there is none
  plugin_rng::Factory factory;

  bool isCalled(char const* type) const {
    return ascii_case::equal(type, name) ||
           (*otherSpelling && ascii_case::equal(type, otherSpelling));
  }
};

constexpr Generator kGenerators[] = {
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, period) \
  {#name, otherSpelling, plugin_rng::make_##name},
#include "tfl_rng/generators.def"
#undef TFL_GENERATOR
};

Generator const* find(char const* type) noexcept {
  for (Generator const& generator : kGenerators)
    if (generator.isCalled(type)) return &generator;
  return nullptr;
}

}  // namespace

char const* canonicalGeneratorType(char const* type) noexcept {
  Generator const* const generator = find(type);
  return generator ? generator->name : nullptr;
}

randstream* mrCreateRNGStream(char const* type, unsigned long numStreams, unsigned long streamIndex,
                              unsigned int seed, unsigned long* params, unsigned long nParams) {
  if (!type) type = "";
  Generator const* const generator = find(type);
  if (!generator) errors::raise(TALVOR::RandStream::create::UnknownRNGType(type));
  // No generator reads parameter words; only their number counts.
  PluginOwner plugin(generator->factory(numStreams, streamIndex, seed,
                                        reinterpret_cast<double const*>(params), nParams));
  return makeStream(type, seed, std::move(plugin), numStreams, streamIndex).release();
}
