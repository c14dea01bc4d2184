#include "language/truth.h"
#include "embedded_host/interrupt.h"

#include "language/fault.h"

namespace language {

namespace {

template <class T>
bool truth(T element, int position) {
  if (isNaN(element)) {
    raiseFault("condition", "NaN is neither true nor false.", "test with isnan(x)", position);
  }
  return element != T(0);
}

}  // namespace

txArrayPtr truthOf(txArray const& value, int position) {
  if (value.isSparse()) return truthOf(*txToFull(value), position);
  if (value.isLogical()) return txShare(value);
  txArrayPtr result = embedded_host::makeUninitialized(value.dims(), txClassLogical);
  bool* to = result->dataAs<bool>();
  std::uint64_t const step = value.isComplex() ? 2 : 1;
  visitElementType(value.classID(), [&]<class T>(T) {
    T const* from = value.dataAs<T>();
    embedded_host::each(value.numel(), [=](std::uint64_t i) {
      bool const real = truth(from[i * step], position);
      bool const imaginary = truth(from[i * step + step - 1], position);
      to[i] = real || imaginary;
    });
  });
  return result;
}

bool isTrue(txArray const& value) {
  if (!hasElements(value.classID())) {
    raiseFault("condition", "A " + describe(value) + " is neither true nor false.");
  }
  if (value.isEmpty()) return false;
  txArrayPtr const truths = truthOf(value);
  bool const* data = std::as_const(*truths).dataAs<bool>();
  for (std::uint64_t i = 0; i < truths->numel(); ++i) {
    if (!data[i]) return false;
  }
  return true;
}

}  // namespace language
