#pragma once

// randperm, as builtin and as method.

#include <array>
#include <utility>

#include "builtins/policy.h"
#include "builtins/randperm_arguments.h"
#include "builtins/sampling.h"

namespace builtins {

template <class Keys>
inline constexpr PermutationErrors kPermutationErrors = {
    raiseAt<typename Keys::inputType>,
    raiseAt<typename Keys::inputNTooLarge>,
    raiseAt<typename Keys::inputKTooLarge>,
};

// 1-by-n: a permutation of 1..n.
template <class Source>
txArrayPtr permute(Source const& source, std::uint64_t n) {
  txArrayPtr result = txCreateUninitialized(std::array{std::uint64_t{1}, n}, txClassDouble);
  source.acquire()->randpermFcn(result->dataAs<double>(), n);
  return result;
}

// 1-by-k: k distinct values of 1..n.
template <class Source>
txArrayPtr select(Source const& source, Selection const& selection) {
  txArrayPtr result =
      txCreateUninitialized(std::array{std::uint64_t{1}, selection.k}, txClassDouble);
  source.acquire()->randkpermFcn(result->dataAs<double>(), selection.k, selection.n);
  return result;
}

template <class Entry>
void samplePermutation(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  using Source = typename Entry::Source;
  errors::checkCounts(nlhs, 1, nrhs, 1, Source::kArguments + 2);
  Source const source(prhs);
  Arguments const args = argumentsAfter<Source>(nrhs, prhs);
  switch (args.size()) {
    case 0:
      matrix::detail::error_minrhs();
    case 1:
      plhs[0] = permute(source, parsePermutationLength(args[0], args.position(0)));
      return;
    default:
      plhs[0] = select(source, parseSelection(kPermutationErrors<typename Entry::Keys>, args[0],
                                              args[1], args.position(0)));
  }
}

}  // namespace builtins
