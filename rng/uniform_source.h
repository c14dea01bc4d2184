#pragma once

// What sampling sees of a stream's generator: its uniforms, each request counted.

#include <cstddef>
#include <cstdint>

#include "rng/chunks.h"
#include "rng/randstream.h"

// The draws of all streams in this thread. In static memory of the thread, so that single values do
// not pay for a call that finds it.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local std::uint64_t drawsInThread;

class UniformSource {
 public:
  UniformSource(plugin_rng::IPluginRNG& plugin, randstream::DrawCounts& counts) noexcept
      : plugin_(plugin), counts_(counts) {}

  // Counted first: a generator that fails may have moved.
  void randu(double* out, std::uint64_t n) const {
    counts_.uniforms += n;
    counts_.latest = drawsInThread += n;
    plugin_.randu(out, static_cast<std::size_t>(n));
  }

 private:
  plugin_rng::IPluginRNG& plugin_;
  randstream::DrawCounts& counts_;
};

inline UniformSource randstream::uniforms() noexcept { return {*plugin_, counts_}; }

inline std::size_t randstream::chunk() const noexcept { return ownView_ ? kLongChunk : kChunk; }
