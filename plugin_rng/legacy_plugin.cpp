#include "plugin_rng/legacy_plugin.h"

#include <algorithm>

#include "errors/keys.h"
#include "host/ascii_case.h"
#include "plugin_rng/large_results.h"
#include "plugin_rng/plugin_rng.h"
#include "tfl_rng/convert.h"
#include "tfl_rng/generator_catalogue.h"
#include "tfl_rng/mcg16807.h"
#include "tfl_rng/minimal_standard.h"

namespace plugin_rng {
namespace {

struct ComponentType {
  IPluginRNG::pluginStateClassID classID;
  std::size_t length;
};

constexpr ComponentType typeOf(tfl_rng::LegacyKeyword const& row) {
  return {static_cast<IPluginRNG::pluginStateClassID>(row.generator->stateClass),
          row.generator->stateLen};
}

constexpr ComponentType kTypes[legacy_plugin::kComponents] = {
    {IPluginRNG::uint32State, 2},        typeOf(tfl_rng::kLegacyUniforms[0]),
    typeOf(tfl_rng::kLegacyUniforms[1]), typeOf(tfl_rng::kLegacyUniforms[2]),
    typeOf(tfl_rng::kLegacyNormals[0]),  typeOf(tfl_rng::kLegacyNormals[1]),
};

}  // namespace

std::uint32_t legacy_plugin::v4Seeded(std::uint32_t seed) noexcept {
  const std::uint32_t word = tfl_rng::exchangeHalves(seed);
  if (word == 0) return tfl_rng::kMinimalStandardDefault;
  return std::min(word, tfl_rng::kMinimalStandardModulus - 1);
}

void legacy_plugin::randu(double* out, std::size_t n) {
  switch (generators_.uniformSelector) {
    case kV4:
      return inInterruptibleParts(n, [&](std::size_t at, std::size_t length) {
        for (std::size_t i = at; i < at + length; ++i) {
          generators_.v4UniformWord = tfl_rng::minimalStandardStep(generators_.v4UniformWord);
          out[i] = tfl_rng::minimalStandardUniform(generators_.v4UniformWord);
        }
      });
    case kV5:
      return drawPart(generators_.v5Uniform, out, n, n);
    default:
      return drawPart(generators_.twister, out, n, n);
  }
}

void legacy_plugin::advance(std::uint64_t n) {
  switch (generators_.uniformSelector) {
    case kV4:
      generators_.v4UniformWord = tfl_rng::minimalStandardAhead(generators_.v4UniformWord, n);
      return;
    case kV5:
      generators_.v5Uniform.advance(n);
      return;
    default:
      generators_.twister.advance(n);
  }
}

void legacy_plugin::randn(double* out, std::size_t n) {
  inInterruptibleParts(n, [&](std::size_t at, std::size_t length) {
    if (generators_.normalSelector != kV4) return generators_.v5Normal.randn(out + at, length);
    for (std::size_t i = at; i < at + length; ++i)
      out[i] = tfl_rng::minimalStandardNormalPair(generators_.v4NormalWord).first;
  });
}

void legacy_plugin::reset(std::uint32_t seed) {
  switch (generators_.uniformSelector) {
    case kV4:
      generators_.v4UniformWord = v4Seeded(seed);
      break;
    case kV5:
      generators_.v5Uniform.reset(seed);
      break;
    default:
      generators_.twister.reset(seed);
  }
  if (generators_.normalSelector == kV4) {
    generators_.v4NormalWord = v4Seeded(seed);
  } else {
    generators_.v5Normal.reset(seed);
  }
}

void legacy_plugin::getStateComponentTypes(std::uint64_t /*nComponents*/, txClassID* classes,
                                           std::uint64_t* lengths) const {
  for (std::size_t i = 0; i < kComponents; ++i) {
    classes[i] = static_cast<txClassID>(kTypes[i].classID);
    lengths[i] = kTypes[i].length;
  }
}

void legacy_plugin::getStateComponents(void* const* buffers) const {
  auto const& g = generators_;
  auto const words = [&](Component i) { return static_cast<std::uint32_t*>(buffers[i]); };
  auto const doubles = [&](Component i) { return static_cast<double*>(buffers[i]); };
  words(kSelectors)[0] = g.uniformSelector;
  words(kSelectors)[1] = g.normalSelector;
  doubles(kV4Uniform)[0] = tfl_rng::exchangeHalves(g.v4UniformWord);
  g.v5Uniform.save(doubles(kV5Uniform));
  g.twister.save(words(kTwisterUniform));
  doubles(kV4Normal)[0] = tfl_rng::exchangeHalves(g.v4NormalWord);
  g.v5Normal.save(doubles(kV5Normal));
}

void legacy_plugin::setStateComponents(void const* const* buffers) {
  auto const* const selectors = static_cast<std::uint32_t const*>(buffers[kSelectors]);
  auto const doubles = [&](Component i) { return static_cast<double const*>(buffers[i]); };
  Generators g;  // a refused component must leave all of them as they are
  g.uniformSelector = selectors[0];
  g.normalSelector = selectors[1];
  g.v4UniformWord = v4Seeded(tfl_rng::toLow32(doubles(kV4Uniform)[0]));
  loadState(g.v5Uniform, buffers[kV5Uniform]);
  loadState(g.twister, buffers[kTwisterUniform]);
  g.v4NormalWord = v4Seeded(tfl_rng::toLow32(doubles(kV4Normal)[0]));
  auto const* normal = doubles(kV5Normal);
  g.v5Normal.setState({tfl_rng::toLow32(normal[0]), tfl_rng::toLow32(normal[1])});
  generators_ = g;
}

void legacy_plugin::setFullPrecision(bool /*on*/) {
  errors::raise(TALVOR::RandStream::set::LegacyPrecision());
}

bool legacy_plugin::setRandnAlg(char const* algorithm) {
  const std::uint32_t selector = generators_.normalSelector;
  const bool matches = (selector == kV4 || selector == kV5) &&
                       ascii_case::equal(algorithm ? algorithm : "", getDefaultRandnAlg());
  if (!matches) errors::raise(TALVOR::RandStream::set::LegacyNormalTransform());
  return true;
}

char const* legacy_plugin::getDefaultRandnAlg() const {
  return generators_.normalSelector == kV4 ? "V4 (polar)" : "V5 (ziggurat)";
}

}  // namespace plugin_rng
