#pragma once

// The scalar form of the kernels of mlfg6331_64: what they must equal, and what the baseline runs.

#include <algorithm>

#include "tfl_rng/kernels/mlfg6331.h"
#include "tfl_rng/to_double.h"

namespace tfl_rng::mlfg6331::reference {

// One step of a ring of words, the oldest one at `position`, which moves on; the word it makes.
inline std::uint64_t step(Terms& ring, std::size_t& position) noexcept {
  const std::size_t other = position + kLag - kShortLag;
  const std::uint64_t word = ring[position] * ring[other < kLag ? other : other - kLag];
  ring[position] = word;
  position = position + 1 < kLag ? position + 1 : 0;
  return word;
}

inline void run(Terms& table, double* out, std::size_t n) {
  std::size_t position = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint64_t word = step(table, position);
    if (out) out[i] = open52(word);
  }
  std::rotate(table.begin(), table.begin() + static_cast<std::ptrdiff_t>(position), table.end());
}

// The terms and the `more` ones that follow them.
template <std::size_t more>
std::array<std::uint64_t, kLag + more> extended(Terms const& terms) {
  std::array<std::uint64_t, kLag + more> x;
  std::copy(terms.begin(), terms.end(), x.begin());
  for (std::size_t k = kLag; k < x.size(); ++k) x[k] = x[k - kLag] + x[k - kShortLag];
  return x;
}

inline void apply(Terms const& coefficients, Terms& terms) {
  const auto x = extended<kLag - 1>(terms);
  terms.fill(0);
  for (std::size_t j = 0; j < kLag; ++j) {
    for (std::size_t i = 0; i < kLag; ++i) terms[i] += coefficients[j] * x[i + j];
  }
}

}  // namespace tfl_rng::mlfg6331::reference
