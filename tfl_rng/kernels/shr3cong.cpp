#include "tfl_rng/kernels/shr3cong.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <array>

#include "tfl_rng/kernels/shr3cong_reference.h"
#include "tfl_rng/kernels/streaming.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/shr3cong.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/results-inl.h"

#ifndef TFL_RNG_KERNELS_SHR3CONG_TABLES
#define TFL_RNG_KERNELS_SHR3CONG_TABLES
namespace tfl_rng::shr3cong_kernel {

constexpr std::size_t kDraws = 32;  // of a block
// For fewer draws than this the scalar form is the faster one.
constexpr std::size_t kLeastDraws = 4;
constexpr std::size_t kNibbles = 8;

// How the two parts get from the state before a block to the first step of each of its draws.
struct Jumps {
  using Row = std::array<std::uint32_t, kDraws>;

  // The register's steps are linear over bits: its words are the exclusive-or of the words that
  // each of its nibbles leads to.
  alignas(64) std::array<std::array<Row, 16>, kNibbles> shiftRegister;
  // word * factor + term
  alignas(64) Row factor;
  alignas(64) Row term;
};

template <class Precision>
constexpr Jumps makeJumps() {
  Jumps jumps{};
  for (std::size_t nibble = 0; nibble < kNibbles; ++nibble) {
    for (std::uint32_t value = 0; value < 16; ++value) {
      std::uint32_t word = value << (4 * nibble);
      for (std::uint32_t& to : jumps.shiftRegister[nibble][value]) {
        to = word = shiftRegisterStep(word);
        if (Precision::kStepsEach == 2) word = shiftRegisterStep(word);
      }
    }
  }
  std::uint32_t fromZero = 0;
  std::uint32_t fromOne = 1;
  for (std::size_t i = 0; i < kDraws; ++i) {
    for (std::size_t step = 0; step < (i == 0 ? 1 : Precision::kStepsEach); ++step) {
      fromZero = congruentialStep(fromZero);
      fromOne = congruentialStep(fromOne);
    }
    jumps.factor[i] = fromOne - fromZero;
    jumps.term[i] = fromZero;
  }
  return jumps;
}

template <class Precision>
constexpr Jumps kJumps = makeJumps<Precision>();

// The row that one nibble of a word of the register selects.
template <class Precision, std::size_t nibble>
inline std::uint32_t const* rowOf(std::uint32_t word) noexcept {
  return kJumps<Precision>.shiftRegister[nibble][word >> (4 * nibble) & 15].data();
}

}  // namespace tfl_rng::shr3cong_kernel
#endif

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::shr3cong_kernel::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

template <class Precision>
void fillFrom(State& state, double* out, std::size_t n) {
  reference::fill(Precision{}, state, out, n);
}

