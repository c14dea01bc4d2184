#pragma once

// What the kernels of several generators are asked for.

#include <cstddef>

namespace tfl_rng {

// The precision modes of generators whose draws take one step, or two.
struct Reduced {
  static constexpr std::size_t kStepsEach = 1;
};
struct Full {
  static constexpr std::size_t kStepsEach = 2;
};
enum class Form : bool { reduced, full };

// Where draws are written: into the caches, or past them (streaming.h).
enum class Stores : bool { cached, streaming };

}  // namespace tfl_rng
