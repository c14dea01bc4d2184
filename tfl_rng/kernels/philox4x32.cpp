#include "tfl_rng/kernels/philox4x32.h"

#include <algorithm>

#include "tfl_rng/kernels/philox4x32_reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/philox4x32.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/open52-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::philox::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void fillRun(uint128 counter, std::uint64_t key, double* out, std::size_t count) {
  reference::fillBlocks(counter, key, out, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::ScalableTag<std::uint64_t> u64;
constexpr hn::RepartitionToNarrow<decltype(u64)> u32;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Longs = hn::Vec<decltype(u64)>;  // a 32-bit word in each lane, anything above it

// Vectors that go through the rounds side by side, to hide the latency of each step.
constexpr int kInFlight = 4;

// Full product of the low words.
HWY_INLINE Longs multiply(Longs word, std::uint32_t multiplier) {
  return hn::MulEven(hn::BitCast(u32, word), hn::Set(u32, multiplier));
}

HWY_INLINE Longs high(Longs product) { return hn::ShiftRight<32>(product); }

// The draw of a low and a high word.
HWY_INLINE hn::Vec<decltype(f64)> draw(Longs low, Longs highWord) {
  return tfl_rng::HWY_NAMESPACE::open52(hn::BitCast(
      u64, hn::OddEven(hn::BitCast(u32, hn::ShiftLeft<32>(highWord)), hn::BitCast(u32, low))));
}

// What all blocks of a run share: it does not cross a multiple of 2^32, so that the upper words of
// the counter stand still, and with them half of the first two rounds.
struct Run {
  std::uint64_t k0[kRounds];  // 32-bit words, as wide as the lanes
  std::uint64_t k1[kRounds];
  std::uint64_t c1;  // after the first round
  std::uint64_t p0;  // product of the second round

  Run(uint128 counter, std::uint64_t key) {
    for (std::uint32_t round = 0; round < kRounds; ++round) {
      k0[round] = static_cast<std::uint32_t>(key) + round * kWeyl0;
      k1[round] = static_cast<std::uint32_t>(key >> 32) + round * kWeyl1;
    }
    const reference::Words c = reference::split(counter);
    const std::uint64_t p1 = std::uint64_t{kMultiplier1} * c[2];
    p0 = kMultiplier0 * (p1 >> 32 ^ c[1] ^ k0[0]);
    c1 = static_cast<std::uint32_t>(p1);
    k1[0] ^= c[3];
  }

  // The draws of `vectors` times as many blocks as lanes, in the order of memory. The first have
  // the lowest counter words `first`, ordered as blockOrder says.
  template <int vectors>
  HWY_INLINE void store(Longs first, double* out) const {
    Longs c0[vectors], c1v[vectors], c2[vectors], c3v[vectors];
    HWY_UNROLL(8)
    for (int v = 0; v < vectors; ++v) {
      const Longs product0 =
          multiply(hn::Add(first, hn::Set(u64, v * hn::Lanes(u64))), kMultiplier0);
      c1v[v] = multiply(hn::Xor(high(product0), hn::Set(u64, k1[0])), kMultiplier1);
      c0[v] = hn::Xor(high(c1v[v]), hn::Set(u64, c1 ^ k0[1]));
      c2[v] = hn::Xor(product0, hn::Set(u64, p0 >> 32 ^ k1[1]));
      c3v[v] = hn::Set(u64, p0);
    }
    HWY_UNROLL(8)
    for (int round = 2; round < kRounds; ++round) {
      HWY_UNROLL(8)
      for (int v = 0; v < vectors; ++v) {
        const Longs product0 = multiply(c0[v], kMultiplier0);
        const Longs product1 = multiply(c2[v], kMultiplier1);
        c0[v] = hn::Xor3(high(product1), c1v[v], hn::Set(u64, k0[round]));
        c2[v] = hn::Xor3(high(product0), c3v[v], hn::Set(u64, k1[round]));
        c1v[v] = product1;
        c3v[v] = product0;
      }
    }
    HWY_UNROLL(8)
    for (int v = 0; v < vectors; ++v, out += kDraws * hn::Lanes(u64)) {
      const auto even = draw(c0[v], c1v[v]);
      const auto odd = draw(c2[v], c3v[v]);
      hn::StoreU(hn::InterleaveLower(f64, even, odd), f64, out);
      hn::StoreU(hn::InterleaveUpper(f64, even, odd), f64, out + hn::Lanes(f64));
    }
  }
};

// Which of as many blocks each lane holds: interleaving takes even lanes first, then odd ones.
HWY_INLINE Longs blockOrder() {
  const Longs lane = hn::Iota(u64, 0);
  const Longs odd = hn::And(lane, hn::Set(u64, 1));
  return hn::Add(hn::ShiftRight<1>(lane),
                 hn::And(hn::Sub(hn::Zero(u64), odd), hn::Set(u64, hn::Lanes(u64) / 2)));
}

// Blocks of one run.
void fillRun(uint128 counter, std::uint64_t key, double* out, std::size_t count) {
  const std::size_t lanes = hn::Lanes(u64);
  const std::size_t step = kInFlight * lanes;
  const Run run(counter, key);
  Longs c0 = hn::Add(blockOrder(), hn::Set(u64, static_cast<std::uint32_t>(counter)));
  for (; count >= step; count -= step, out += step * kDraws) {
    run.store<kInFlight>(c0, out);
    c0 = hn::Add(c0, hn::Set(u64, step));
  }
  if (count == 0) return;
  HWY_ALIGN double rest[kInFlight * kDraws * hn::MaxLanes(u64)];
  static_assert(kInFlight == 4);
  if (count <= lanes) {
    run.store<1>(c0, rest);
  } else if (count <= 2 * lanes) {
    run.store<2>(c0, rest);
  } else if (count <= 3 * lanes) {
    run.store<3>(c0, rest);
  } else {
    run.store<4>(c0, rest);
  }
  std::copy_n(rest, count * kDraws, out);
}

#endif

}  // namespace tfl_rng::philox::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::philox {

HWY_EXPORT(fillRun);

void fillBlocks(uint128 counter, std::uint64_t key, double* out, std::size_t count) {
  if (count == 1) return reference::fillBlocks(counter, key, out, count);  // the quicker way
  while (count > 0) {
    const std::uint64_t left = (std::uint64_t{1} << 32) - static_cast<std::uint32_t>(counter);
    const auto run = static_cast<std::size_t>(std::min<std::uint64_t>(count, left));
    HWY_DYNAMIC_DISPATCH(fillRun)(counter, key, out, run);
    counter += run;
    out += run * kDraws;
    count -= run;
  }
}

}  // namespace tfl_rng::philox
#endif
