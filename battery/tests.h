#pragma once

// The battery: the table of its tests, and what became of a source in them.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "battery/sources.h"
#include "rng/randstream.h"

namespace battery {

struct Result {
  std::string test;
  double p;  // of statistics/p_values.h
};

// Runs every test of uniforms on 2^log2Numbers numbers each, once on the leading bits and once on
// the lowest bits of the numbers.
std::vector<Result> testUniforms(Source const& source, std::uint32_t seed, int log2Numbers);

// Normals of a stream by one of the methods; permutations and selections of a stream.
std::vector<Result> testNormals(randstream& stream, int log2Numbers);
std::vector<Result> testPermutations(randstream& stream, int log2Numbers);

// A source that passes gets a family-wise p-value below this once in a million batteries.
inline constexpr double kFailure = 1e-6;

}  // namespace battery
