#include "builtins/randi_arguments.h"

#include "builtins/arguments.h"
#include "host/except.h"
#include "rng/element_types.h"

namespace builtins {

Limits parseLimits(txArray const& limits, void (*invalid)(int position), int position) {
  if (!isNumericOrLogical(limits) || limits.isComplex()) invalid(position);
  if (limits.isScalar()) return {1, limits.scalarAsDouble()};
  if (limits.numel() != 2) invalid(position);
  txArrayPtr const values = txToDouble(limits);
  double const* const pair = values->dataAs<double>();
  return {pair[0], pair[1]};
}

void checkRange(Limits const& limits, int position) {
  try {
    checkRandiLimits(limits.low, limits.high);
  } catch (foundation::core::except::AnyException& error) {
    error.setFaultyArgument(position);
    throw;
  }
}

bool isIntegerElement(txClassID classID) noexcept {
  switch (classID) {
#define RNG_ELEMENT(type, class_) case class_:
    RNG_INTEGER_ELEMENTS(RNG_ELEMENT)
#undef RNG_ELEMENT
    return true;
    default:
      return false;
  }
}

void fillIntegers(randstream& stream, Limits const& limits, txArray& result, std::uint64_t n) {
  switch (result.classID()) {
#define RNG_ELEMENT(type, class_) \
  case class_:                    \
    return stream.randiFcn(limits.low, limits.high, result.dataAs<type>(), n);
    RNG_INTEGER_ELEMENTS(RNG_ELEMENT)
#undef RNG_ELEMENT
    default:
      return;
  }
}

}  // namespace builtins
