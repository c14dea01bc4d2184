#pragma once

// rand and randn, as builtins and as methods: parse, create, fill.

#include <limits>
#include <utility>

#include "builtins/arguments.h"
#include "builtins/policy.h"
#include "errors/argument_counts.h"

namespace builtins {

inline constexpr int kAnyNumber = std::numeric_limits<int>::max();

struct Uniform {
  static constexpr char const* kMethod = "rand";
  static constexpr char const* kMethodLike = "randLike";
  template <class T>
  static void fill(randstream& stream, T* out, std::uint64_t n, bool /*complex*/) {
    stream.randuFcn(out, n);
  }
};

// The parts of a complex normal have half its variance each.
struct Normal {
  static constexpr char const* kMethod = "randn";
  static constexpr char const* kMethodLike = "randnLike";
  template <class T>
  static void fill(randstream& stream, T* out, std::uint64_t n, bool complex) {
    stream.randnFcn(out, n, complex);
  }
};

template <class Key>
void raiseAt(int position) {
  errors::raise(Key(), position);
}

template <class Key>
void raiseUnknownClass(int position, std::string_view meant) {
  if (meant.empty()) errors::raise(Key(), position);
  errors::raiseAsking(Key(), position, meant);
}

template <class Distribution, class Entry>
constexpr Grammar realGrammar() {
  using Keys = typename Entry::Keys;
  return {
      .method = Distribution::kMethod,
      .methodLike = Distribution::kMethodLike,
      .asksClasses = Entry::kAsksClasses,
      .leading = 0,
      .canFill = [](txClassID id) { return id == txClassDouble || id == txClassSingle; },
      .checkName = nullptr,
      .unknownClass = raiseUnknownClass<typename Keys::unknownClass>,
      .objectPrototype = raiseAt<typename Keys::invalidPrototype>,
      .prototypeClass = [](txArray const&,
                           int position) { raiseAt<typename Keys::invalidPrototype>(position); },
      .sparsePrototype = raiseAt<typename Keys::sparsePrototype>,
      .inputType = raiseAt<typename Keys::inputType>};
}

// The arguments after the source's own.
template <class Source>
Arguments argumentsAfter(int nrhs, txArray const* const* prhs) noexcept {
  return {std::span(prhs, static_cast<std::size_t>(nrhs)).subspan(Source::kArguments),
          Source::kArguments + 1};
}

// Numbers to draw for an array: one an element, two for a complex one.
inline std::uint64_t drawsFor(txArray const& array) noexcept {
  return array.numel() * (array.isComplex() ? 2 : 1);
}

template <class Distribution>
void fill(randstream& stream, txArray& result) {
  std::uint64_t const n = drawsFor(result);
  if (result.classID() == txClassSingle)
    Distribution::fill(stream, result.dataAs<float>(), n, result.isComplex());
  else
    Distribution::fill(stream, result.dataAs<double>(), n, result.isComplex());
}

template <class Distribution, class Entry>
void sample(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  using Source = typename Entry::Source;
  static constexpr Grammar kGrammar = realGrammar<Distribution, Entry>();
  errors::checkCounts(nlhs, 1, nrhs, Source::kArguments, kAnyNumber);
  Source const source(prhs);
  Arguments const args = argumentsAfter<Source>(nrhs, prhs);
  std::optional<Output> const output = parseOutput(kGrammar, nlhs, plhs, args);
  if (!output) return;
  Dimensions const dimensions = parseSizes(kGrammar, args.subrange(0, output->argumentsBefore));
  txArrayPtr result = txCreateUninitialized(dimensions.view(), output->classID, output->complexity);
  fill<Distribution>(*source.acquire(), *result);
  plhs[0] = finish(*output, std::move(result));
}

// The same for native callers, who give the size as a number or a row of numbers.
template <class Distribution, class Source>
txArrayPtr sampleVariant(Source const& source, Dimensions const& dimensions) {
  txArrayPtr result = txCreateUninitialized(dimensions.view(), txClassDouble);
  fill<Distribution>(*source.acquire(), *result);
  return result;
}

}  // namespace builtins
