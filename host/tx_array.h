#pragma once

// The host's n-dimensional typed array: arguments and results of every builtin and method.
// The library sees the array only through these operations; its layout is the host's own.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/export.h"

// Class numbers. 6 to 15 are fixed; a plug-in's state class is such a number less 6.
enum txClassID : int {
  txClassUnknown = 0,
  txClassCell = 1,
  txClassObject = 2,  // instance of a host-language class
  txClassLogical = 3,
  txClassChar = 4,    // UTF-16 code units
  txClassString = 5,  // array of strings
  txClassDouble = 6,
  txClassSingle = 7,
  txClassInt8 = 8,
  txClassUint8 = 9,
  txClassInt16 = 10,
  txClassUint16 = 11,
  txClassInt32 = 12,
  txClassUint32 = 13,
  txClassInt64 = 14,
  txClassUint64 = 15,
  txClassClassIdentifier = 16,  // a value that names a class
};

enum class txComplexity : bool { real = false, complex = true };

class txArray;

struct TV_EXPORT txDestroy_deleter {
  void operator()(txArray* array) const noexcept;
};
using txArrayPtr = std::unique_ptr<txArray, txDestroy_deleter>;

// The signature of every builtin and native method: `nlhs` outputs are wanted, results go to
// plhs[0 .. max(nlhs, 1)), `prhs[0 .. nrhs)` are borrowed.
using txBuiltin = void (*)(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs);

class TV_EXPORT txArray {
 public:
  txClassID classID() const noexcept;
  // At least two dimensions, trailing ones of 1 dropped; the first varies fastest in memory.
  std::span<const std::uint64_t> dims() const noexcept;
  std::uint64_t numel() const noexcept;
  bool isEmpty() const noexcept { return numel() == 0; }
  bool isScalar() const noexcept { return numel() == 1; }
  bool isComplex() const noexcept;
  bool isSparse() const noexcept;
  bool isLogical() const noexcept { return classID() == txClassLogical; }
  // Double, single or one of the eight integer classes; logical is not numeric.
  bool isNumeric() const noexcept {
    return classID() >= txClassDouble && classID() <= txClassUint64;
  }

  // Elements of a full numeric, logical (1 byte) or char (2 bytes) array in column order;
  // complex ones are stored as (real, imaginary) pairs. Null for all other arrays.
  void const* data() const noexcept;
  // The same for writing. Elements shared with other arrays are copied first, which may end with
  // "TALVOR:nomem".
  void* data();
  template <class T>
  T const* dataAs() const noexcept {
    return static_cast<T const*>(data());
  }
  template <class T>
  T* dataAs() {
    return static_cast<T*>(data());
  }

  // The first element as a double (its real part); works for sparse arrays and for every numeric,
  // logical and char class. Requires numel() >= 1. 64-bit integers are rounded to nearest.
  double scalarAsDouble() const;

  // The text of a scalar text: a char row vector (0-by-0 counts as empty text) or a string array
  // of one element that is not missing. Nothing for every other array.
  std::optional<std::u16string> scalarText() const;
  // True for char and string arrays of any shape.
  bool isText() const noexcept { return classID() == txClassChar || classID() == txClassString; }

  // Element `index` (from 0) of a cell array; null when that element was never set or is none.
  txArray const* cell(std::uint64_t index) const noexcept;
  // An index beyond the array is the host error "TALVOR:array:IndexOutOfRange".
  void setCell(std::uint64_t index, txArrayPtr value);

 protected:
  txArray() = default;
  ~txArray() = default;
};

// Creation. Failure to allocate is the host error "TALVOR:nomem" and leaves nothing behind; more
// elements than the machine's memory holds are "TALVOR:array:SizeLimitExceeded", before anything is
// allocated.

// A full array of a numeric class or of class logical with uninitialised elements.
TV_EXPORT txArrayPtr txCreateUninitialized(std::span<const std::uint64_t> dims, txClassID classID,
                                           txComplexity complexity = txComplexity::real);
TV_EXPORT txArrayPtr txCreateDouble(double value);
TV_EXPORT txArrayPtr txCreateLogical(bool value);
// Char row vectors; the empty text is 0-by-0.
TV_EXPORT txArrayPtr txCreateText(std::string_view ascii);
TV_EXPORT txArrayPtr txCreateText(std::u16string_view text);
TV_EXPORT txArrayPtr txCreateCell(std::span<const std::uint64_t> dims);
// Another owner of the same value.
TV_EXPORT txArrayPtr txShare(txArray const& array);

// Conversion.

// The value as a full (not sparse) array; shares the data where it is full already.
TV_EXPORT txArrayPtr txToFull(txArray const& array);
// The value as a full double array, element by element; complexity is kept. Text converts to its
// code units. Arrays without a double conversion are the host error "TALVOR:invalidConversion".
TV_EXPORT txArrayPtr txToDouble(txArray const& array);
// A scalar's truth value. Host errors: "TALVOR:logical:NotScalar", "TALVOR:logical:NaN",
// "TALVOR:logical:Complex", "TALVOR:invalidConversion".
TV_EXPORT bool txToLogical(txArray const& array);
// A char array's elements as a NUL-terminated narrow string from the host's allocator (code units
// above 255 become '?'); null when the array is not char. Released with txFreeEx.
TV_EXPORT char* txArrayToString(txArray const& array);
// The UTF-16 text of a char array (all elements) or of a string scalar. A missing string is
// "TALVOR:string:MissingNotSupported", any other array
// "TALVOR:string:MustBeStringScalarOrCharacterVector".
TV_EXPORT std::u16string txArrayToU16String(txArray const& array);

// Properties.

// A copy of property `name` of an object; null when `object` has no such property or is none.
TV_EXPORT txArrayPtr txGetProperty(txArray const& object, std::string_view name);

// Sizes and indices as arguments; the host owns their rules and errors.

// Turns size arguments (numeric, logical or objects over such arrays) into dimensions: one argument
// is a size vector, two or more are one dimension each. One scalar n means n-by-n: {n, n}; an empty
// size vector means 0-by-0. Negative values count as 0. Returns the number of dimensions; only the
// first `capacity` are written, so that a caller whose buffer was too small asks again with a
// larger one. Host errors: "TALVOR:size:NotNumeric", "TALVOR:size:NotReal",
// "TALVOR:size:NotVector", "TALVOR:size:NotScalar", "TALVOR:size:NotFinite",
// "TALVOR:size:NotWhole", "TALVOR:size:TooLarge".
TV_EXPORT std::size_t txGetDims(std::size_t nArgs, txArray const* const* args, std::uint64_t* dims,
                                std::size_t capacity);
// A non-negative double as an integer, truncated. Host errors: "TALVOR:index:Negative",
// "TALVOR:index:TooLarge" (2^53 and beyond), "TALVOR:index:NaN".
TV_EXPORT std::uint64_t txCheckIndex(double value);
// Checks that argument `position` (from 1) is a real scalar whole number from 0 to 2^53 - 1 and
// returns it. Host errors: "TALVOR:index:NotIndex", "TALVOR:index:TooLarge".
TV_EXPORT std::uint64_t txArgMustBeIndices(txArray const& array, int position);
