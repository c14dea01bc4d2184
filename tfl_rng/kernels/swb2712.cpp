#include "tfl_rng/kernels/swb2712.h"

#include <algorithm>
#include <array>

#include "tfl_rng/kernels/swb2712_reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/swb2712.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#ifndef TFL_RNG_KERNELS_SWB2712_RUN
#define TFL_RNG_KERNELS_SWB2712_RUN
namespace tfl_rng::swb2712_kernel {

// For fewer draws than this the scalar form is the faster one.
constexpr std::size_t kLeastDraws = 12;
// Wider vectors would wait: these leave three of them between a value and its first use.
constexpr std::size_t kMaxLanes = 4;
constexpr std::size_t kRun = 256;  // draws between two visits to the ring

// The ring laid out in a line, oldest value first, and room for the values of a run after it. In
// units of 2^-53.
struct Line {
  alignas(64) std::array<std::uint64_t, kLags + kRun> z;
  bool firstBorrow;  // the one that enters the run

  // Sign of z[at - kNear] - z[at - kFar]: a difference borrows if it is negative, and passes on the
  // borrow that it gets if it is 0.
  bool borrowInto(std::size_t at) const noexcept {
    for (std::size_t before = at - 1; before >= kLags; --before) {
      const std::uint64_t near = z[before - kNear];
      const std::uint64_t far = z[before - kFar];
      if (near != far) return near < far;
    }
    return firstBorrow;
  }
};

}  // namespace tfl_rng::swb2712_kernel
#endif

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::swb2712_kernel::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void fillFrom(swb2712::State& state, double* out, std::size_t n) { reference::fill(state, out, n); }

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::uint64_t, kMaxLanes> u64;
constexpr hn::RebindToSigned<decltype(u64)> i64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
constexpr hn::RepartitionToNarrow<decltype(u64)> u32;
using Longs = hn::Vec<decltype(u64)>;
using Words = hn::Vec<decltype(u32)>;
using Doubles = hn::Vec<decltype(f64)>;

HWY_INLINE Doubles toFractions(Longs units) {
  const Doubles fraction =
      hn::Mul(hn::ConvertTo(f64, hn::BitCast(i64, units)), hn::Set(f64, 0x1p-53));
  return hn::Max(fraction, hn::Set(f64, kSmallestUniform));
}

HWY_INLINE void load(swb2712::State const& state, Line& line) {
  alignas(64) double ordered[kLags];
  std::rotate_copy(state.lags.begin(), state.lags.begin() + state.position, state.lags.end(),
                   ordered);
  for (std::size_t i = 0; i < kLags; i += hn::Lanes(f64)) {
    const auto units =
        hn::ConvertTo(i64, hn::Mul(hn::Load(f64, ordered + i), hn::Set(f64, 0x1p53)));
    hn::Store(hn::BitCast(u64, units), u64, line.z.data() + i);
  }
  line.firstBorrow = state.borrow;
}

// Puts the values of a run of `draws` into the ring; values that it did not reach stay as they are.
HWY_INLINE void save(Line const& line, std::size_t draws, swb2712::State& state) {
  alignas(64) double last[kLags];
  for (std::size_t i = 0; i < kLags; i += hn::Lanes(f64))
    hn::Store(toFractions(hn::LoadU(u64, line.z.data() + draws + i)), f64, last + i);
  state.position = static_cast<std::uint32_t>((state.position + draws) % kLags);
  for (std::size_t i = kLags - std::min(draws, kLags); i < kLags; ++i)
    state.lags[(state.position + i) % kLags] = last[i];
  state.borrow = line.borrowInto(kLags + draws);
  state.counter += kWeylStep * static_cast<std::uint32_t>(draws);
}

// mix32 of every word.
HWY_INLINE Words mixEach(Words h) {
  h = hn::Xor(h, hn::ShiftRight<16>(h));
  h = hn::Mul(h, hn::Set(u32, kMix1));
  h = hn::Xor(h, hn::ShiftRight<13>(h));
  h = hn::Mul(h, hn::Set(u32, kMix2));
  return hn::Xor(h, hn::ShiftRight<16>(h));
}

