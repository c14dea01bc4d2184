#include "rng/kernels/delivery.h"

#include <limits>
#include <type_traits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "rng/kernels/delivery.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace delivery::HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

constexpr std::size_t vectorMirror(double*, std::size_t) { return 0; }
constexpr std::size_t vectorFloats(double const*, bool, float*, std::size_t) { return 0; }
template <class T>
constexpr std::size_t vectorNormals(double const*, Change, T*, std::size_t) {
  return 0;
}
template <class T>
constexpr std::size_t vectorElements(double const*, Range const&, T*, std::size_t) {
  return 0;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// At most eight lanes: their conversion to bytes is as wide as a lane of a double.
constexpr hn::CappedTag<double, 8> f64;
using Doubles = hn::Vec<decltype(f64)>;
template <class T>
using Narrow = hn::Rebind<T, decltype(f64)>;

HWY_INLINE Doubles mirrorEach(Doubles u) {
  return hn::IfThenElse(hn::Gt(u, hn::Set(f64, kSmallestUniform)), hn::Sub(hn::Set(f64, 1), u),
                        hn::Set(f64, kLargestUniform));
}

// All of these convert the whole vectors of [0, n) and return the number of values done.

std::size_t vectorMirror(double* values, std::size_t n) {
  const std::size_t lanes = hn::Lanes(f64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes)
    hn::StoreU(mirrorEach(hn::LoadU(f64, values + i)), f64, values + i);
  return i;
}

std::size_t vectorFloats(double const* uniforms, bool mirrored, float* out, std::size_t n) {
  const Narrow<float> f32;
  const std::size_t lanes = hn::Lanes(f64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    Doubles u = hn::LoadU(f64, uniforms + i);
    if (mirrored) u = mirrorEach(u);
    const auto f = hn::Min(hn::DemoteTo(f32, u), hn::Set(f32, kLargestFloat));
    const auto isZero = hn::Eq(f, hn::Zero(f32));
    hn::StoreU(hn::IfThenElse(isZero, hn::Set(f32, kSmallestFloat), f), f32, out + i);
  }
  return i;
}

template <class T>
HWY_INLINE std::size_t vectorNormals(double const* normals, Change change, T* out, std::size_t n) {
  const auto sign = hn::Set(f64, change.negate ? -0.0 : 0.0);
  const std::size_t lanes = hn::Lanes(f64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    Doubles z = hn::Xor(hn::LoadU(f64, normals + i), sign);
    if (change.halfVariance) z = hn::Div(z, hn::Set(f64, kSqrt2));
    if constexpr (std::is_same_v<T, double>)
      hn::StoreU(z, f64, out + i);
    else
      hn::StoreU(hn::DemoteTo(Narrow<float>(), z), Narrow<float>(), out + i);
  }
  return i;
}

// Stores whole values as T by saturation.
template <class T>
HWY_INLINE void store(Doubles values, T* out) {
  if constexpr (std::is_same_v<T, double>) {
    hn::StoreU(values, f64, out);
  } else if constexpr (std::is_same_v<T, float>) {
    hn::StoreU(hn::DemoteTo(Narrow<float>(), values), Narrow<float>(), out);
  } else {
    const auto inRange =
        hn::Min(hn::Max(values, hn::Set(f64, double{std::numeric_limits<T>::min()})),
                hn::Set(f64, double{std::numeric_limits<T>::max()}));
    const Narrow<std::int32_t> i32;
    if constexpr (std::is_same_v<T, int>) {
      hn::StoreU(hn::DemoteTo(i32, inRange), i32, out);
    } else if constexpr (std::is_same_v<T, unsigned int>) {
      // Through the signed range, 2^31 lower.
      const auto lowered = hn::DemoteTo(i32, hn::Sub(inRange, hn::Set(f64, 0x1p31)));
      const auto back = hn::Xor(lowered, hn::Set(i32, std::numeric_limits<std::int32_t>::min()));
      hn::StoreU(hn::BitCast(Narrow<std::uint32_t>(), back), Narrow<std::uint32_t>(), out);
    } else {
      using Integer = std::conditional_t<std::is_same_v<T, bool>, unsigned char, T>;
      const Narrow<Integer> narrow;
      hn::StoreU(hn::DemoteTo(narrow, hn::DemoteTo(i32, inRange)), narrow,
                 reinterpret_cast<hn::TFromD<decltype(narrow)>*>(out));
    }
  }
}

// The whole part of values of [0, 2^53). `below31` tells that they are below 2^31: by way of
// integers it is the quicker way where no instruction rounds doubles.
HWY_INLINE Doubles truncate(Doubles values, bool below31) {
#if HWY_TARGET == HWY_SSSE3
  if (below31) return hn::PromoteTo(f64, hn::DemoteTo(Narrow<std::int32_t>(), values));
#else
  (void)below31;
#endif
  return hn::Trunc(values);
}

// Whether all of a range, and what lies next above it, is of int32.
bool fitsInt32(Range const& range) {
  constexpr double kLow = std::numeric_limits<std::int32_t>::min();
  constexpr double kHigh = std::numeric_limits<std::int32_t>::max();
  return range.count <= kHigh && range.lo >= kLow && range.lo + range.count <= kHigh;
}

// The whole vectors of elements of at most 32 bits, of a range that fits: in integers, which need
// few bounds.
template <class T>
HWY_INLINE std::size_t vectorIntegers(double const* uniforms, Range const& range, T* out,
                                      std::size_t n) {
  const Narrow<std::int32_t> i32;
  const Narrow<T> narrow;
  const auto count = hn::Set(f64, range.count);
  // k + lo, or count - 1 - k + lo.
  const double first = range.mirrored ? range.count - 1 + range.lo : range.lo;
  const auto from = hn::Set(i32, static_cast<std::int32_t>(first));
  const auto sign = hn::Set(i32, range.mirrored ? -1 : 0);
  const auto lowest = hn::Set(i32, std::numeric_limits<T>::min());
  const auto highest = hn::Set(i32, std::numeric_limits<T>::max());
  const std::size_t lanes = hn::Lanes(f64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const auto k = hn::DemoteTo(i32, hn::Mul(hn::LoadU(f64, uniforms + i), count));
    const auto values = hn::Add(hn::Sub(hn::Xor(k, sign), sign), from);
    if constexpr (sizeof(T) == sizeof(std::int32_t)) {
      hn::StoreU(values, narrow, out + i);
    } else {
      // Not every instruction that narrows to bytes saturates all of int32.
      const auto inRange = hn::Min(hn::Max(values, lowest), highest);
      hn::StoreU(hn::DemoteTo(narrow, inRange), narrow, out + i);
    }
  }
  return i;
}

template <class T>
HWY_INLINE std::size_t vectorElements(double const* uniforms, Range const& range, T* out,
                                      std::size_t n) {
  if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool> &&
                !std::is_same_v<T, unsigned int>) {
    if (fitsInt32(range)) return vectorIntegers(uniforms, range, out, n);
  }
  const bool below31 = range.count <= 0x1p31;
  const auto count = hn::Set(f64, range.count);
  const auto lo = hn::Set(f64, range.lo);
  const std::size_t lanes = hn::Lanes(f64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    Doubles k = truncate(hn::Mul(hn::LoadU(f64, uniforms + i), count), below31);
    if (range.mirrored) k = hn::Sub(hn::Sub(count, k), hn::Set(f64, 1));
    store(hn::Add(k, lo), out + i);
  }
  return i;
}