template <class Precision>
void fillStreamingFrom(State& state, double* out, std::size_t n) {
  fillFrom<Precision>(state, out, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::uint32_t, 16> u32;
constexpr hn::Half<decltype(u32)> half32;
constexpr hn::RepartitionToWide<decltype(u32)> u64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Words = hn::Vec<decltype(u32)>;
using Longs = hn::Vec<decltype(u64)>;
using tfl_rng::HWY_NAMESPACE::Cached;
using tfl_rng::HWY_NAMESPACE::Streaming;

HWY_INLINE Words shiftRegisterStep(Words w) {
  w = hn::Xor(w, hn::ShiftLeft<13>(w));
  w = hn::Xor(w, hn::ShiftRight<17>(w));
  return hn::Xor(w, hn::ShiftLeft<5>(w));
}

HWY_INLINE Words congruentialStep(Words w) {
  return hn::Add(hn::Mul(w, hn::Set(u32, 69069)), hn::Set(u32, 1234567));
}

// Stores the mantissa's bits as numbers of [1,2), less what makes the lowest ones `least`.
template <class Results>
HWY_INLINE void storeUniforms(Longs mantissa, double least, double* out) {
  const Longs exponent = hn::BitCast(u64, hn::Set(f64, 1.0));
  const auto shifted = hn::BitCast(f64, hn::Or(mantissa, exponent));
  Results::store(hn::Sub(shifted, hn::Set(f64, 1 - least)), f64, out);
}

HWY_INLINE Longs lowerLongs(Words w) { return hn::PromoteTo(u64, hn::LowerHalf(half32, w)); }
HWY_INLINE Longs upperLongs(Words w) { return hn::PromoteTo(u64, hn::UpperHalf(half32, w)); }

// The draws whose first steps are `shift` and `cong`, one a lane.
template <class Results>
HWY_INLINE void storeDraws(Reduced, Words shift, Words cong, double* out) {
  const Words sum = hn::Add(shift, cong);
  storeUniforms<Results>(hn::ShiftLeft<20>(lowerLongs(sum)), 0x1p-33, out);
  storeUniforms<Results>(hn::ShiftLeft<20>(upperLongs(sum)), 0x1p-33, out + hn::Lanes(f64));
}

template <class Results>
HWY_INLINE void storeDraws(Full, Words shift, Words cong, double* out) {
  const Words high = hn::Add(shift, cong);
  const Words low = hn::ShiftRight<12>(hn::Add(shiftRegisterStep(shift), congruentialStep(cong)));
  storeUniforms<Results>(hn::Or(hn::ShiftLeft<20>(lowerLongs(high)), lowerLongs(low)), 0x1p-53,
                         out);
  storeUniforms<Results>(hn::Or(hn::ShiftLeft<20>(upperLongs(high)), upperLongs(low)), 0x1p-53,
                         out + hn::Lanes(f64));
}

// The exclusive-or of what `load` reads from the eight rows of a word. In pairs: a chain of eight
// would be the slowest part of all.
template <class Precision, class Join, class Load>
HWY_INLINE auto joinRows(std::uint32_t word, Join join, Load load) {
  return join(join(join(load(rowOf<Precision, 0>(word)), load(rowOf<Precision, 1>(word))),
                   join(load(rowOf<Precision, 2>(word)), load(rowOf<Precision, 3>(word)))),
              join(join(load(rowOf<Precision, 4>(word)), load(rowOf<Precision, 5>(word))),
                   join(load(rowOf<Precision, 6>(word)), load(rowOf<Precision, 7>(word)))));
}

// The state after 1 to kDraws draws.
template <class Precision>
HWY_INLINE State after(std::size_t draws, State state) {
  Jumps const& jumps = kJumps<Precision>;
  const auto join = [](std::uint32_t a, std::uint32_t b) HWY_ATTR { return a ^ b; };
  const auto load = [=](std::uint32_t const* row) HWY_ATTR { return row[draws - 1]; };
  state.shiftRegister = joinRows<Precision>(state.shiftRegister, join, load);
  state.congruential = state.congruential * jumps.factor[draws - 1] + jumps.term[draws - 1];
  if (Precision::kStepsEach == 2) state.step();
  return state;
}

// The first `draws` draws after `state`, rounded up to whole vectors.
template <class Precision, class Results = Cached>
HWY_INLINE void storeBlock(State const& state, double* out, std::size_t draws) {
  Jumps const& jumps = kJumps<Precision>;
  const auto join = [](Words a, Words b) HWY_ATTR { return hn::Xor(a, b); };
  for (std::size_t i = 0; i < draws; i += hn::Lanes(u32)) {
    const auto load = [=](std::uint32_t const* row) HWY_ATTR { return hn::LoadU(u32, row + i); };
    const Words shift = joinRows<Precision>(state.shiftRegister, join, load);
    const Words cong =
        hn::Add(hn::Mul(hn::Set(u32, state.congruential), hn::LoadU(u32, jumps.factor.data() + i)),
                hn::LoadU(u32, jumps.term.data() + i));
    storeDraws<Results>(Precision{}, shift, cong, out + i);
  }
}

template <class Precision, class Results = Cached>
HWY_INLINE void fillFrom(State& state, double* out, std::size_t n) {
  State at = state;
  for (; n >= kDraws; n -= kDraws, out += kDraws) {
    storeBlock<Precision, Results>(at, out, kDraws);
    at = after<Precision>(kDraws, at);
  }
  if (n < kLeastDraws) {
    reference::fill(Precision{}, at, out, n);
  } else {
    alignas(64) double block[kDraws];
    storeBlock<Precision>(at, block, n);
    std::copy_n(block, n, out);
    at = after<Precision>(n, at);
  }
  state = at;
}

template <class Precision>
HWY_INLINE void fillStreamingFrom(State& state, double* out, std::size_t n) {
  const std::size_t head = streaming::beforeFirstLine(out, n);
  fillFrom<Precision>(state, out, head);
  fillFrom<Precision, Streaming>(state, out + head, n - head);
  hwy::FlushStream();
}

#endif

template <class Precision>
void fillTo(Stores stores, State& state, double* out, std::size_t n) {
  stores == Stores::cached ? fillFrom<Precision>(state, out, n)
                           : fillStreamingFrom<Precision>(state, out, n);
}

void fillAny(Form form, Stores stores, State& state, double* out, std::size_t n) {
  form == Form::full ? fillTo<Full>(stores, state, out, n) : fillTo<Reduced>(stores, state, out, n);
}

}  // namespace tfl_rng::shr3cong_kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::shr3cong_kernel {

HWY_EXPORT(fillAny);

void fill(Form form, Stores stores, State& state, double* out, std::size_t n) {
  if (n >= kLeastDraws) return HWY_DYNAMIC_DISPATCH(fillAny)(form, stores, state, out, n);
  form == Form::full ? reference::fill(Full{}, state, out, n)
                     : reference::fill(Reduced{}, state, out, n);
}

}  // namespace tfl_rng::shr3cong_kernel
#endif
