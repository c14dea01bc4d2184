#pragma once

// What the battery tests: streams of the library, several of them interleaved, and textbook
// generators that are known to be weak, which prove that the battery finds faults.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace battery {

// An endless sequence of numbers of (0,1).
struct Source {
  std::string name;
  // Leading bits of a number that the generator promises to be random.
  int bits;
  // Distances of numbers that the generator's recurrence ties together, from 0; empty where the
  // recurrence ties neighbours.
  std::vector<std::size_t> offsets;
  // Starts the sequence of a seed. The result fills any memory with the next numbers.
  std::function<std::function<void(std::span<double>)>(std::uint32_t seed)> start;
};

// The library's generators in their precision modes, and those of the legacy set, that are to pass.
std::vector<Source> generatorSources();
// Four neighbouring streams or substreams of a seed, taken in turn.
std::vector<Source> interleavedSources();
// What is weak and fails: the library's generators of that verdict, and textbook forms of theirs
// and of others.
std::vector<Source> weakSources();

}  // namespace battery
