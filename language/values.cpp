#include "language/values.h"
#include "embedded_host/interrupt.h"

#include <algorithm>

#include "embedded_host/text.h"
#include "host/tcos.h"
#include "language/fault.h"

namespace language {

std::string classText(txArray const& value) { return tcos::className(value); }

std::string sizeText(Dims dims) {
  std::string text;
  for (std::uint64_t const extent : dims) {
    if (!text.empty()) text += 'x';
    text += std::to_string(extent);
  }
  return text;
}

std::string describe(txArray const& value) {
  return sizeText(value.dims()) + (value.isComplex() ? " complex " : " ") + classText(value);
}

std::string elementCountText(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " element" : " elements");
}

bool sameDims(txArray const& a, txArray const& b) { return std::ranges::equal(a.dims(), b.dims()); }

txArrayPtr convertClass(txArray const& value, txClassID target) {
  if (value.isSparse()) return convertClass(*txToFull(value), target);
  if (!hasElements(value.classID())) {
    raiseFault("conversion", "A " + classText(value) + " value cannot become " +
                                 std::string(embedded_host::builtinClassName(target)) + ".");
  }
  if (value.classID() == target) return txShare(value);
  if (value.isComplex() && !isFloatClass(target)) {
    raiseFault("complexConversion",
               "A complex value cannot become " +
                   std::string(embedded_host::builtinClassName(target)) + ".",
               "take real(x), imag(x) or abs(x)");
  }
  txComplexity const complexity = value.isComplex() ? txComplexity::complex : txComplexity::real;
  txArrayPtr result = embedded_host::makeUninitialized(value.dims(), target, complexity);
  std::uint64_t const count = value.numel() * (value.isComplex() ? 2 : 1);
  visitElementType(value.classID(), [&]<class From>(From) {
    visitElementType(target, [&]<class To>(To) {
      From const* from = value.dataAs<From>();
      To* to = result->dataAs<To>();
      embedded_host::each(count, [=](std::uint64_t i) { to[i] = castElement<To>(from[i]); });
    });
  });
  return result;
}

txArrayPtr toComplex(txArray const& value) {
  if (value.isComplex()) return txShare(value);
  txClassID const target = value.classID() == txClassSingle ? txClassSingle : txClassDouble;
  txArrayPtr const real = convertClass(value, target);
  txArrayPtr result = embedded_host::makeUninitialized(value.dims(), target, txComplexity::complex);
  auto const fill = [&]<class T>(T) {
    T const* from = real->dataAs<T>();
    T* to = result->dataAs<T>();
    embedded_host::each(real->numel(), [=](std::uint64_t i) {
      to[2 * i] = from[i];
      to[2 * i + 1] = T(0);
    });
  };
  target == txClassSingle ? fill(float()) : fill(double());
  return result;
}

txArrayPtr dropZeroImaginary(txArrayPtr value) {
  if (!value->isComplex() || !isFloatClass(value->classID()) || value->isSparse()) return value;
  auto const drop = [&]<class T>(T) {
    T const* from = std::as_const(*value).dataAs<T>();
    std::uint64_t const count = value->numel();
    for (std::uint64_t i = 0; i < count; ++i) {
      if (from[2 * i + 1] != T(0)) return;
    }
    txArrayPtr real = embedded_host::makeUninitialized(value->dims(), value->classID());
    T* to = real->dataAs<T>();
    embedded_host::each(count, [=](std::uint64_t i) { to[i] = from[2 * i]; });
    value = std::move(real);
  };
  value->classID() == txClassSingle ? drop(float()) : drop(double());
  return value;
}

txArrayPtr makeDouble(double value) { return txCreateDouble(value); }

txArrayPtr emptyDouble() {
  return embedded_host::makeUninitialized(std::array<std::uint64_t, 2>{0, 0}, txClassDouble);
}

txArrayPtr makeText(std::string_view utf8) { return embedded_host::makeTextUtf8(utf8); }

bool isScalarText(txArray const& value) { return value.scalarText().has_value(); }

std::string utf8Of(txArray const& value) {
  return embedded_host::utf16ToUtf8(value.scalarText().value_or(u""));
}

std::string textArgument(txArray const& value, int position) {
  if (!isScalarText(value)) {
    raiseFault("textExpected", "A text was expected, not a " + describe(value) + ".",
               "texts stand in quotes: 'text'", position);
  }
  return utf8Of(value);
}

double numberArgument(txArray const& value, int position) {
  if (!hasElements(value.classID()) || !value.isScalar() || value.isComplex()) {
    raiseFault("numberExpected", "A real number was expected, not a " + describe(value) + ".", "",
               position);
  }
  return value.scalarAsDouble();
}

std::uint64_t countArgument(txArray const& value, int position, std::uint64_t lowest) {
  double const number = numberArgument(value, position);
  // 2^53 and more do not fit memory anyway.
  if (!(number >= static_cast<double>(lowest)) || number != std::floor(number) ||
      number >= 0x1p53) {
    raiseFault("countExpected",
               "A whole number from " + std::to_string(lowest) + " up was expected.", "", position);
  }
  return static_cast<std::uint64_t>(number);
}

txArrayPtr elementsArgument(txArray const& value, int position) {
  if (!hasElements(value.classID())) {
    raiseFault("numbersExpected", "Numbers were expected, not a " + describe(value) + ".", "",
               position);
  }
  return txToFull(value);
}

txArrayPtr numbersArgument(txArray const& value, int position) {
  txArrayPtr full = elementsArgument(value, position);
  return full->isNumeric() ? std::move(full) : convertClass(*full, txClassDouble);
}

txArrayPtr floatArgument(txArray const& value, int position) {
  txArrayPtr const full = elementsArgument(value, position);
  return convertClass(*full, full->classID() == txClassSingle ? txClassSingle : txClassDouble);
}

}  // namespace language
