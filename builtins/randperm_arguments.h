#pragma once

// The argument checks of randperm. The one-argument form leaves n to the host's index check, the
// two-argument form has rules and errors of its own.

#include <cstdint>

#include "host/tx_array.h"

namespace builtins {

struct PermutationErrors {
  using RaiseAt = void (*)(int position);
  RaiseAt inputType;
  RaiseAt inputNTooLarge;
  RaiseAt inputKTooLarge;
};

// The n of randperm(n).
std::uint64_t parsePermutationLength(txArray const& n, int position);

struct Selection {
  double n;
  std::uint64_t k;
};
// The two numbers of randperm(n, k), n checked before k. `position` is that of n.
Selection parseSelection(PermutationErrors const& errors, txArray const& n, txArray const& k,
                         int position);
Selection checkSelection(PermutationErrors const& errors, double n, double k, int position);

}  // namespace builtins