#endif

void mirrorAll(double* values, std::size_t n) {
  for (std::size_t i = vectorMirror(values, n); i < n; ++i) values[i] = mirror(values[i]);
}

template <class T>
HWY_INLINE void normals(double const* values, Change change, T* out, std::size_t n) {
  for (std::size_t i = vectorNormals(values, change, out, n); i < n; ++i)
    out[i] = static_cast<T>(changed(values[i], change));
}
void normalDoubles(double const* values, Change change, double* out, std::size_t n) {
  normals(values, change, out, n);
}
void normalFloats(double const* values, Change change, float* out, std::size_t n) {
  normals(values, change, out, n);
}

void floats(double const* uniforms, bool mirrored, float* out, std::size_t n) {
  for (std::size_t i = vectorFloats(uniforms, mirrored, out, n); i < n; ++i)
    out[i] = asFloat(mirrored ? mirror(uniforms[i]) : uniforms[i]);
}

#define DEFINE(T, classID)                                                                     \
  void elements_##classID(double const* uniforms, Range const& range, T* out, std::size_t n) { \
    for (std::size_t i = vectorElements(uniforms, range, out, n); i < n; ++i)                  \
      out[i] = storeAs<T>(valueFor(uniforms[i], range));                                       \
  }
RNG_INTEGER_ELEMENTS(DEFINE)
#undef DEFINE

}  // namespace delivery::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace delivery {

HWY_EXPORT(mirrorAll);
HWY_EXPORT(normalDoubles);
HWY_EXPORT(normalFloats);
HWY_EXPORT(floats);

void mirrorInPlace(double* values, std::size_t n) { HWY_DYNAMIC_DISPATCH(mirrorAll)(values, n); }

void toNormals(double const* normals, Change change, double* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(normalDoubles)(normals, change, out, n);
}
void toNormals(double const* normals, Change change, float* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(normalFloats)(normals, change, out, n);
}

void toFloats(double const* uniforms, bool mirrored, float* out, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(floats)(uniforms, mirrored, out, n);
}

#define DEFINE(T, classID)                                                             \
  HWY_EXPORT(elements_##classID);                                                      \
  void toElements(double const* uniforms, Range const& range, T* out, std::size_t n) { \
    HWY_DYNAMIC_DISPATCH(elements_##classID)(uniforms, range, out, n);                 \
  }
RNG_INTEGER_ELEMENTS(DEFINE)
#undef DEFINE

}  // namespace delivery
#endif