// The values at line.z[at] and after it.
HWY_INLINE Longs next(Line& line, std::size_t at) {
  std::uint64_t* const z = line.z.data() + at;
  const auto difference = [&](std::size_t back) HWY_ATTR {
    return hn::Sub(hn::LoadU(u64, z - kNear - back), hn::LoadU(u64, z - kFar - back));
  };
  const Longs before = difference(1);
  const Longs zero = hn::Zero(u64);
  if (HWY_LIKELY(hn::AllFalse(u64, hn::Eq(before, zero)))) {
    const Longs borrow = hn::ShiftRight<63>(before);
    return hn::And(hn::Sub(difference(0), borrow), hn::Set(u64, kUnits - 1));
  }
  alignas(64) std::uint64_t values[kMaxLanes];
  std::uint64_t borrow = line.borrowInto(at);
  for (std::size_t i = 0; i < hn::Lanes(u64); ++i) {
    values[i] = z[i - kNear] - z[i - kFar] - borrow;
    borrow = values[i] >> 63;
    values[i] %= kUnits;
  }
  return hn::Load(u64, values);
}

// A run of `draws`, a multiple of the lanes.
HWY_INLINE void run(Line& line, std::uint32_t counter, double* out, std::size_t draws) {
  const std::size_t lanes = hn::Lanes(u64);
  // A lane holds the counter in its low half and the complement, which counts down, in its high.
  const auto weyl = [](Longs steps) HWY_ATTR {
    return hn::Mul(hn::BitCast(u32, steps), hn::Set(u32, kWeylStep));
  };
  const auto toHigh = [](Words low) HWY_ATTR {
    return hn::BitCast(u32, hn::ShiftLeft<32>(hn::BitCast(u64, low)));
  };
  const Words start = hn::BitCast(u32, hn::Set(u64, counter));
  const Words up = hn::Add(start, weyl(hn::Add(hn::Iota(u64, 0), hn::Set(u64, 1))));
  const Words step = weyl(hn::Set(u64, lanes));
  Words counters = hn::Or(up, toHigh(hn::Not(up)));
  const Words stride = hn::Or(step, toHigh(hn::Sub(hn::Zero(u32), step)));
  for (std::size_t i = 0; i < draws; i += lanes) {
    const Longs mixed = hn::BitCast(u64, mixEach(counters));
    counters = hn::Add(counters, stride);
    const Longs mask =
        hn::OrAnd(hn::And(mixed, hn::Set(u64, 0xffffffff)), hn::ShiftRight<11>(mixed),
                  hn::Set(u64, (kUnits - 1) & ~std::uint64_t{0xffffffff}));
    const Longs z = next(line, kLags + i);
    hn::StoreU(toFractions(hn::Xor(z, mask)), f64, out + i);
    // A stored 0 would be no valid lag value: it becomes 1 unit.
    const Longs isZero = hn::VecFromMask(u64, hn::Eq(z, hn::Zero(u64)));
    hn::StoreU(hn::Sub(z, isZero), u64, line.z.data() + kLags + i);
  }
}

HWY_INLINE void fillFrom(swb2712::State& state, double* out, std::size_t n) {
  const std::size_t lanes = hn::Lanes(u64);
  // The borrow into a vector follows from the draw before, so that one must have been made here.
  const std::size_t single = (n - 1) % lanes + 1;
  reference::fill(state, out, single);
  Line line;
  for (std::size_t done = single; done < n;) {
    const std::size_t draws = std::min(kRun, n - done);
    load(state, line);
    run(line, state.counter, out + done, draws);
    save(line, draws, state);
    done += draws;
  }
}

#endif

void fillAny(swb2712::State& state, double* out, std::size_t n) { fillFrom(state, out, n); }

}  // namespace tfl_rng::swb2712_kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::swb2712_kernel {

HWY_EXPORT(fillAny);

void fill(swb2712::State& state, double* out, std::size_t n) {
  if (n < kLeastDraws) return reference::fill(state, out, n);
  HWY_DYNAMIC_DISPATCH(fillAny)(state, out, n);
}

}  // namespace tfl_rng::swb2712_kernel
#endif
