#pragma once

// How sampling asks for its uniforms: a plug-in from elsewhere in chunks of 100, then the rest; a
// generator of this library, whose draws do not depend on how requests are cut, for as many at once
// as keeps its speed and the first cache.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "plugin_rng/interruption.h"

inline constexpr std::size_t kChunk = 100;
inline constexpr std::size_t kLongChunk = 2000;  // even, so that pairs stay together

// Calls body(at, len) for the consecutive pieces of [0, n): len is `size`, at the end what remains.
// A long draw may be ended between two of them.
template <class Body>
void forEachChunk(std::uint64_t n, std::size_t size, Body&& body) {
  std::uint64_t look = plugin_rng::kUninterrupted;
  for (std::uint64_t at = 0; at < n; at += size) {
    if (at >= look) [[unlikely]] {
      plugin_rng::checkInterruption();
      look += plugin_rng::kUninterrupted;
    }
    body(static_cast<std::size_t>(at),
         static_cast<std::size_t>(std::min<std::uint64_t>(size, n - at)));
  }
}
