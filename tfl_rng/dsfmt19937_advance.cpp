// Jumps of dSFMT-19937. Its table may hold any bits, so that the polynomial has to annihilate the
// step on all 24,576 bits of table and lung: its degree is 19992 for the mantissas and the lung and
// 191 for the bits above the mantissas, which only go round.

#include <bit>
#include <vector>

#include "tfl_rng/binary_polynomial.h"
#include "tfl_rng/dsfmt19937.h"
#include "tfl_rng/kernels/dsfmt19937_reference.h"
#include "tfl_rng/splitmix.h"

namespace tfl_rng {
namespace {

constexpr std::size_t kDegree = 19992 + 191;
// A jump takes the time of about as many regenerations.
constexpr std::uint64_t kRegenerations = 200'000;

struct Pair {
  std::uint64_t words[2];
};

// What a batch goes on with: the pairs of its table and those behind, and the lung of each step.
struct Sequence {
  std::vector<Pair> pairs;
  std::vector<Pair> lungs;  // lungs[i] before the step that makes pairs[i + 191]

  Sequence(dsfmt::Batch const& batch, std::size_t steps)
      : pairs(dsfmt::kPairs + steps), lungs(steps) {
    for (std::size_t i = 0; i < dsfmt::kPairs; ++i)
      pairs[i] = {batch.words[2 * i], batch.words[2 * i + 1]};
    Pair lung{batch.lung[0], batch.lung[1]};
    for (std::size_t i = 0; i < steps; ++i) {
      lungs[i] = lung;
      Pair next = pairs[i];
      dsfmt::reference::step(next.words, pairs[i + dsfmt::kShift / 2].words, lung.words);
      pairs[i + dsfmt::kPairs] = next;
    }
  }
};

// The minimal polynomial of one bit a step, a sum of some of the pair's and the lung's. It depends
// on the start and on the sum whether that is the whole polynomial; here it is.
BinaryModulus const& modulus() {
  static const BinaryModulus found = [] {
    SplitMix64 hash(1);
    dsfmt::Batch batch{};
    for (std::size_t i = 0; i < dsfmt::kWords; ++i) batch.words[i] = hash.next();
    for (std::uint64_t& word : batch.lung) word = hash.next();
    const std::uint64_t some[4] = {hash.next(), hash.next(), hash.next(), hash.next()};
    Sequence const sequence(batch, 2 * kDegree);
    std::vector<bool> bits;
    for (std::size_t i = 0; i < 2 * kDegree; ++i) {
      auto const& [pair, lung] = std::pair(sequence.pairs[i].words, sequence.lungs[i].words);
      const std::uint64_t sum =
          (pair[0] & some[0]) ^ (pair[1] & some[1]) ^ (lung[0] & some[2]) ^ (lung[1] & some[3]);
      bits.push_back(std::popcount(sum) % 2 != 0);
    }
    return BinaryModulus(minimalPolynomial(bits));
  }();
  return found;
}

}  // namespace

errorID dsfmt19937::advance(std::uint64_t n) {
  if (n == 0) return ok;
  if (position_ > kOutputs) position_ %= kOutputs + 1;
  const uint128 total = uint128{n} + position_;
  if (total <= kOutputs) {
    position_ = static_cast<std::size_t>(total);
    return ok;
  }
  // The end of a batch comes before the next one is made.
  const auto batches = static_cast<std::uint64_t>((total - 1) / kOutputs);
  if (batches < kRegenerations) {
    for (std::uint64_t i = 0; i < batches; ++i) dsfmt::regenerateAndFill(batch_, nullptr, 0);
  } else {
    jump(batches);
  }
  position_ = static_cast<std::size_t>(total - uint128{batches} * kOutputs);
  return ok;
}

void dsfmt19937::jump(std::uint64_t batches) {
  BinaryPolynomial const remainder = modulus().powerOfX(uint128{batches} * dsfmt::kPairs);
  Sequence const sequence(batch_, kDegree);
  Pair table[dsfmt::kPairs];
  Pair lung;
  combine(remainder, kDegree, sequence.pairs.data(), table, dsfmt::kPairs);
  combine(remainder, kDegree, sequence.lungs.data(), &lung, 1);
  for (std::size_t i = 0; i < dsfmt::kPairs; ++i) {
    batch_.words[2 * i] = table[i].words[0];
    batch_.words[2 * i + 1] = table[i].words[1];
  }
  batch_.lung[0] = lung.words[0];
  batch_.lung[1] = lung.words[1];
}

}  // namespace tfl_rng
