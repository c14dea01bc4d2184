#pragma once

// How the generators of this library copy themselves. A plug-in from elsewhere knows nothing of it;
// its streams are copied by way of a factory and the state.

#include <type_traits>

#include "plugin_rng/interfaces.h"

namespace plugin_rng {

class IPluginRNGClone {
 public:
  // A plug-in as a stream keeps it: with its extensions, null for those that it lacks, so that a
  // copy need not search for them.
  struct Views {
    IPluginRNG* plugin;
    IPluginRNGRandn* normals;
    IPluginRNGSubstreams* substreams;
    IPluginRNGClone const* clone;
  };

  // A new plug-in that goes on as this one will: generator state, substream and precision. Its
  // caller owns it and releases it through destroy().
  virtual Views clone() const = 0;

 protected:
  ~IPluginRNGClone() = default;
};

// A plug-in whose copy constructor makes a generator of its own, with the interface above.
template <class Plugin>
class Cloning final : public Plugin, public IPluginRNGClone {
 public:
  using Plugin::Plugin;

  Views clone() const override {
    auto* const copy = new Cloning(*this);
    return {copy, view<IPluginRNGRandn>(copy), view<IPluginRNGSubstreams>(copy), copy};
  }

 private:
  template <class Extension>
  static Extension* view(Cloning* plugin) noexcept {
    if constexpr (std::is_base_of_v<Extension, Plugin>)
      return plugin;
    else
      return nullptr;
  }
};

}  // namespace plugin_rng
