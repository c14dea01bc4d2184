#pragma once

// The class templates that adapt a core generator to the plug-in interface. A concrete plug-in adds
// its saved state and nothing else.

#include <boost/shared_ptr.hpp>

#include "errors/generator_errors.h"
#include "host/ascii_case.h"
#include "plugin_rng/interfaces.h"
#include "plugin_rng/large_results.h"
#include "plugin_rng/own_plugin.h"
#include "tfl_rng/generator_catalogue.h"
#include "tfl_rng/rejection.h"

namespace plugin_rng {

// The state of a core in the registry: element class and number of elements.
template <class Core>
inline constexpr auto kStateClass =
    static_cast<IPluginRNG::pluginStateClassID>(tfl_rng::kGeneratorOf<Core>->stateClass);
template <class Core>
inline constexpr std::size_t kStateLen = tfl_rng::kGeneratorOf<Core>->stateLen;

// Loads a core's saved state. Error: the generator's InvalidState, the core unchanged.
template <class Core>
void loadState(Core& core, void const* state) {
  if (!core.load(static_cast<typename Core::StateWord const*>(state)))
    errors::raise(typename errors::GeneratorErrors<Core>::InvalidState());
}

// One generator without extensions over a core of class `Core`, with its state in one component.
template <class Core, IPluginRNG::pluginStateClassID id = kStateClass<Core>>
class PluginRNG : public virtual IPluginRNG {
 public:
  explicit PluginRNG(boost::shared_ptr<Core> generator)
      : core(std::move(generator)), stateClassID(id), stateLen(kStateLen<Core>) {}
  // A copy has a core of its own.
  PluginRNG(PluginRNG const& other)
      : IPluginRNG(other),
        core(new Core(*other.core)),
        stateClassID(other.stateClassID),
        stateLen(other.stateLen) {}

  void randu(double* out, std::size_t n) override { drawPart(*core, out, n, n); }
  void reset(std::uint32_t seed) override { core->reset(seed); }
  std::uint64_t getNumStateComponents() const override { return 1; }
  void getStateComponentTypes(std::uint64_t /*nComponents*/, txClassID* classes,
                              std::uint64_t* lengths) const override {
    classes[0] = static_cast<txClassID>(stateClassID);
    lengths[0] = stateLen;
  }
  void setFullPrecision(bool on) override { core->setFullPrecision(on); }
  void advance(std::uint64_t n) { core->advance(n); }
  void destroy() override { delete this; }

 protected:
  boost::shared_ptr<Core> core;
  std::int32_t stateClassID;
  std::uint64_t stateLen;
};

// The same over a core with native normals.
template <class Core, IPluginRNG::pluginStateClassID id = kStateClass<Core>>
class PluginRNGRandn : public PluginRNG<Core, id>, public IPluginRNGRandn {
 public:
  using PluginRNG<Core, id>::PluginRNG;

  bool setRandnAlg(char const* algorithm) override {
    return ascii_case::equal(algorithm ? algorithm : "", getDefaultRandnAlg());
  }
  char const* getDefaultRandnAlg() const override {
    return tfl_rng::kGeneratorOf<Core>->nativeNormals;
  }
  void randn(double* out, std::size_t n) override {
    try {
      if (n <= kUninterrupted) [[likely]]
        return this->core->randn(out, n);
      inInterruptibleParts(
          n, [&](std::size_t at, std::size_t length) { this->core->randn(out + at, length); });
    } catch (tfl_rng::RejectionLimit const&) {
      errors::raise(component_TALVOR::catalog_RandStream::key_UnexpectedPluginError());
    }
  }
};

}  // namespace plugin_rng
