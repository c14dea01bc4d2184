#include "tfl_rng/kernels/threefry4x64.h"

#include <algorithm>

#include "tfl_rng/kernels/threefry4x64_reference.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/threefry4x64.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/open52-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::threefry::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

void fillRun(Block const& counter, Block const& key, double* out, std::size_t count) {
  reference::fillBlocks(counter, key, out, count);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::ScalableTag<std::uint64_t> u64;
constexpr hn::RebindToFloat<decltype(u64)> f64;
using Words = hn::Vec<decltype(u64)>;

// Vectors that go through the rounds side by side, to hide the latency of each step.
constexpr int kInFlight = 4;

template <int vectors>
struct Blocks {
  Words x[4][vectors];

  // Not left to the compiler: g++ would make it without the target's instructions.
  HWY_INLINE Blocks() {}
};

template <int rotation, int vectors>
HWY_INLINE void mix(Words (&a)[vectors], Words (&b)[vectors]) {
  HWY_UNROLL(8)
  for (int v = 0; v < vectors; ++v) {
    a[v] = hn::Add(a[v], b[v]);
    b[v] = hn::Xor(hn::RotateRight<64 - rotation>(b[v]), a[v]);
  }
}

// The rounds first to first + 3. The second words trade places from round to round.
template <int first, int vectors>
HWY_INLINE void fourRounds(Blocks<vectors>& blocks) {
  auto& x = blocks.x;
  mix<kRotations[first][0]>(x[0], x[1]), mix<kRotations[first][1]>(x[2], x[3]);
  mix<kRotations[first + 1][0]>(x[0], x[3]), mix<kRotations[first + 1][1]>(x[2], x[1]);
  mix<kRotations[first + 2][0]>(x[0], x[1]), mix<kRotations[first + 2][1]>(x[2], x[3]);
  mix<kRotations[first + 3][0]>(x[0], x[3]), mix<kRotations[first + 3][1]>(x[2], x[1]);
}

template <int vectors>
HWY_INLINE void inject(Blocks<vectors>& blocks, Block const& key) {
  HWY_UNROLL(4)
  for (int word = 0; word < 4; ++word) {
    HWY_UNROLL(8)
    for (int v = 0; v < vectors; ++v) {
      blocks.x[word][v] = hn::Add(blocks.x[word][v], hn::Set(u64, key[word]));
    }
  }
}

// The draws of `vectors` times as many blocks as lanes, in the order of memory. The first have the
// lowest counter words `first`; the upper ones are those of `counter`.
template <int vectors>
HWY_INLINE void store(Words first, Block const& counter, Injections const& keys, double* out) {
  Blocks<vectors> blocks;
  HWY_UNROLL(8)
  for (int v = 0; v < vectors; ++v) {
    blocks.x[0][v] = hn::Add(first, hn::Set(u64, v * hn::Lanes(u64)));
    blocks.x[1][v] = hn::Set(u64, counter[1]);
    blocks.x[2][v] = hn::Set(u64, counter[2]);
    blocks.x[3][v] = hn::Set(u64, counter[3]);
  }
  inject(blocks, keys[0]);
  fourRounds<0>(blocks);
  inject(blocks, keys[1]);
  fourRounds<4>(blocks);
  inject(blocks, keys[2]);
  fourRounds<0>(blocks);
  inject(blocks, keys[3]);
  fourRounds<4>(blocks);
  inject(blocks, keys[4]);
  fourRounds<0>(blocks);
  inject(blocks, keys[5]);
  auto const& x = blocks.x;
  HWY_UNROLL(8)
  for (int v = 0; v < vectors; ++v, out += kDraws * hn::Lanes(u64)) {
    using tfl_rng::HWY_NAMESPACE::open52;
    hn::StoreInterleaved4(open52(x[0][v]), open52(x[1][v]), open52(x[2][v]), open52(x[3][v]), f64,
                          out);
  }
}

// Blocks that share the upper words of their counters.
void fillRun(Block const& counter, Block const& key, double* out, std::size_t count) {
  const std::size_t lanes = hn::Lanes(u64);
  const std::size_t step = kInFlight * lanes;
  const Injections keys = injections(key);
  Words x0 = hn::Iota(u64, counter[0]);
  for (; count >= step; count -= step, out += step * kDraws) {
    store<kInFlight>(x0, counter, keys, out);
    x0 = hn::Add(x0, hn::Set(u64, step));
  }
  if (count == 0) return;
  HWY_ALIGN double rest[kInFlight * kDraws * hn::MaxLanes(u64)];
  static_assert(kInFlight == 4);
  if (count <= lanes) {
    store<1>(x0, counter, keys, rest);
  } else if (count <= 2 * lanes) {
    store<2>(x0, counter, keys, rest);
  } else if (count <= 3 * lanes) {
    store<3>(x0, counter, keys, rest);
  } else {
    store<4>(x0, counter, keys, rest);
  }
  std::copy_n(rest, count * kDraws, out);
}

#endif

}  // namespace tfl_rng::threefry::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng::threefry {

HWY_EXPORT(fillRun);

void fillBlocks(Block const& counter, Block const& key, double* out, std::size_t count) {
  if (count == 1) return reference::fillBlocks(counter, key, out, count);  // the quicker way
  // Where the lowest word wraps, a new run begins.
  const std::uint64_t left = ~counter[0];
  const std::size_t run = count <= left ? count : static_cast<std::size_t>(left + 1);
  HWY_DYNAMIC_DISPATCH(fillRun)(counter, key, out, run);
  if (run == count) return;
  HWY_DYNAMIC_DISPATCH(fillRun)(plus(counter, run), key, out + run * kDraws, count - run);
}

}  // namespace tfl_rng::threefry
#endif
