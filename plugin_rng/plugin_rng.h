#pragma once

// The class templates that adapt a core generator to the plug-in interface. A concrete plug-in adds
// its state format and nothing else.

#include <boost/shared_ptr.hpp>
#include <memory>

#include "errors/generator_errors.h"
#include "host/ascii_case.h"
#include "plugin_rng/clone.h"
#include "plugin_rng/interfaces.h"
#include "plugin_rng/large_results.h"
#include "tfl_rng/rejection.h"

namespace plugin_rng {

// One generator without extensions over a core of class `Core`, with its state in one component.
template <class Core, IPluginRNG::pluginStateClassID id>
class PluginRNG : public virtual IPluginRNG {
 public:
  PluginRNG(boost::shared_ptr<Core> generator, std::uint64_t length)
      : core(std::move(generator)), stateClassID(id), stateLen(length) {}
  // A copy has a core of its own.
  PluginRNG(PluginRNG const& other)
      : IPluginRNG(other),
        core(new Core(*other.core)),
        stateClassID(other.stateClassID),
        stateLen(other.stateLen) {}

  void randu(double* out, std::size_t n) override { drawPart(*core, out, n, n); }
  void reset(std::uint32_t seed) override { core->reset(seed); }
  std::size_t getNumStateComponents() const override { return 1; }
  void getStateComponentTypes(std::size_t /*nComponents*/, txClassID* classes,
                              std::size_t* lengths) const override {
    classes[0] = static_cast<txClassID>(stateClassID);
    lengths[0] = stateLen;
  }
  void setFullPrecision(bool on) override { core->setFullPrecision(on); }
  void destroy() override { delete this; }

 protected:
  boost::shared_ptr<Core> core;
  std::int32_t stateClassID;
  std::uint64_t stateLen;
};

// The same over a core with native normals. `method` names the one that the core brings.
template <class Core, IPluginRNG::pluginStateClassID id>
class PluginRNGRandn : public PluginRNG<Core, id>, public IPluginRNGRandn {
 public:
  PluginRNGRandn(boost::shared_ptr<Core> generator, std::uint64_t length, char const* method)
      : PluginRNG<Core, id>(std::move(generator), length), method_(method) {}

  bool setRandnAlg(char const* algorithm) override {
    return ascii_case::equal(algorithm ? algorithm : "", method_);
  }
  char const* getDefaultRandnAlg() const override { return method_; }
  void randn(double* out, std::size_t n) override {
    try {
      this->core->randn(out, n);
    } catch (tfl_rng::RejectionLimit const&) {
      errors::raise(component_TALVOR::catalog_RandStream::key_UnexpectedPluginError());
    }
  }

 private:
  char const* method_;
};

// The factory of a single-stream generator: its checks in order, then the plug-in over a core that
// starts in full precision. A number of streams of 0 is taken like 1.
template <class Plugin, class Core>
IPluginRNG* makeSingleStream(std::size_t numStreams, std::size_t streamIndex, std::uint32_t seed,
                             std::size_t nParams) {
  using Errors = errors::GeneratorErrors<Core>;
  if (nParams != 0) errors::raise(typename Errors::InvalidParameter());
  if (numStreams > 1 || streamIndex != 0) errors::raise(typename Errors::MultipleStreams());
  return new Cloning<Plugin>(boost::shared_ptr<Core>(new Core(seed, true)));
}

}  // namespace plugin_rng
