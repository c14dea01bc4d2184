#pragma once

// Owners of a plug-in and of a stream under construction, and the names of generators.

#include <memory>

#include "plugin_rng/interfaces.h"
#include "rng/randstream.h"

struct PluginDestroyer {
  void operator()(plugin_rng::IPluginRNG* plugin) const noexcept { plugin->destroy(); }
};
using PluginOwner = std::unique_ptr<plugin_rng::IPluginRNG, PluginDestroyer>;

// Wraps a plug-in in a new stream; on failure the plug-in is destroyed and nothing remains.
inline std::unique_ptr<randstream> makeStream(char const* type, unsigned int seed,
                                              PluginOwner plugin, unsigned long numStreams,
                                              unsigned long streamIndex) {
  auto stream = std::make_unique<randstream>(type, seed, plugin.get(), numStreams, streamIndex);
  (void)plugin.release();
  return stream;
}

// The canonical name of the generator that mrCreateRNGStream makes for `type`; null for none.
char const* canonicalGeneratorType(char const* type) noexcept;
