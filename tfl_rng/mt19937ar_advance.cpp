// Jumps of MT19937. The words follow a recurrence of degree 19937 whose polynomial is primitive, so
// that any sequence of one bit of them has it as its minimal polynomial.

#include <memory>

#include "tfl_rng/binary_polynomial.h"
#include "tfl_rng/kernels/mt19937_reference.h"
#include "tfl_rng/mt19937ar.h"

namespace tfl_rng {
namespace {

constexpr std::size_t kDegree = 19937;
// About as many regenerations take the time of a jump.
constexpr std::uint64_t kRegenerations = 200'000;

// The word behind words[i].
std::uint32_t wordBehind(std::uint32_t const* words, std::size_t i) noexcept {
  return words[i + mt19937::kShift] ^ mt19937::reference::twist(words[i], words[i + 1]);
}

BinaryModulus const& modulus() {
  static const BinaryModulus found = [] {
    std::vector<std::uint32_t> words(2 * kDegree + mt19937::kWords);
    std::vector<bool> bits;
    words[0] = mt19937::kUpperMask;
    for (std::size_t i = 0; i < 2 * kDegree; ++i) {
      bits.push_back(words[i] >> 31 != 0);
      words[i + mt19937::kWords] = wordBehind(words.data(), i);
    }
    return BinaryModulus(minimalPolynomial(bits));
  }();
  return found;
}

}  // namespace

errorID mt19937ar::advance(std::uint64_t n) {
  const unsigned each = fullPrecision() ? Full::kStepsEach : Reduced::kStepsEach;
  const uint128 total = uint128{n} * each + position_;
  if (total <= kWords) {
    position_ = static_cast<std::size_t>(total);
    return ok;
  }
  // The position 0 of a fresh batch is written as the 624 of the one before.
  const uint128 batches = (total - 1) / kWords;
  if (batches < kRegenerations) {
    for (auto left = static_cast<std::uint64_t>(batches); left > 0; --left) regenerate();
  } else {
    jump(batches);
  }
  position_ = static_cast<std::size_t>(total - batches * kWords);
  return ok;
}

// The low 31 bits of the first word are no part of the recurrence: combined are the words from the
// second on, one step less far.
void mt19937ar::jump(uint128 batches) {
  BinaryPolynomial const remainder = modulus().powerOfX(batches * kWords - 1);
  std::vector<std::uint32_t> words(kDegree + 1 + kWords);
  std::copy_n(batch_.words, kWords, words.begin());
  for (std::size_t i = 0; i + kWords < words.size(); ++i)
    words[i + kWords] = wordBehind(words.data(), i);
  combine(remainder, kDegree, words.data() + 1, batch_.words, kWords);
}

}  // namespace tfl_rng
