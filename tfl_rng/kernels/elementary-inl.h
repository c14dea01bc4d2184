// The vector form of pinnedLog: operation by operation what elementary.cpp does, and so the same
// bits. Included once for each instruction set.

#if defined(TFL_RNG_KERNELS_ELEMENTARY_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TFL_RNG_KERNELS_ELEMENTARY_INL_H_
#undef TFL_RNG_KERNELS_ELEMENTARY_INL_H_
#else
#define TFL_RNG_KERNELS_ELEMENTARY_INL_H_
#endif

#include <hwy/highway.h>

#include "tfl_rng/elementary_tables.h"

HWY_BEFORE_NAMESPACE();
namespace tfl_rng::elementary::HWY_NAMESPACE {

#if HWY_TARGET != HWY_SCALAR

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<double, 8> f64;
constexpr hn::RebindToSigned<decltype(f64)> i64;
using Doubles = hn::Vec<decltype(f64)>;
using Longs = hn::Vec<decltype(i64)>;

// table[index] of 16 doubles; permutations where two vectors hold the table.
HWY_INLINE Doubles lookUp(double const* table, Longs index) {
  if (hn::Lanes(f64) < 8) return hn::GatherIndex(f64, table, index);
  const auto lanes = hn::IndicesFromVec(f64, hn::And(index, hn::Set(i64, 7)));
  const auto upper = hn::RebindMask(f64, hn::TestBit(index, hn::Set(i64, 8)));
  return hn::IfThenElse(upper, hn::TableLookupLanes(hn::LoadU(f64, table + 8), lanes),
                        hn::TableLookupLanes(hn::LoadU(f64, table), lanes));
}

HWY_INLINE Doubles log(Doubles x) {
  const auto set = [](double value) HWY_ATTR { return hn::Set(f64, value); };
  const Longs bits = hn::BitCast(i64, x);
  const Longs fromStart = hn::Sub(bits, hn::Set(i64, kLogStartBits));
  const Longs i = hn::And(hn::ShiftRight<48>(fromStart), hn::Set(i64, 15));
  const Doubles k = hn::ConvertTo(f64, hn::ShiftRight<52>(fromStart));
  const Longs mBits = hn::Sub(bits, hn::And(fromStart, hn::Set(i64, kExponentBits)));
  const Doubles m = hn::BitCast(f64, mBits);

  const Doubles mHigh = hn::BitCast(f64, hn::And(mBits, hn::Set(i64, kHighHalf)));
  const Doubles c = lookUp(kLogTable.c, i);
  const Doubles high = hn::Sub(hn::Mul(mHigh, c), set(1));
  const Doubles low = hn::Mul(hn::Sub(m, mHigh), c);
  const Doubles r = hn::Add(high, low);
  const Doubles rError = hn::Sub(low, hn::Sub(r, high));

  const Doubles base = hn::Add(hn::Mul(k, set(kLn2High)), lookUp(kLogTable.high, i));
  const Doubles sum = hn::Add(base, r);
  const Doubles sumError = hn::Sub(r, hn::Sub(sum, base));

  const Doubles r2 = hn::Mul(r, r);
  const Doubles r4 = hn::Mul(r2, r2);
  const Doubles q01 = hn::Sub(set(1.0 / 3), hn::Mul(r, set(1.0 / 4)));
  const Doubles q23 = hn::Sub(set(1.0 / 5), hn::Mul(r, set(1.0 / 6)));
  const Doubles q45 = hn::Sub(set(1.0 / 7), hn::Mul(r, set(1.0 / 8)));
  const Doubles q67 = hn::Sub(set(1.0 / 9), hn::Mul(r, set(1.0 / 10)));
  const Doubles q89 = hn::Sub(set(1.0 / 11), hn::Mul(r, set(1.0 / 12)));
  const Doubles q0123 = hn::Add(q01, hn::Mul(r2, q23));
  const Doubles q4567 = hn::Add(q45, hn::Mul(r2, q67));
  const Doubles q = hn::Add(q0123, hn::Mul(r4, hn::Add(q4567, hn::Mul(r4, q89))));

  const Doubles tail = hn::Add(hn::Mul(k, set(kLn2Low)), lookUp(kLogTable.low, i));
  const Doubles errors = hn::Add(hn::Add(sumError, rError), tail);
  const Doubles small = hn::Add(hn::Sub(errors, hn::Mul(set(0.5), r2)), hn::Mul(hn::Mul(r, r2), q));
  return hn::Add(sum, small);
}

#endif

}  // namespace tfl_rng::elementary::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
