#pragma once

// Owners of a plug-in and of a stream under construction.

#include <memory>

#include "plugin_rng/interfaces.h"
#include "rng/randstream.h"

struct PluginDestroyer {
  void operator()(plugin_rng::IPluginRNG* plugin) const noexcept { plugin->destroy(); }
};
using PluginOwner = std::unique_ptr<plugin_rng::IPluginRNG, PluginDestroyer>;

// Wraps a plug-in in a new stream; on failure the plug-in is destroyed and nothing remains.
inline std::unique_ptr<randstream> streamOver(char const* type, unsigned int seed,
                                              PluginOwner plugin, std::uint64_t numStreams,
                                              std::uint64_t streamIndex) {
  auto stream = std::make_unique<randstream>(type, seed, plugin.get(), numStreams, streamIndex);
  (void)plugin.release();
  return stream;
}

// A stream of the same generator, made by its factory at `substream`, with the state and the
// settings of `original`: no pending Polar value comes along. Errors: those of the factory and of
// the state.
std::unique_ptr<randstream> remade(randstream const& original, std::uint64_t substream = 0);
