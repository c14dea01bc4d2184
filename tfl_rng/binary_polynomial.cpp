#include "tfl_rng/binary_polynomial.h"

#include <bit>
#include <utility>

namespace tfl_rng {
namespace {

// p + q x^shift, as far as p reaches.
void addShifted(BinaryPolynomial& p, BinaryPolynomial const& q, std::size_t shift) noexcept {
  const std::size_t words = shift / 64;
  const std::size_t bits = shift % 64;
  for (std::size_t i = 0; i + words < p.size(); ++i) {
    p[i + words] ^= q[i] << bits;
    if (bits != 0 && i + words + 1 < p.size()) p[i + words + 1] ^= q[i] >> (64 - bits);
  }
}

void timesX(BinaryPolynomial& p) noexcept {
  std::uint64_t carry = 0;
  for (std::uint64_t& word : p) carry = std::exchange(word, word << 1 | carry) >> 63;
}

// The 32 bits of `half` at the even places.
std::uint64_t spread(std::uint64_t half) noexcept {
  half = (half | half << 16) & 0x0000ffff0000ffff;
  half = (half | half << 8) & 0x00ff00ff00ff00ff;
  half = (half | half << 4) & 0x0f0f0f0f0f0f0f0f;
  half = (half | half << 2) & 0x3333333333333333;
  return (half | half << 1) & 0x5555555555555555;
}

}  // namespace

BinaryPolynomial minimalPolynomial(std::vector<bool> const& sequence) {
  const std::size_t words = sequence.size() / 128 + 2;
  BinaryPolynomial connection(words);  // 1 + c_1 x + ...: s_n = c_1 s_(n-1) + c_2 s_(n-2) + ...
  connection[0] = 1;
  BinaryPolynomial last = connection;  // before the length changed, `since` bits ago
  BinaryPolynomial recent(words);      // the sequence so far, the newest bit first
  std::size_t length = 0;
  std::size_t since = 1;
  for (std::size_t n = 0; n < sequence.size(); ++n, ++since) {
    timesX(recent);
    recent[0] |= sequence[n];
    std::uint64_t products = 0;
    for (std::size_t i = 0; i <= length / 64; ++i) products ^= connection[i] & recent[i];
    if (std::popcount(products) % 2 == 0) continue;
    if (2 * length > n) {
      addShifted(connection, last, since);
      continue;
    }
    BinaryPolynomial const before = connection;
    addShifted(connection, last, since);
    last = before;
    since = 0;
    length = n + 1 - length;
  }
  // Read from the other end it is the characteristic polynomial.
  BinaryPolynomial minimal(length / 64 + 1);
  for (std::size_t i = 0; i <= length; ++i) {
    minimal[i / 64] |= std::uint64_t{coefficient(connection, length - i)} << i % 64;
  }
  return minimal;
}

BinaryModulus::BinaryModulus(BinaryPolynomial const& polynomial)
    : degree_(64 * polynomial.size() - 1 -
              static_cast<std::size_t>(std::countl_zero(polynomial.back()))) {
  shifted_[0] = polynomial;
  shifted_[0].push_back(0);
  for (std::size_t s = 1; s < shifted_.size(); ++s) timesX(shifted_[s] = shifted_[s - 1]);
}

void BinaryModulus::reduce(BinaryPolynomial& p, std::size_t top) const noexcept {
  for (std::size_t i = top; i >= degree_; --i) {
    if (!coefficient(p, i)) continue;
    const std::size_t shift = i - degree_;
    BinaryPolynomial const& multiple = shifted_[shift % 64];
    exclusiveOr(p.data() + shift / 64, multiple.data(), multiple.size() * sizeof multiple[0]);
  }
}

BinaryPolynomial BinaryModulus::powerOfX(uint128 n) const {
  const std::size_t words = shifted_[0].size();
  int bit = 0;  // bits of n below the leading ones
  while (n >> bit >= degree_) ++bit;
  BinaryPolynomial power(2 * words);  // room for a square
  const auto start = static_cast<std::size_t>(n >> bit);
  power[start / 64] = std::uint64_t{1} << start % 64;
  while (bit-- > 0) {
    for (std::size_t i = words; i-- > 0;) {
      const std::uint64_t word = power[i];
      power[2 * i] = spread(word & 0xffffffff);
      power[2 * i + 1] = spread(word >> 32);
    }
    if (n >> bit & 1) timesX(power);
    reduce(power, 2 * degree_ - 1);
  }
  power.resize(words);
  return power;
}

}  // namespace tfl_rng
