// Conversions of array values.

#include <algorithm>
#include <cmath>
#include <cstring>

#include "embedded_host/array.h"
#include "embedded_host/array_impl.h"
#include "embedded_host/messages.h"
#include "host/allocator.h"
#include "host/tcos.h"

namespace {

using embedded_host::raiseHostError;

// Calls `visit` with a typed pointer to the elements of a full numeric, logical or char array.
// Returns false for every other array.
template <class Visitor>
bool visitElements(txArray const& array, Visitor&& visit) {
  switch (array.data() ? array.classID() : txClassUnknown) {
    case txClassLogical:
      visit(array.dataAs<bool>());
      return true;
    case txClassChar:
      visit(array.dataAs<char16_t>());
      return true;
    case txClassDouble:
      visit(array.dataAs<double>());
      return true;
    case txClassSingle:
      visit(array.dataAs<float>());
      return true;
    case txClassInt8:
      visit(array.dataAs<std::int8_t>());
      return true;
    case txClassUint8:
      visit(array.dataAs<std::uint8_t>());
      return true;
    case txClassInt16:
      visit(array.dataAs<std::int16_t>());
      return true;
    case txClassUint16:
      visit(array.dataAs<std::uint16_t>());
      return true;
    case txClassInt32:
      visit(array.dataAs<std::int32_t>());
      return true;
    case txClassUint32:
      visit(array.dataAs<std::uint32_t>());
      return true;
    case txClassInt64:
      visit(array.dataAs<std::int64_t>());
      return true;
    case txClassUint64:
      visit(array.dataAs<std::uint64_t>());
      return true;
    default:
      return false;
  }
}

[[noreturn]] void raiseInvalidConversion(txArray const& array, std::string_view target) {
  raiseHostError("TALVOR:invalidConversion", tcos::className(array), target);
}

}  // namespace

double txArray::scalarAsDouble() const {
  if (isEmpty()) raiseHostError("TALVOR:array:IndexOutOfRange", 1, 0);
  if (isSparse()) {
    auto const sparse = embedded_host::sparseView(*this);
    bool const isStored = sparse.columnStarts[1] > 0 && sparse.rowIndices[0] == 0;
    return isStored ? sparse.values[0] : 0.0;
  }
  double value = 0;
  if (!visitElements(*this, [&](auto const* from) { value = static_cast<double>(from[0]); })) {
    raiseInvalidConversion(*this, "double");
  }
  return value;
}

txArrayPtr txToDouble(txArray const& array) {
  txArray const* source = tcos::underlyingArray(array);
  if (!source) raiseInvalidConversion(array, "double");
  txArrayPtr const full = txToFull(*source);
  if (full->classID() == txClassDouble) return txShare(*full);
  txArrayPtr result;
  bool const converted = visitElements(std::as_const(*full), [&](auto const* from) {
    result = txCreateUninitialized(full->dims(), txClassDouble,
                                   static_cast<txComplexity>(full->isComplex()));
    std::uint64_t const count = full->numel() * (full->isComplex() ? 2 : 1);
    std::transform(from, from + count, result->dataAs<double>(),
                   [](auto element) { return static_cast<double>(element); });
  });
  if (!converted) raiseInvalidConversion(array, "double");
  return result;
}

bool txToLogical(txArray const& array) {
  txArray const* source = tcos::underlyingArray(array);
  if (!source ||
      !(source->isNumeric() || source->isLogical() || source->classID() == txClassChar)) {
    raiseInvalidConversion(array, "logical");
  }
  if (!source->isScalar()) raiseHostError("TALVOR:logical:NotScalar");
  if (source->isComplex()) raiseHostError("TALVOR:logical:Complex");
  double const value = source->scalarAsDouble();
  if (std::isnan(value)) raiseHostError("TALVOR:logical:NaN");
  return value != 0;
}

std::optional<std::u16string> txArray::scalarText() const {
  if (classID() == txClassString) {
    if (!isScalar()) return std::nullopt;
    auto const text = embedded_host::stringAt(*this, 0);
    return text ? std::optional<std::u16string>(*text) : std::nullopt;
  }
  if (classID() != txClassChar) return std::nullopt;
  bool const isRow = dims().size() == 2 && dims()[0] == 1;
  bool const isNothing = dims().size() == 2 && dims()[0] == 0 && dims()[1] == 0;
  if (!isRow && !isNothing) return std::nullopt;
  return std::u16string(dataAs<char16_t>(), numel());
}

char* txArrayToString(txArray const& array) {
  if (array.classID() != txClassChar) return nullptr;
  char* text = static_cast<char*>(txMallocEx(array.numel() + 1));
  char16_t const* from = array.dataAs<char16_t>();
  char* end = std::transform(from, from + array.numel(), text, [](char16_t unit) {
    return unit < 256 ? static_cast<char>(unit) : '?';
  });
  *end = '\0';
  return text;
}

std::u16string txArrayToU16String(txArray const& array) {
  if (array.classID() == txClassChar) {
    return std::u16string(array.dataAs<char16_t>(), array.numel());
  }
  if (array.classID() == txClassString && array.isScalar()) {
    if (auto const text = embedded_host::stringAt(array, 0)) return std::u16string(*text);
    raiseHostError("TALVOR:string:MissingNotSupported");
  }
  raiseHostError("TALVOR:string:MustBeStringScalarOrCharacterVector");
}
