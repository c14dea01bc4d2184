#pragma once

// Tests of numbers that should be standard normals: moments, the whole distribution, both tails.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace statistics {

struct NamedPValue {
  char const* name;
  double p;
};

// Collects a sample block by block, so that it may be larger than the memory.
class NormalTally {
 public:
  void add(std::span<double const> z);
  // The first four moments about 0; the histogram; how many lie beyond 3, 4, 5 and 6 sigma on
  // either side.
  std::vector<NamedPValue> pValues() const;
  std::uint64_t size() const noexcept { return n_; }

 private:
  static constexpr int kMoments = 4;
  static constexpr int kEnd = 6;  // of the histogram, in sigmas
  static constexpr int kCellsPerSigma = 64;
  static constexpr std::size_t kCells = 2 * kEnd * kCellsPerSigma + 2;  // two for what lies outside

  // The lower end of the cell; minus infinity for cell 0.
  static double edge(std::size_t cell);
  double expectedBelow(double z) const;

  std::uint64_t n_ = 0;
  std::array<double, kMoments> powers_{};
  std::array<std::uint64_t, kCells> counts_{};
};

}  // namespace statistics
