#include "tfl_rng/polar.h"

#include <algorithm>
#include <cmath>

#include "tfl_rng/elementary.h"
#include "tfl_rng/float_environment.h"
#include "tfl_rng/kernels/lanes_of.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "tfl_rng/kernels/polar.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "tfl_rng/kernels/elementary-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::elementary::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

std::size_t polar(double const* uniforms, std::size_t pairs, double* out) {
  return tfl_rng::reference::polarNormals(uniforms, pairs, out);
}

#else

constexpr hn::RebindToUnsigned<decltype(f64)> u64;

// Accepted points wait here, so that their logarithms fill vectors.
constexpr std::size_t kBlock = 256;
struct Accepted {
  HWY_ALIGN double x[kBlock + hn::MaxLanes(f64)];
  HWY_ALIGN double y[kBlock + hn::MaxLanes(f64)];
};

HWY_INLINE Doubles squaredRadius(Doubles x, Doubles y) {
  return hn::Add(hn::Mul(x, x), hn::Mul(y, y));
}

// Of a vector's points those that `mask` takes, appended.
template <class Mask>
HWY_INLINE std::size_t append(Accepted& to, std::size_t size, Mask mask, Doubles x, Doubles y) {
#if HWY_TARGET <= HWY_AVX2
  // Not by the library: g++ 12 copies its table for each use.
  std::uint8_t bits[8];
  hn::StoreMaskBits(f64, mask, bits);
  const auto bytes = hn::Set(u64, kernels::kLanesOf[bits[0]]);
  const auto lanes = hn::Shr(bytes, hn::ShiftLeft<3>(hn::Iota(u64, 0)));
  const auto order = hn::IndicesFromVec(f64, hn::And(lanes, hn::Set(u64, 7)));
  hn::StoreU(hn::TableLookupLanes(x, order), f64, to.x + size);
  hn::StoreU(hn::TableLookupLanes(y, order), f64, to.y + size);
  return size + hn::CountTrue(f64, mask);
#else
  // One by one, each over the one before where that is not taken.
  HWY_ALIGN double xs[hn::MaxLanes(f64)], ys[hn::MaxLanes(f64)];
  HWY_ALIGN std::int64_t taken[hn::MaxLanes(f64)];
  hn::Store(x, f64, xs);
  hn::Store(y, f64, ys);
  hn::Store(hn::BitCast(i64, hn::VecFromMask(f64, mask)), i64, taken);
  for (std::size_t lane = 0; lane < hn::Lanes(f64); ++lane) {
    to.x[size] = xs[lane];
    to.y[size] = ys[lane];
    size -= static_cast<std::size_t>(taken[lane]);
  }
  return size;
#endif
}

std::size_t polar(double const* uniforms, std::size_t pairs, double* out) {
  const std::size_t lanes = hn::Lanes(f64);
  const auto one = hn::Set(f64, 1);
  double* const begin = out;
  Accepted points;
  while (pairs > 0) {
    const std::size_t block = std::min(pairs, kBlock);
    std::size_t size = 0;
    std::size_t i = 0;
    for (; i + lanes <= block; i += lanes) {
      Doubles u, v;
      hn::LoadInterleaved2(f64, uniforms + 2 * i, u, v);
      const Doubles x = hn::Sub(hn::Add(u, u), one);
      const Doubles y = hn::Sub(hn::Add(v, v), one);
      const Doubles s = squaredRadius(x, y);
      const auto accepted = hn::And(hn::Le(s, one), hn::Ne(s, hn::Zero(f64)));
      size = append(points, size, accepted, x, y);
    }
    for (; i < block; ++i) {
      const PolarPoint point(uniforms[2 * i], uniforms[2 * i + 1]);
      points.x[size] = point.x;
      points.y[size] = point.y;
      size += point.isAccepted();
    }
    uniforms += 2 * block;
    pairs -= block;
    for (i = 0; i < size; i += lanes) {
      if (i + lanes > size) {  // lanes that nobody reads
        hn::StoreU(one, f64, points.x + size);
        hn::StoreU(one, f64, points.y + size);
      }
      const Doubles x = hn::Load(f64, points.x + i);
      const Doubles y = hn::Load(f64, points.y + i);
      const Doubles s = squaredRadius(x, y);
      const Doubles m = hn::Sqrt(hn::Div(hn::Mul(hn::Set(f64, -2), log(s)), s));
      const Doubles first = hn::Mul(x, m);
      const Doubles second = hn::Mul(y, m);
      if (i + lanes <= size) {
        hn::StoreInterleaved2(first, second, f64, out + 2 * i);
      } else {
        HWY_ALIGN double last[2 * hn::MaxLanes(f64)];
        hn::StoreInterleaved2(first, second, f64, last);
        std::copy_n(last, 2 * (size - i), out + 2 * i);
      }
    }
    out += 2 * size;
  }
  return static_cast<std::size_t>(out - begin) / 2;
}

#endif

}  // namespace tfl_rng::elementary::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tfl_rng {
namespace elementary {
HWY_EXPORT(polar);
}

std::pair<double, double> PolarPoint::normals() const noexcept {
  const double m = std::sqrt(-2 * pinnedLog(s) / s);
  return {x * m, y * m};
}

std::size_t polarNormals(double const* uniforms, std::size_t pairs, double* out) noexcept {
  const FloatEnvironment environment;
  using namespace elementary;
  return HWY_DYNAMIC_DISPATCH(polar)(uniforms, pairs, out);
}

}  // namespace tfl_rng
#endif
