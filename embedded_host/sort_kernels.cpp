#include "embedded_host/sort_kernels.h"

#include <array>
#include <bit>
#include <limits>
#include <utility>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "embedded_host/sort_kernels.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace embedded_host::sort_kernels::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr hn::CappedTag<std::int64_t, kGroup> i64;
constexpr hn::RebindToFloat<decltype(i64)> f64;
using Longs = hn::Vec<decltype(i64)>;

// Calls `step(i)` for the first number of each whole vector, and `last(i)` for each number left.
template <class Step, class Last>
HWY_INLINE void forEachVector(std::size_t n, Step step, Last last) {
  std::size_t const lanes = hn::Lanes(i64);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) step(i);
  for (; i < n; ++i) last(i);
}

FixedPoint toFixed(double const* values, std::size_t n, std::int64_t* fixed) {
  auto const scale = hn::Set(f64, 0x1p53), unit = hn::Set(f64, 0x1p-53);
  auto inRange = hn::Eq(scale, scale);
  Longs inexact = hn::Zero(i64);
  FixedPoint last{true, true};
  forEachVector(
      n,
      [&](std::size_t i) {
        auto const value = hn::LoadU(f64, values + i);
        auto const inside = hn::And(hn::Ge(value, hn::Zero(f64)), hn::Lt(value, hn::Set(f64, 1)));
        inRange = hn::And(inRange, inside);
        auto const scaled = hn::Mul(hn::IfThenElseZero(inside, value), scale);
        Longs const number = hn::ConvertTo(i64, scaled);
        hn::StoreU(number, i64, fixed + i);
        auto const back = hn::Mul(hn::ConvertTo(f64, number), unit);
        inexact = hn::Or(inexact, hn::Xor(hn::BitCast(i64, back), hn::BitCast(i64, value)));
      },
      [&](std::size_t i) {
        bool const inside = values[i] >= 0 && values[i] < 1;
        fixed[i] = inside ? static_cast<std::int64_t>(values[i] * 0x1p53) : 0;
        double const back = static_cast<double>(fixed[i]) * 0x1p-53;
        last.inRange &= inside;
        last.exact &= std::bit_cast<std::int64_t>(back) == std::bit_cast<std::int64_t>(values[i]);
      });
  bool const allExact = hn::AllTrue(i64, hn::Eq(inexact, hn::Zero(i64)));
  return {hn::AllTrue(f64, inRange) && last.inRange, allExact && last.exact};
}

// A network of 60 exchanges in 10 layers that sorts 16 numbers (Green 1969).
struct Exchange {
  std::size_t low, high;
};
constexpr std::array<Exchange, 60> kNetwork = {{
    {0, 1},   {2, 3},  {4, 5},   {6, 7},   {8, 9},   {10, 11}, {12, 13}, {14, 15}, {0, 2},  {1, 3},
    {4, 6},   {5, 7},  {8, 10},  {9, 11},  {12, 14}, {13, 15}, {0, 4},   {1, 5},   {2, 6},  {3, 7},
    {8, 12},  {9, 13}, {10, 14}, {11, 15}, {0, 8},   {1, 9},   {2, 10},  {3, 11},  {4, 12}, {5, 13},
    {6, 14},  {7, 15}, {5, 10},  {6, 9},   {3, 12},  {13, 14}, {4, 8},   {7, 11},  {1, 2},  {1, 4},
    {7, 13},  {2, 8},  {11, 14}, {2, 4},   {5, 6},   {9, 10},  {11, 13}, {3, 8},   {7, 12}, {6, 8},
    {10, 12}, {3, 5},  {7, 9},   {3, 4},   {5, 6},   {7, 8},   {9, 10},  {11, 12}, {6, 7},  {8, 9},
}};

template <std::size_t... k>
HWY_INLINE void sortRows(Longs* row, std::index_sequence<k...>) {
  auto const exchange = [row](Exchange e) {
    Longs const low = hn::Min(row[e.low], row[e.high]);
    row[e.high] = hn::Max(row[e.low], row[e.high]);
    row[e.low] = low;
  };
  (exchange(kNetwork[k]), ...);
}

void clearColumns(std::int64_t* columns, std::size_t groups) {
  Longs const largest = hn::Set(i64, std::numeric_limits<std::int64_t>::max());
  std::size_t const count = groups * kGroup * kRows;
  for (std::size_t i = 0; i < count; i += hn::Lanes(i64)) hn::StoreU(largest, i64, columns + i);
}

void sortColumns(std::int64_t* columns, std::size_t groups) {
  std::size_t const lanes = hn::Lanes(i64);
  for (std::int64_t* group = columns; groups > 0; --groups, group += kGroup * kRows) {
    for (std::size_t c = 0; c < kGroup; c += lanes) {
      Longs row[kRows];
      for (std::size_t j = 0; j < kRows; ++j) row[j] = hn::LoadU(i64, group + j * kGroup + c);
      sortRows(row, std::make_index_sequence<kNetwork.size()>());
      for (std::size_t j = 0; j < kRows; ++j) hn::StoreU(row[j], i64, group + j * kGroup + c);
    }
  }
}

void takeApart(std::int64_t const* entries, std::size_t n, int indexBits, std::int64_t base,
               double* values, double* positions) {
  std::int64_t const indexMask = (std::int64_t{1} << indexBits) - 1;
  // An index is below 2^52, and so the low end of the double 2^52 + index.
  auto const offset = hn::Set(f64, 0x1p52 - 1);
  auto const exponent = hn::BitCast(i64, hn::Set(f64, 0x1p52));
  forEachVector(
      n,
      [&](std::size_t i) {
        Longs const entry = hn::LoadU(i64, entries + i);
        Longs const number = hn::Or(hn::ShiftRightSame(entry, indexBits), hn::Set(i64, base));
        hn::StoreU(hn::Mul(hn::ConvertTo(f64, number), hn::Set(f64, 0x1p-53)), f64, values + i);
        Longs const index = hn::Or(hn::And(entry, hn::Set(i64, indexMask)), exponent);
        hn::StoreU(hn::Sub(hn::BitCast(f64, index), offset), f64, positions + i);
      },
      [&](std::size_t i) {
        values[i] = static_cast<double>(entries[i] >> indexBits | base) * 0x1p-53;
        positions[i] = static_cast<double>((entries[i] & indexMask) + 1);
      });
}

}  // namespace embedded_host::sort_kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace embedded_host::sort_kernels {

HWY_EXPORT(toFixed);
HWY_EXPORT(clearColumns);
HWY_EXPORT(sortColumns);
HWY_EXPORT(takeApart);

FixedPoint toFixed(double const* values, std::size_t n, std::int64_t* fixed) {
  return HWY_DYNAMIC_DISPATCH(toFixed)(values, n, fixed);
}
void clearColumns(std::int64_t* columns, std::size_t groups) {
  HWY_DYNAMIC_DISPATCH(clearColumns)(columns, groups);
}
void sortColumns(std::int64_t* columns, std::size_t groups) {
  HWY_DYNAMIC_DISPATCH(sortColumns)(columns, groups);
}
void takeApart(std::int64_t const* entries, std::size_t n, int indexBits, std::int64_t base,
               double* values, double* positions) {
  HWY_DYNAMIC_DISPATCH(takeApart)(entries, n, indexBits, base, values, positions);
}

}  // namespace embedded_host::sort_kernels
#endif
