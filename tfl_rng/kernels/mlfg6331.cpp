#include "tfl_rng/kernels/mlfg6331.h"

#include <hwy/cache_control.h>

#include <algorithm>

#include "tfl_rng/kernels/mlfg6331_reference.h"
#include "tfl_rng/kernels/streaming.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/mlfg6331.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/open52-inl.h"
#include "tfl_rng/kernels/results-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::mlfg6331::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void runAny(Stores, Terms& table, double* out, std::size_t n) { reference::run(table, out, n); }
void apply(Terms const& coefficients, Terms& terms) { reference::apply(coefficients, terms); }

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::uint64_t, 8> u64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Words = hn::Vec<decltype(u64)>;
using tfl_rng::HWY_NAMESPACE::Cached;
using tfl_rng::HWY_NAMESPACE::Discarded;
using tfl_rng::HWY_NAMESPACE::Streaming;

constexpr std::size_t kLanes = hn::MaxLanes(u64);
constexpr std::size_t kVectors = 64 / kLanes;

// Lanes 1 and up of each vector, then its lane 0.
HWY_INLINE Words rotate(Words words) {
  HWY_ALIGN std::uint64_t places[kLanes];
  for (std::size_t i = 0; i < kLanes; ++i) places[i] = (i + 1) % kLanes;
  return hn::TableLookupLanes(words, hn::SetTableIndices(u64, places));
}

constexpr std::size_t kRound = 64;

// Whole rounds of 64 steps with the table in registers. Both lags are one less than a multiple of
// the lanes: lane n of a new vector is the product of lanes n + 1 of the vectors 64 and 32 words
// back. What is kept of each vector is therefore its window that begins a word later, and ends with
// lane 0 of the vector after it.
template <class Results>
void runRounds(Terms& table, double* out, std::size_t rounds) {
  const auto last = hn::Eq(hn::Iota(u64, 0), hn::Set(u64, kLanes - 1));
  Words windows[kVectors];
  HWY_UNROLL(32)
  for (std::size_t r = 0; r + 1 < kVectors; ++r) {
    windows[r] = hn::LoadU(u64, table.data() + r * kLanes);
  }
  windows[kVectors - 1] = hn::Zero(u64);
  // The newest vector without its lane 0, which ends the window before.
  HWY_ALIGN std::uint64_t newest[kLanes] = {};
  std::copy(table.end() - (kLanes - 1), table.end(), newest);
  Words opened = hn::Load(u64, newest);
  for (; rounds > 0; --rounds) {
    HWY_UNROLL(32)
    for (std::size_t r = 0; r < kVectors; ++r) {
      const Words made = hn::Mul(windows[r], windows[(r + kVectors / 2) % kVectors]);
      const Words turned = rotate(made);
      windows[(r + kVectors - 1) % kVectors] = hn::IfThenElse(last, turned, opened);
      opened = turned;
      if constexpr (Results::kKept)
        Results::store(tfl_rng::HWY_NAMESPACE::open52(made), f64, out + r * kLanes);
    }
    if constexpr (Results::kKept) out += kRound;
  }
  HWY_UNROLL(32)
  for (std::size_t r = 0; r + 1 < kVectors; ++r) {
    hn::StoreU(windows[r], u64, table.data() + r * kLanes);
  }
  hn::Store(opened, u64, newest);
  std::copy_n(newest, kLanes - 1, table.end() - (kLanes - 1));
}

// Less than a round, through memory. Whole vectors are made and the words too many forgotten.
template <class Results>
void runRest(Terms& table, double* out, std::size_t n) {
  std::uint64_t words[kLag + kRound];
  std::copy(table.begin(), table.end(), words);
  HWY_ALIGN double draws[kRound];
  for (std::size_t i = 0; i < n; i += kLanes) {
    const Words made =
        hn::Mul(hn::LoadU(u64, words + i), hn::LoadU(u64, words + i + kLag - kShortLag));
    hn::StoreU(made, u64, words + i + kLag);
    if constexpr (Results::kKept) hn::Store(tfl_rng::HWY_NAMESPACE::open52(made), f64, draws + i);
  }
  if constexpr (Results::kKept) std::copy_n(draws, n, out);
  std::copy_n(words + n, kLag, table.begin());
}

template <class Results>
void runAll(Terms& table, double* out, std::size_t n) {
  const std::size_t whole = n / kRound * kRound;
  if (whole > 0) runRounds<Results>(table, out, whole / kRound);
  runRest<Results>(table, Results::kKept ? out + whole : out, n - whole);
}

void runAny(Stores stores, Terms& table, double* out, std::size_t n) {
  if (!out) return runAll<Discarded>(table, out, n);
  if (stores == Stores::cached) return runAll<Cached>(table, out, n);
  const std::size_t head = streaming::beforeFirstLine(out, n);
  runAll<Cached>(table, out, head);
  runAll<Streaming>(table, out + head, n - head);
  hwy::FlushStream();
}

// A few vectors of sums at a time: as many as leave room in the registers.
void apply(Terms const& coefficients, Terms& terms) {
  constexpr std::size_t kSums = kVectors < 8 ? kVectors : 8;
  const auto x = reference::extended<kRound - 1 + kLag>(terms);
  HWY_ALIGN std::uint64_t sums[kRound];
  for (std::size_t at = 0; at < kRound; at += kSums * kLanes) {
    Words sum[kSums];
    HWY_UNROLL(8)
    for (std::size_t s = 0; s < kSums; ++s) sum[s] = hn::Zero(u64);
    for (std::size_t j = 0; j < kLag; ++j) {
      const Words weight = hn::Set(u64, coefficients[j]);
      HWY_UNROLL(8)
      for (std::size_t s = 0; s < kSums; ++s) {
        sum[s] = hn::Add(sum[s], hn::Mul(weight, hn::LoadU(u64, &x[at + s * kLanes + j])));
      }
    }
    HWY_UNROLL(8)
    for (std::size_t s = 0; s < kSums; ++s) hn::Store(sum[s], u64, sums + at + s * kLanes);
  }
  std::copy_n(sums, kLag, terms.begin());
}

#endif

}  // namespace tfl_rng::mlfg6331::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::mlfg6331 {

HWY_EXPORT(runAny);
HWY_EXPORT(apply);

void run(Stores stores, Terms& table, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(runAny)(stores, table, out, n);
}
void apply(Terms const& coefficients, Terms& terms) {
  HWY_DYNAMIC_DISPATCH(apply)(coefficients, terms);
}

}  // namespace tfl_rng::mlfg6331
#endif
