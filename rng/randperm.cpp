// Permutations of 1..n and selections of k of n in random order. Raw uniforms of the generator;
// antithetic mode plays no part.

#include <algorithm>
#include <cmath>

#include "errors/keys.h"
#include "host/allocator.h"
#include "host/sort.h"
#include "host/tfl_rng.h"
#include "rng/chunks.h"
#include "rng/dense_shuffle.h"
#include "rng/in_use.h"
#include "rng/randstream.h"
#include "rng/sparse_shuffle.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"

namespace {

// Beyond this, not every integer is a double.
constexpr double kLargestCount = 0x1p53;

// A result of this size no longer fits the caches, so that scattered accesses pay a prefetch.
constexpr std::size_t kPrefetchFrom = std::size_t{1} << 19;

// So few uniforms are ordered on the spot, which asks for no memory.
constexpr std::size_t kFewValues = 32;

std::uint64_t truncated(double product) {
  return tfl_rng::toUint64(tfl_rng::truncateProduct(product));
}

// The inside-out shuffle (Durstenfeld 1964, in the form that builds the result). Draws n-1
// uniforms. A chunk is placed while the targets of the next one are on their way to the cache.
void shuffleInsideOut(UniformSource source, double* out, std::size_t n) {
  double uniforms[kChunk];
  std::int64_t targets[2][kChunk];
  // The targets of the values from `placed` on; how many they are.
  const auto draw = [&](std::size_t placed, std::int64_t* to) {
    const std::size_t len = std::min(n - placed, kChunk);
    if (placed > plugin_rng::kUninterrupted) plugin_rng::checkInterruption();
    if (len > 0) source.randu(uniforms, len);
    // No array is long enough for a product that truncation would leave as it is.
    for (std::size_t i = 0; i < len; ++i)
      to[i] = static_cast<std::int64_t>(uniforms[i] * static_cast<double>(placed + i + 1));
    if (n >= kPrefetchFrom)
      for (std::size_t i = 0; i < len; ++i) __builtin_prefetch(out + to[i], 1);
    return len;
  };
  out[0] = 1;
  std::size_t placed = 1;
  std::size_t len = draw(placed, targets[0]);
  for (int turn = 0; len > 0; turn = 1 - turn) {
    const std::size_t next = draw(placed + len, targets[1 - turn]);
    for (std::size_t i = 0; i < len; ++i, ++placed) {
      double& target = out[targets[turn][i]];
      out[placed] = target;
      target = static_cast<double>(placed + 1);
    }
    len = next;
  }
}

// The order of n uniforms, n at most kFewValues: each position goes where as many values end as are
// smaller, or equal and earlier.
void orderFew(UniformSource source, double* out, std::size_t n) {
  double uniforms[kFewValues];
  source.randu(uniforms, n);
  std::int64_t place[kFewValues] = {};
  for (std::size_t i = 1; i < n; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const bool inOrder = uniforms[j] <= uniforms[i];
      place[i] += inOrder;
      place[j] += !inOrder;
    }
  }
  for (std::size_t i = 0; i < n; ++i) out[place[i]] = static_cast<double>(i + 1);
}

// The first k steps of a shuffle from the top of an array of n. Draws k uniforms.
template <class Shuffle>
void shuffleFromTop(UniformSource source, double* out, std::size_t k, double n, Shuffle shuffle) {
  double uniforms[kChunk];
  double left = n;
  forEachChunk(k, kChunk, [&](std::size_t at, std::size_t len) {
    source.randu(uniforms, len);
    for (std::size_t i = 0; i < len; ++i, --left)
      out[at + i] = static_cast<double>(
          shuffle.takeAndReplace(truncated(left * uniforms[i]), truncated(left - 1)) + 1);
  });
}

void shuffleSparse(UniformSource source, double* out, std::size_t k, double n) {
  // Up to here the whole array takes no more than twice the memory of its sparse form.
  constexpr double kDense = 16;
  constexpr double kPositions = 0x1p32;
  if (n <= kDense * static_cast<double>(k) && n <= kPositions) {
    // The entry that a fraction of n adds can be drawn too.
    shuffleFromTop(source, out, k, n,
                   DenseShuffle(static_cast<std::size_t>(truncated(std::ceil(n)))));
  } else {
    shuffleFromTop(source, out, k, n, SparseShuffle(k));
  }
}

// Sequential selection (J. S. Vitter, Faster Methods for Random Sampling, CACM 27 (1984), method
// A), each selected value shuffled in at once. Draws 2k uniforms.
void selectSequentially(UniformSource source, double* out, std::size_t k, double n) {
  constexpr std::size_t kPairs = kChunk / 2;
  double uniforms[2 * kPairs];
  double candidate = 1;
  double candidatesLeft = n;
  for (std::size_t selected = 0; selected < k;) {
    if (selected > plugin_rng::kUninterrupted) plugin_rng::checkInterruption();
    const std::size_t pairs = std::min(k - selected, kPairs);
    source.randu(uniforms, 2 * pairs);
    for (std::size_t i = 0; i < pairs; ++i) {
      const double toSelect = static_cast<double>(k - selected);
      const double u = uniforms[2 * i];
      for (double p = toSelect / candidatesLeft; u > p;) {
        --candidatesLeft;
        ++candidate;
        p += (1 - p) * (toSelect / candidatesLeft);
      }
      ++selected;
      const std::uint64_t j = truncated(static_cast<double>(selected) * uniforms[2 * i + 1]);
      out[selected - 1] = out[j];
      out[j] = candidate;
      ++candidate;
      --candidatesLeft;
    }
  }
}

}  // namespace

template <>
void randstream::randpermFcn(double* out, std::uint64_t n) {
  const InUse inUse(*this);
  if (n <= kFewValues) return orderFew(uniforms(), out, static_cast<std::size_t>(n));
  const std::uint64_t dims[] = {n, 1};
  const txArrayPtr values = txCreateUninitialized(dims, txClassDouble);
  const WholeDraw whole(*this, n);
  uniforms().randu(values->dataAs<double>(), n);
  txArrayPtr sorted[2];  // values and positions
  txArray const* const inputs[] = {values.get()};
  mathcoreSortFcn(2, sorted, 1, const_cast<txArray const**>(inputs));
  double const* const positions = std::as_const(*sorted[1]).dataAs<double>();
  plugin_rng::inInterruptibleParts(
      n, [&](std::size_t at, std::size_t len) { std::copy_n(positions + at, len, out + at); });
}

template <>
void randstream::randkpermFcn(double* out, std::uint64_t length, double n) {
  const InUse inUse(*this);
  namespace keys = TALVOR::RandStream::randperm;
  if (length == 0) return;
  const auto count = static_cast<double>(length);
  if (n >= kLargestCount) errors::raise(keys::inputNTooLarge());
  if (count > n) errors::raise(keys::inputKTooLarge());
  const WholeDraw whole(*this, length);
  const auto k = static_cast<std::size_t>(length);
  if (count == n) return shuffleInsideOut(uniforms(), out, k);
  if (0.25 * n > count) return shuffleSparse(uniforms(), out, k, n);
  selectSequentially(uniforms(), out, k, n);
}
