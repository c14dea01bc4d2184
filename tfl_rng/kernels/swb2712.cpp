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
constexpr std::size_t kStep = kNear;      // draws at once: none of them needs another
constexpr std::size_t kMaxLanes = 4;      // that a step is whole vectors
constexpr std::size_t kRun = 40 * kStep;  // draws between two visits to the ring

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

void fillFrom(State& state, double* out, std::size_t n) { reference::fill(state, out, n); }

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::uint64_t, kMaxLanes> u64;
constexpr hn::RebindToSigned<decltype(u64)> i64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
constexpr hn::RepartitionToNarrow<decltype(u64)> u32;
constexpr std::size_t kLanes = hn::MaxLanes(u64);
constexpr std::size_t kVectors = kStep / kLanes;
using Longs = hn::Vec<decltype(u64)>;
using Words = hn::Vec<decltype(u32)>;
using Doubles = hn::Vec<decltype(f64)>;

HWY_INLINE Doubles toFractions(Longs units) {
  const Doubles fraction =
      hn::Mul(hn::ConvertTo(f64, hn::BitCast(i64, units)), hn::Set(f64, 0x1p-53));
  return hn::Max(fraction, hn::Set(f64, kSmallestUniform));
}

HWY_INLINE void load(State const& state, Line& line) {
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
HWY_INLINE void save(Line const& line, std::size_t draws, State& state) {
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

// Of two neighbours in a row the lanes from the second on, and those up to the last but one.
HWY_INLINE Longs fromSecond(Longs low, Longs high) {
  if constexpr (kLanes == 2) return hn::CombineShiftRightLanes<1>(u64, high, low);
  return hn::CombineShiftRightLanes<1>(u64, hn::ConcatLowerUpper(u64, high, low), low);
}
HWY_INLINE Longs toLastButOne(Longs low, Longs high) {
  if constexpr (kLanes == 2) return hn::CombineShiftRightLanes<1>(u64, high, low);
  return hn::CombineShiftRightLanes<1>(u64, high, hn::ConcatLowerUpper(u64, high, low));
}

// Makes the unmixed values of a step at line.z[at], one by one, and what is to be mixed of them.
HWY_NOINLINE void makeSlowly(Line& line, std::size_t at, std::uint64_t* toMix) {
  std::uint64_t borrow = line.borrowInto(at);
  for (std::size_t i = at; i < at + kStep; ++i) {
    const std::uint64_t difference = line.z[i - kNear] - line.z[i - kFar] - borrow;
    borrow = difference >> 63;
    toMix[i - at] = difference % kUnits;
    // A stored 0 would be no valid lag value: it becomes 1 unit.
    line.z[i] = std::max<std::uint64_t>(difference % kUnits, 1);
  }
}

// A run of `draws`; line.z is written up to a whole step.
HWY_INLINE void run(Line& line, std::uint32_t counter, double* out, std::size_t draws) {
  // A lane holds the counter in its low half and the complement, which counts down, in its high.
  const auto weyl = [](Longs steps) HWY_ATTR {
    return hn::Mul(hn::BitCast(u32, steps), hn::Set(u32, kWeylStep));
  };
  const auto toHigh = [](Words low) HWY_ATTR {
    return hn::BitCast(u32, hn::ShiftLeft<32>(hn::BitCast(u64, low)));
  };
  const Words start = hn::BitCast(u32, hn::Set(u64, counter));
  const Words up = hn::Add(start, weyl(hn::Add(hn::Iota(u64, 0), hn::Set(u64, 1))));
  const Words step = weyl(hn::Set(u64, kLanes));
  Words counters = hn::Or(up, toHigh(hn::Not(up)));
  const Words stride = hn::Or(step, toHigh(hn::Sub(hn::Zero(u32), step)));

  // The values before a step, in registers: z[at - kHeld] and on. The farther lag begins at the
  // second lane of the first of them.
  constexpr std::size_t kHeld = kFar + 1;
  static_assert(kHeld % kLanes == 0 && kStep % kLanes == 0);
  Longs z[kHeld / kLanes + kVectors];
  const auto load = [&](std::size_t at) HWY_ATTR {
    HWY_UNROLL(16)
    for (std::size_t i = 0; i < kHeld / kLanes; ++i)
      z[i] = hn::LoadU(u64, line.z.data() + at - kHeld + i * kLanes);
  };
  const auto borrowOf = [](bool borrow)
                            HWY_ATTR { return hn::Set(u64, borrow ? ~std::uint64_t{0} : 0); };
  load(kLags);
  Longs before = borrowOf(line.firstBorrow);  // its last lane has the sign of the last difference

  for (std::size_t i = 0; i < draws; i += kStep) {
    const std::size_t at = kLags + i;
    Longs difference[kVectors], toMix[kVectors];
    auto borrowsMatter = hn::FirstN(u64, 0);
    HWY_UNROLL(8)
    for (std::size_t v = 0; v < kVectors; ++v) {
      const Longs near = z[(kHeld - kNear) / kLanes + v];
      difference[v] = hn::Sub(near, fromSecond(z[v], z[v + 1]));
      // A difference of 0 passes on the borrow that it gets, and 1 less a borrow is 0.
      const Longs from2 = hn::And(difference[v], hn::Set(u64, ~std::uint64_t{1}));
      borrowsMatter = hn::Or(borrowsMatter, hn::Eq(from2, hn::Zero(u64)));
    }
    Longs* const made = z + kHeld / kLanes;
    if (HWY_LIKELY(hn::AllFalse(u64, borrowsMatter))) {
      HWY_UNROLL(8)
      for (std::size_t v = 0; v < kVectors; ++v) {
        const Longs borrow = hn::ShiftRight<63>(toLastButOne(before, difference[v]));
        before = difference[v];
        made[v] = hn::And(hn::Sub(difference[v], borrow), hn::Set(u64, kUnits - 1));
        hn::StoreU(made[v], u64, line.z.data() + at + v * kLanes);
        toMix[v] = made[v];
      }
    } else {
      alignas(64) std::uint64_t values[kStep];
      makeSlowly(line, at, values);
      before = borrowOf(line.borrowInto(at + kStep));
      HWY_UNROLL(8)
      for (std::size_t v = 0; v < kVectors; ++v) {
        made[v] = hn::LoadU(u64, line.z.data() + at + v * kLanes);
        toMix[v] = hn::Load(u64, values + v * kLanes);
      }
    }

    alignas(64) double rest[kStep];
    double* const to = draws - i < kStep ? rest : out + i;
    HWY_UNROLL(8)
    for (std::size_t v = 0; v < kVectors; ++v) {
      const Longs mixed = hn::BitCast(u64, mixEach(counters));
      counters = hn::Add(counters, stride);
      const Longs mask =
          hn::OrAnd(hn::And(mixed, hn::Set(u64, 0xffffffff)), hn::ShiftRight<11>(mixed),
                    hn::Set(u64, (kUnits - 1) & ~std::uint64_t{0xffffffff}));
      hn::StoreU(toFractions(hn::Xor(toMix[v], mask)), f64, to + v * kLanes);
    }
    if (to == rest) std::copy_n(rest, draws - i, out + i);
    HWY_UNROLL(16)
    for (std::size_t v = 0; v < kHeld / kLanes; ++v) z[v] = z[v + kVectors];
  }
}

HWY_INLINE void fillFrom(State& state, double* out, std::size_t n) {
  Line line;
  for (std::size_t done = 0; done < n;) {
    const std::size_t draws = std::min(kRun, n - done);
    load(state, line);
    run(line, state.counter, out + done, draws);
    save(line, draws, state);
    done += draws;
  }
}

#endif

void fillAny(State& state, double* out, std::size_t n) { fillFrom(state, out, n); }

}  // namespace tfl_rng::swb2712_kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::swb2712_kernel {

HWY_EXPORT(fillAny);

void fill(State& state, double* out, std::size_t n) {
  if (n < kLeastDraws) return reference::fill(state, out, n);
  HWY_DYNAMIC_DISPATCH(fillAny)(state, out, n);
}

}  // namespace tfl_rng::swb2712_kernel
#endif
