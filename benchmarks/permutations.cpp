// Permutations and selections, as doubles counted from 1.

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

namespace benchmarks {

namespace {

constexpr char kGenerator[] = "mt19937ar";

// The order of n uniforms, by a sort of (uniform, position) pairs.
struct SortedPairs {
  peers::ByHand53<std::mt19937_64> uniform{};
  std::vector<std::pair<double, std::uint32_t>> pairs{};

  void operator()(double* out, std::size_t n) {
    pairs.resize(n);
    for (std::size_t i = 0; i < n; ++i) pairs[i] = {uniform(), static_cast<std::uint32_t>(i + 1)};
    std::sort(pairs.begin(), pairs.end());
    for (std::size_t i = 0; i < n; ++i) out[i] = pairs[i].second;
  }
};

struct Shuffled {
  std::mt19937_64 engine{};

  void operator()(double* out, std::size_t n) {
    std::iota(out, out + n, 1.0);
    std::shuffle(out, out + n, engine);
  }
};

// std::sample selects in order and must be shuffled to be in random order.
struct Sampled {
  std::vector<double> population{};
  std::mt19937_64 engine{};

  void operator()(double* out, std::size_t k) {
    std::sample(population.begin(), population.end(), out, k, engine);
    std::shuffle(out, out + k, engine);
  }
};

}  // namespace

void addPermutations() {
  const auto stream = [] { return makeStream(kGenerator); };

  const std::string sorted = "permutation of n by sorting";
  add<double>(sorted, kGenerator, kOurs, kSizes, [stream] {
    return [s = stream()](double* out, std::size_t n) { s->randpermFcn(out, n); };
  });
  add<double>(sorted, kGenerator, "std::sort of pairs", kSizes, [] { return SortedPairs(); });

  const std::string shuffled = "permutation of n by shuffling";
  add<double>(shuffled, kGenerator, kOurs, kSizes, [stream] {
    return [s = stream()](double* out, std::size_t n) {
      s->randkpermFcn(out, n, static_cast<double>(n));
    };
  });
  add<double>(shuffled, kGenerator, "std::shuffle", kSizes, [] { return Shuffled(); });

  const std::string selected = "k of 1,000,000 in random order";
  static constexpr std::initializer_list<std::size_t> kCounts = {24, 10'000, 100'000};
  constexpr std::size_t kPopulation = 1'000'000;
  add<double>(selected, kGenerator, kOurs, kCounts, [stream] {
    return [s = stream()](double* out, std::size_t k) {
      s->randkpermFcn(out, k, double{kPopulation});
    };
  });
  add<double>(selected, kGenerator, "std::sample and std::shuffle", kCounts, [] {
    Sampled sampled;
    sampled.population.resize(kPopulation);
    std::iota(sampled.population.begin(), sampled.population.end(), 1.0);
    return sampled;
  });
}

}  // namespace benchmarks
