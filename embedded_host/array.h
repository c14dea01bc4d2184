#pragma once

// Making and reading host arrays from native code, beyond what host/tx_array.h offers.

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "host/export.h"
#include "host/tx_array.h"

namespace embedded_host {

using Dims = std::span<const std::uint64_t>;

// The class number of an element type; bool is logical, char16_t char.
template <class T>
inline constexpr txClassID kClassOf = txClassUnknown;
template <>
inline constexpr txClassID kClassOf<bool> = txClassLogical;
template <>
inline constexpr txClassID kClassOf<char16_t> = txClassChar;
template <>
inline constexpr txClassID kClassOf<double> = txClassDouble;
template <>
inline constexpr txClassID kClassOf<float> = txClassSingle;
template <>
inline constexpr txClassID kClassOf<std::int8_t> = txClassInt8;
template <>
inline constexpr txClassID kClassOf<std::uint8_t> = txClassUint8;
template <>
inline constexpr txClassID kClassOf<std::int16_t> = txClassInt16;
template <>
inline constexpr txClassID kClassOf<std::uint16_t> = txClassUint16;
template <>
inline constexpr txClassID kClassOf<std::int32_t> = txClassInt32;
template <>
inline constexpr txClassID kClassOf<std::uint32_t> = txClassUint32;
template <>
inline constexpr txClassID kClassOf<std::int64_t> = txClassInt64;
template <>
inline constexpr txClassID kClassOf<std::uint64_t> = txClassUint64;

// Bytes of one real element of a numeric class, logical or char; 0 for every other class.
TV_EXPORT std::size_t elementBytes(txClassID classID) noexcept;

// The name of a built-in class as users write it ("double", "logical", ...); empty for objects and
// class identifiers, whose names are their own.
TV_EXPORT std::string_view builtinClassName(txClassID classID) noexcept;

// Full arrays of a numeric class, logical or char.

// With every element 0.
TV_EXPORT txArrayPtr makeZeros(Dims dims, txClassID classID,
                               txComplexity complexity = txComplexity::real);
// With uninitialised elements; class char is accepted too.
TV_EXPORT txArrayPtr makeUninitialized(Dims dims, txClassID classID,
                                       txComplexity complexity = txComplexity::real);
TV_EXPORT txArrayPtr makeComplex(double real, double imaginary);
// A char row vector from UTF-8; ill-formed bytes become U+FFFD.
TV_EXPORT txArrayPtr makeTextUtf8(std::string_view utf8);

template <class T>
txArrayPtr makeArray(Dims dims, std::span<const T> elements) {
  txArrayPtr result = makeUninitialized(dims, kClassOf<T>);
  T* to = result->dataAs<T>();
  for (std::uint64_t i = 0; i < result->numel(); ++i) to[i] = elements[i];
  return result;
}
template <class T>
txArrayPtr makeScalar(T value) {
  return makeArray<T>(std::array<std::uint64_t, 2>{1, 1}, std::span<const T>(&value, 1));
}
template <class T>
txArrayPtr makeRow(std::initializer_list<T> values) {
  return makeArray<T>(std::array<std::uint64_t, 2>{1, values.size()},
                      std::span<const T>(values.begin(), values.size()));
}
template <class T>
txArrayPtr makeColumn(std::initializer_list<T> values) {
  return makeArray<T>(std::array<std::uint64_t, 2>{values.size(), 1},
                      std::span<const T>(values.begin(), values.size()));
}

// The elements of a full array, in column order; a complex array has two entries an element.
template <class T>
std::span<const T> elementsOf(txArray const& array) {
  return {array.dataAs<T>(), array.numel() * (array.isComplex() ? 2 : 1)};
}

// The same elements under other dimensions of the same product; shares the data. Not for sparse
// arrays and objects. A different product is the host error "TALVOR:array:ElementCount".
TV_EXPORT txArrayPtr reshape(txArray const& array, Dims dims);

// Gives an array more elements behind the last one and the dimensions `dims`; the others keep their
// places in column order, the new ones are 0, unset cells, empty texts. Works in place where nobody
// shares the elements, and makes room ahead: growing an array one by one copies each element a few
// times in all. Not for sparse arrays and objects; `dims` may not have fewer elements.
TV_EXPORT void extend(txArray& array, Dims dims);

// String arrays. An element is a text or missing.

// All elements empty texts.
TV_EXPORT txArrayPtr makeStrings(Dims dims);
TV_EXPORT txArrayPtr makeString(std::u16string_view text);
TV_EXPORT txArrayPtr makeMissingString();
// Element `index` (from 0) of a string array; nothing when it is missing. Borrowed from `array`.
TV_EXPORT std::optional<std::u16string_view> stringAt(txArray const& array, std::uint64_t index);
TV_EXPORT void setString(txArray& array, std::uint64_t index,
                         std::optional<std::u16string_view> text);

// Sparse arrays: two-dimensional, class double or logical, real or complex, compressed by columns.

// Column c holds entries columnStarts[c] to columnStarts[c+1] - 1; the rows (from 0) rise inside a
// column. `values` has one double an entry, a (real, imaginary) pair when complex; for class
// logical any value but 0 is true. An ill-formed structure is the host error
// "TALVOR:sparse:Structure".
TV_EXPORT txArrayPtr makeSparse(std::uint64_t rows, std::uint64_t columns, txClassID classID,
                                txComplexity complexity,
                                std::span<const std::uint64_t> columnStarts,
                                std::span<const std::uint64_t> rowIndices,
                                std::span<const double> values);
// A full double or logical matrix as sparse.
TV_EXPORT txArrayPtr toSparse(txArray const& full);

struct SparseView {
  std::span<const std::uint64_t> columnStarts;
  std::span<const std::uint64_t> rowIndices;
  std::span<const double> values;
};
// Borrowed from `array`, which must be sparse.
TV_EXPORT SparseView sparseView(txArray const& array);

// A value that names a class.
TV_EXPORT txArrayPtr makeClassIdentifier(std::u16string_view className);

}  // namespace embedded_host
