#pragma once

// The chunk rule of the sampling paths: uniforms are asked for in chunks of 100, then the rest.

#include <cstddef>

#include "plugin_rng/interruption.h"

inline constexpr std::size_t kChunk = 100;

// Calls body(at, len) for the consecutive pieces of [0, n): len is 100, at the end what remains. A
// long draw may be ended between two of them.
template <class Body>
void forEachChunk(std::size_t n, Body&& body) {
  std::size_t look = plugin_rng::kUninterrupted;
  for (std::size_t at = 0; at < n; at += kChunk) {
    if (at >= look) [[unlikely]] {
      plugin_rng::checkInterruption();
      look += plugin_rng::kUninterrupted;
    }
    body(at, n - at < kChunk ? n - at : kChunk);
  }
}
