#pragma once

// Generator plug-ins for tests of the stream: they deliver scripted uniforms and record every
// request, so that a test asserts both values and the number and sizes of draws.

#include <stdexcept>
#include <string>
#include <vector>

#include "plugin_rng/interfaces.h"

namespace testing_support {

// What a scripted plug-in delivers and what it was asked. Lives longer than the plug-in.
struct Script {
  std::vector<double> uniforms;       // delivered in order; running out is an error
  std::vector<std::size_t> requests;  // sizes of the uniform fills
  std::vector<double> normals;        // for plug-ins with native normals
  std::vector<std::size_t> normalRequests;
  std::vector<std::string> calls;  // control operations, in order
  std::size_t used = 0;
  int destroyed = 0;
};

class ScriptedPlugin : public virtual plugin_rng::IPluginRNG {
 public:
  explicit ScriptedPlugin(Script& script) : script_(script) {}

  void randu(double* out, std::size_t n) override {
    script_.requests.push_back(n);
    for (std::size_t i = 0; i < n; ++i) {
      if (script_.used == script_.uniforms.size()) throw std::out_of_range("script is used up");
      out[i] = script_.uniforms[script_.used++];
    }
  }
  void reset(std::uint32_t seed) override { note("reset", seed); }
  std::uint64_t getNumStateComponents() const override { return 0; }
  void getStateComponentTypes(std::uint64_t, txClassID*, std::size_t*) const override {}
  void getStateComponents(void* const*) const override {}
  void setStateComponents(void const* const*) override { note("setState", 0); }
  void setFullPrecision(bool on) override { note("precision", on); }
  void destroy() override {
    ++script_.destroyed;
    delete this;
  }

 protected:
  void note(std::string const& call, std::size_t argument) {
    script_.calls.push_back(call + " " + std::to_string(argument));
  }
  Script& script_;
};

// Native normals under the name "scripted".
class ScriptedNormalPlugin : public ScriptedPlugin, public plugin_rng::IPluginRNGRandn {
 public:
  using ScriptedPlugin::ScriptedPlugin;

  bool setRandnAlg(char const* algorithm) override {
    return algorithm && std::string(algorithm) == "scripted";
  }
  char const* getDefaultRandnAlg() const override { return "scripted"; }
  void randn(double* out, std::size_t n) override {
    script_.normalRequests.push_back(n);
    for (std::size_t i = 0; i < n; ++i) out[i] = script_.normals.at(i);
  }
};

// Substreams that only record what they are told.
class ScriptedStreamsPlugin : public ScriptedPlugin, public plugin_rng::IPluginRNGSubstreams {
 public:
  using ScriptedPlugin::ScriptedPlugin;

  int checkNumStreams(std::uint64_t) const override { return 0; }
  void setSubstream(std::uint64_t index) override {
    note("substream", index);
    substream_ = index;
  }
  std::uint64_t getSubstream() const override { return substream_; }
  void advance(std::uint64_t n) override { note("advance", n); }
  std::pair<std::uint64_t, std::uint64_t> getStreamLimits() const override { return {11, 22}; }
  std::pair<std::uint64_t, std::uint64_t> getSubstreamLimits() const override { return {33, 44}; }

 private:
  std::uint64_t substream_ = 0;
};

}  // namespace testing_support
