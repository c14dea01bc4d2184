#include "tfl_rng/kernels/mrg32k3a.h"

#include <hwy/cache_control.h>

#include <algorithm>

#include "tfl_rng/kernels/mrg32k3a_reference.h"
#include "tfl_rng/modular.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/mrg32k3a.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#ifndef TFL_RNG_KERNELS_MRG32K3A_TABLES
#define TFL_RNG_KERNELS_MRG32K3A_TABLES
namespace tfl_rng::mrg32k3a_steps {

// On every instruction set sixteen lanes share a block, one after the other in memory, as many of
// them at a time as hide the latency of a step.
constexpr std::size_t kLanes = 16;

// Draws of a lane in a block. The shorter ones serve what is left of a request.
constexpr std::size_t kLongStretch = 64;
constexpr std::size_t kMediumStretch = 16;
constexpr std::size_t kShortStretch = 8;

// For fewer draws than this the scalar form is the faster one.
constexpr std::size_t kLeastDraws = 36;

// One number for each lane.
using Row = std::array<double, kLanes>;

// Weights of the three terms before a block in the three terms before each lane's stretch.
template <std::uint64_t m>
constexpr auto makeWeights(typename Modular3<m>::Matrix const& step, std::size_t steps) {
  using Mod = Modular3<m>;
  typename Mod::Matrix stretch = step;
  for (std::size_t i = 1; i < steps; ++i) stretch = Mod::multiply(step, stretch);
  typename Mod::Matrix power = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  std::array<std::array<Row, 3>, 3> weights{};
  for (std::size_t lane = 0; lane < kLanes; ++lane, power = Mod::multiply(power, stretch))
    for (std::size_t i = 0; i < 3; ++i)
      for (std::size_t j = 0; j < 3; ++j) weights[i][j][lane] = power[i][j];
  return weights;
}

template <std::size_t steps>
alignas(64) constexpr auto kWeights1 = makeWeights<kM1>(kStep1, steps);
template <std::size_t steps>
alignas(64) constexpr auto kWeights2 = makeWeights<kM2>(kStep2, steps);

}  // namespace tfl_rng::mrg32k3a_steps
#endif

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::mrg32k3a_steps::HWY_NAMESPACE {

// Without an instruction that rounds doubles the integers of the scalar form are the faster ones.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_SSSE3

template <class Precision>
void fillAll(Words& words, double* out, std::size_t n) {
  reference::fill(Precision{}, words, out, n);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<double, 8> f64;
using Doubles = hn::Vec<decltype(f64)>;

constexpr std::size_t kVectorLanes = hn::MaxLanes(f64);
constexpr std::size_t kInFlight = std::min<std::size_t>(4, kLanes / kVectorLanes);

// Everything up to the output of a step is computed in doubles that hold integers of at most 53
// bits, and is exact but for the quotients. Those are up to 2^20.5, and rounding moves them by less
// than 1/m: the floor is one off at most next to a multiple of m, and the remainder then -1 or m.

// In [-1, m].
HWY_INLINE Doubles remainder(Doubles value, double m) {
  const Doubles quotient = hn::Floor(hn::Mul(value, hn::Set(f64, 1 / m)));
  return hn::Sub(value, hn::Mul(quotient, hn::Set(f64, m)));
}

// Around 0, by m/2 + 1 at most.
HWY_INLINE Doubles centredRemainder(Doubles value, double m) {
  const Doubles quotient = hn::Round(hn::Mul(value, hn::Set(f64, 1 / m)));
  return hn::Sub(value, hn::Mul(quotient, hn::Set(f64, m)));
}

// The value, plus m where it is negative. No zero is a negative one here. Read as unsigned integers
// the negative numbers are larger than all others.
HWY_INLINE Doubles addToNegative(Doubles value, double m) {
  const Doubles sum = hn::Add(value, hn::Set(f64, m));
#if HWY_TARGET <= HWY_AVX3
  const hn::RebindToUnsigned<decltype(f64)> u64;
  return hn::BitCast(f64, hn::Min(hn::BitCast(u64, value), hn::BitCast(u64, sum)));
#else
  return hn::IfThenElse(hn::Lt(value, hn::Zero(f64)), sum, value);
#endif
}

// The value, less m unless it is negative. Read as signed integers negative numbers are below all
// others, and the closer to 0 the lower.
HWY_INLINE Doubles subtractUnlessNegative(Doubles value, double m) {
  const Doubles difference = hn::Sub(value, hn::Set(f64, m));
#if HWY_TARGET <= HWY_AVX3
  const hn::RebindToSigned<decltype(f64)> i64;
  return hn::BitCast(f64, hn::Min(hn::BitCast(i64, value), hn::BitCast(i64, difference)));
#else
  return hn::IfThenElse(hn::Lt(value, hn::Zero(f64)), value, difference);
#endif
}

// The last three terms of a vector of lanes, from -1 to m1 and from -m2/2 - 1 to m2.
struct Terms {
  Doubles x[3], y[3];

  // Not left to the compiler: g++ would make it without the target's instructions.
  HWY_INLINE Terms() {}

  HWY_INLINE Doubles step() {
    const Doubles x3 =
        hn::Sub(hn::Mul(x[1], hn::Set(f64, kA12)), hn::Mul(x[0], hn::Set(f64, kA13n)));
    const Doubles y3 =
        hn::Sub(hn::Mul(y[2], hn::Set(f64, kA21)), hn::Mul(y[0], hn::Set(f64, kA23n)));
    x[0] = x[1];
    x[1] = x[2];
    x[2] = remainder(x3, kM1);
    y[0] = y[1];
    y[1] = y[2];
    y[2] = centredRemainder(y3, kM2);
    // A -1 or m1 instead of m1 - 1 or 0 as x leads to the same z of 1 to m1.
    const Doubles difference = hn::Sub(addToNegative(y[2], kM2), x[2]);
    const Doubles minusZ = subtractUnlessNegative(difference, kM1);
    return hn::Mul(minusZ, hn::Set(f64, -kNorm));
  }

  HWY_INLINE Doubles draw(Reduced) { return step(); }

  HWY_INLINE Doubles draw(Full) {
    const Doubles first = step();
    const Doubles sum = hn::Add(first, hn::Mul(step(), hn::Set(f64, 0x1p-24)));
    // Nothing but 0 is below 2^-53.
    const Doubles one = hn::Set(f64, 1.0);
    return hn::Max(hn::IfThenElse(hn::Ge(sum, one), hn::Sub(sum, one), sum),
                   hn::Set(f64, kSmallestUniform));
  }
};

// Stores consecutive draws of a vector of lanes, those of each lane `stride` after those of the one
// before.
template <std::size_t lanes>
HWY_INLINE void storeTransposed(Doubles const (&draws)[lanes], double* out, std::size_t stride) {
  HWY_UNROLL(2)
  for (std::size_t odd = 0; odd < 2; ++odd, out += stride) {
    // Two draws of every other lane.
    Doubles pairs[lanes / 2];
    HWY_UNROLL(4)
    for (std::size_t i = 0; i < lanes / 2; ++i) {
      Doubles const* const d = draws + 2 * i;
      pairs[i] = odd ? hn::InterleaveUpper(f64, d[0], d[1]) : hn::InterleaveLower(d[0], d[1]);
    }
    if constexpr (lanes == 2) {
      hn::StoreU(pairs[0], f64, out);
    } else if constexpr (lanes == 4) {
      hn::StoreU(hn::ConcatLowerLower(f64, pairs[1], pairs[0]), f64, out);
      hn::StoreU(hn::ConcatUpperUpper(f64, pairs[1], pairs[0]), f64, out + 2 * stride);
    } else {
      static_assert(lanes == 8);
      const auto store = [&](Doubles even, Doubles uneven, double* to) HWY_ATTR {
        hn::StoreU(hn::OddEvenBlocks(hn::SwapAdjacentBlocks(uneven), even), f64, to);
        hn::StoreU(hn::OddEvenBlocks(uneven, hn::SwapAdjacentBlocks(even)), f64, to + 2 * stride);
      };
      store(hn::ConcatLowerLower(f64, pairs[2], pairs[0]),
            hn::ConcatLowerLower(f64, pairs[3], pairs[1]), out);
      store(hn::ConcatUpperUpper(f64, pairs[2], pairs[0]),
            hn::ConcatUpperUpper(f64, pairs[3], pairs[1]), out + 4 * stride);
    }
  }
}

// A block of as many draws of each lane.
template <class Precision, std::size_t stretch>
class Block {
 public:
  static constexpr std::size_t kDraws = kLanes * stretch;

  HWY_INLINE explicit Block(Words const& words) {
    constexpr std::size_t steps = stretch * Precision::kStepsEach;
    start(&words[0], kWeights1<steps>, kM1, terms_);
    start(&words[3], kWeights2<steps>, kM2, terms_ + 3);
  }

  // All draws; the words after them.
  HWY_INLINE Words run(double* out) {
    runLanes<false>(out, 0);
    return words(terms_, kLanes - 1);
  }

  // All draws; the words after the first n, fewer than all.
  HWY_INLINE Words runPart(double* out, std::size_t n) {
    runLanes<true>(out, n % stretch);
    return words(kept_, n / stretch);
  }

 private:
  // Of a lane.
  HWY_INLINE static Words words(Row const* terms, std::size_t lane) {
    Words result;
    for (std::size_t i = 0; i < 6; ++i) {
      const double m = i < 3 ? kM1 : kM2;
      const double term = terms[i][lane];
      result[i] = static_cast<std::uint32_t>(term < 0 ? term + m : term < m ? term : term - m);
    }
    return result;
  }

  // Words go in as halves, and sums are below 2^51: 3 * 2^48 and once more 2^16 * m.
  HWY_INLINE static void start(std::uint32_t const* words,
                               std::array<std::array<Row, 3>, 3> const& weights, double m,
                               Row* terms) {
    for (std::size_t lane = 0; lane < kLanes; lane += kVectorLanes) {
      HWY_UNROLL(3)
      for (std::size_t i = 0; i < 3; ++i) {
        Doubles high = hn::Zero(f64), low = hn::Zero(f64);
        HWY_UNROLL(3)
        for (std::size_t j = 0; j < 3; ++j) {
          const Doubles weight = hn::LoadU(f64, &weights[i][j][lane]);
          high = hn::Add(high, hn::Mul(weight, hn::Set(f64, words[j] >> 16)));
          low = hn::Add(low, hn::Mul(weight, hn::Set(f64, words[j] & 0xffff)));
        }
        const Doubles all = hn::Add(hn::Mul(remainder(high, m), hn::Set(f64, 0x1p16)), low);
        hn::StoreU(remainder(all, m), f64, &terms[i][lane]);
      }
    }
  }

  // The terms of some lanes, between memory and registers.
  HWY_INLINE static void load(Row const* rows, std::size_t lane, Terms* terms) {
    for (std::size_t v = 0; v < kInFlight; ++v, lane += kVectorLanes)
      for (std::size_t i = 0; i < 3; ++i) {
        terms[v].x[i] = hn::LoadU(f64, &rows[i][lane]);
        terms[v].y[i] = hn::LoadU(f64, &rows[3 + i][lane]);
      }
  }
  HWY_INLINE static void store(Terms const* terms, Row* rows, std::size_t lane) {
    for (std::size_t v = 0; v < kInFlight; ++v, lane += kVectorLanes)
      for (std::size_t i = 0; i < 3; ++i) {
        hn::StoreU(terms[v].x[i], f64, &rows[i][lane]);
        hn::StoreU(terms[v].y[i], f64, &rows[3 + i][lane]);
      }
  }

  // Runs all lanes; with `keeps`, what their terms are after `draws` draws is kept.
  template <bool keeps>
  HWY_INLINE void runLanes(double* out, std::size_t draws) {
    constexpr std::size_t together = kInFlight * kVectorLanes;
    for (std::size_t lane = 0; lane < kLanes; lane += together, out += together * stretch) {
      Terms terms[kInFlight];
      load(terms_, lane, terms);
      for (std::size_t at = 0; at < stretch; at += kVectorLanes) {
        Doubles drawn[kInFlight][kVectorLanes];
        HWY_UNROLL(8)
        for (std::size_t i = 0; i < kVectorLanes; ++i) {
          if (keeps && at + i == draws) store(terms, kept_, lane);
          HWY_UNROLL(kInFlight)
          for (std::size_t v = 0; v < kInFlight; ++v) drawn[v][i] = terms[v].draw(Precision{});
        }
        // The processor does not see by itself that the next block takes up as many places.
        if constexpr (stretch == kLongStretch) {
          for (std::size_t of = 0; of < together; ++of)
            hwy::Prefetch(out + kDraws + of * stretch + at);
        }
        HWY_UNROLL(kInFlight)
        for (std::size_t v = 0; v < kInFlight; ++v)
          storeTransposed(drawn[v], out + v * kVectorLanes * stretch + at, stretch);
      }
      store(terms, terms_, lane);
    }
  }

  alignas(64) Row terms_[6];  // the last x and y of every lane
  alignas(64) Row kept_[6];
};

// The first n draws of a block, fewer than all.
template <class Block>
HWY_INLINE void fillPart(Words& words, double* out, std::size_t n) {
  double draws[Block::kDraws];
  words = Block(words).runPart(draws, n);
  std::copy_n(draws, n, out);
}

template <class Precision>
void fillAll(Words& words, double* out, std::size_t n) {
  using Long = Block<Precision, kLongStretch>;
  using Medium = Block<Precision, kMediumStretch>;
  using Short = Block<Precision, kShortStretch>;
  const auto runBlock = [&](auto&& block) HWY_ATTR {
    words = block.run(out);
    out += block.kDraws;
    n -= block.kDraws;
  };
  while (n >= Long::kDraws) runBlock(Long(words));
  while (n >= Medium::kDraws) runBlock(Medium(words));
  if (n >= Short::kDraws + kLeastDraws) return fillPart<Medium>(words, out, n);
  if (n >= Short::kDraws) runBlock(Short(words));
  if (n >= kLeastDraws) return fillPart<Short>(words, out, n);
  reference::fill(Precision{}, words, out, n);
}

#endif

void fillAny(Form form, Words& words, double* out, std::size_t n) {
  form == Form::full ? fillAll<Full>(words, out, n) : fillAll<Reduced>(words, out, n);
}

}  // namespace tfl_rng::mrg32k3a_steps::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::mrg32k3a_steps {

HWY_EXPORT(fillAny);

void fill(Form form, Words& words, double* out, std::size_t n) {
  if (n >= kLeastDraws) return HWY_DYNAMIC_DISPATCH(fillAny)(form, words, out, n);
  form == Form::full ? reference::fill(Full{}, words, out, n)
                     : reference::fill(Reduced{}, words, out, n);
}

}  // namespace tfl_rng::mrg32k3a_steps
#endif
