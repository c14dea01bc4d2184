#pragma once

// first:step:last

#include "language/values.h"
#include "tfl_rng/uint128.h"

namespace language {

using tfl_rng::int128;

// The elements of a range, without room for them. Its class is the integer class of the bounds,
// else that of the step, else single if one of the three is, else double.
//
// Integers: first and step are whole, the bounds are kept within the class. Other numbers: bounds
// and step may each be half an eps beside the decimal that was written, so that a last step is
// taken when it lies within a few eps of the larger bound beyond the end; it then is the end. From
// the middle on, elements are counted from the last one.
class RangeValues {
 public:
  // `step` is 1 when null. Raises for bounds that are no real numbers, NaN, an infinite step, more
  // elements than memory could ever hold.
  RangeValues(txArray const& first, txArray const* step, txArray const& last);

  std::uint64_t count() const { return count_; }
  // Element i, from 0.
  txArrayPtr at(std::uint64_t i) const;
  // All of them, as a row.
  txArrayPtr all() const;

 private:
  void setIntegers(txArray const& first, txArray const* step, txArray const& last);
  void setFloats(double from, double width, double to);
  double floatAt(std::uint64_t i) const;
  template <class T>
  T elementAt(std::uint64_t i) const;

  txClassID class_ = txClassDouble;
  std::uint64_t count_ = 0;
  double from_ = 0;
  double width_ = 0;
  double last_ = 0;
  int128 wholeFrom_ = 0;
  int128 wholeWidth_ = 0;
};

}  // namespace language
