#pragma once

// What the generators of this library offer their streams beyond the interface: copies of
// themselves, and jumps whether they have substreams or not. A plug-in from elsewhere knows nothing
// of it; its streams are copied by way of a factory and the state, and advance by drawing.

#include <type_traits>

#include "plugin_rng/interfaces.h"

namespace plugin_rng {

class IOwnPluginRNG {
 public:
  // A plug-in as a stream keeps it: with its extensions, null for those that it lacks, so that a
  // copy need not search for them.
  struct Views {
    IPluginRNG* plugin;
    IPluginRNGRandn* normals;
    IPluginRNGSubstreams* substreams;
    IOwnPluginRNG* own;
  };

  // A new plug-in that goes on as this one will: generator state, substream and precision. Its
  // caller owns it and releases it through destroy().
  virtual Views clone() const = 0;
  // Moves forward by n draws without making them.
  virtual void jump(std::uint64_t n) = 0;

 protected:
  ~IOwnPluginRNG() = default;
};

// A plug-in whose copy constructor makes a generator of its own and which can advance, with the
// interface above.
template <class Plugin>
class Own final : public Plugin, public IOwnPluginRNG {
 public:
  using Plugin::Plugin;

  Views clone() const override {
    auto* const copy = new Own(*this);
    return {copy, view<IPluginRNGRandn>(copy), view<IPluginRNGSubstreams>(copy), copy};
  }
  void jump(std::uint64_t n) override { this->advance(n); }

 private:
  template <class Extension>
  static Extension* view(Own* plugin) noexcept {
    if constexpr (std::is_base_of_v<Extension, Plugin>)
      return plugin;
    else
      return nullptr;
  }
};

}  // namespace plugin_rng
