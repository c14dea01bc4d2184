// Functions that make values of a class.

#include <limits>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/text.h"
#include "language/cells.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/strings.h"

namespace language {

namespace {

template <txClassID target>
void convert(Call& call) {
  txArray const& value = call[0];
  if (!hasElements(value.classID())) {
    raiseFault("conversion",
               "A " + describe(value) + " cannot become " +
                   std::string(embedded_host::builtinClassName(target)) + ".",
               "", 1);
  }
  call.give(convertClass(value, target));
}

void makeLogical(Call& call) {
  txArrayPtr const numbers = elementsArgument(call[0], 1);
  visitElementType(numbers->classID(), [&]<class T>(T) {
    if constexpr (std::is_floating_point_v<T>) {
      T const* data = std::as_const(*numbers).template dataAs<T>();
      embedded_host::each(numbers->numel(), [=](std::uint64_t i) {
        if (std::isnan(data[i])) raiseFault("conversion", "NaN is neither true nor false.", "", 1);
      });
    }
  });
  call.give(convertClass(*numbers, txClassLogical));
}

// char(65) are code units; char of a string or a cell of texts is its text.
void makeChar(Call& call) {
  txArray const& value = call[0];
  if (auto const text = value.scalarText()) {
    call.give(txCreateText(std::u16string_view(*text)));
  } else {
    call.give(convertClass(*elementsArgument(value, 1), txClassChar));
  }
}

void makeString(Call& call) { call.give(toStrings(call[0])); }

void makeCell(Call& call) {
  if (call.size() == 1 && call[0].classID() == txClassCell) return call.give(txShare(call[0]));
  Shape const shape = call.size() == 0 ? Shape{0, 0} : sizeArguments(call, 0, call.size());
  call.give(txCreateCell(shape));
}

void makeSparse(Call& call) {
  txArray const& value = call[0];
  if (value.isSparse()) return call.give(txShare(value));
  bool const kept = value.classID() == txClassDouble || value.isLogical();
  if (!kept || !isMatrix(value)) {
    raiseFault("conversion", "Sparse matrices are double or logical, not " + describe(value) + ".",
               "", 1);
  }
  call.give(embedded_host::toSparse(value));
}

void makeFull(Call& call) { call.give(txToFull(call[0])); }

txArrayPtr complexPart(Call const& call, std::size_t i) {
  txArrayPtr part = elementsArgument(call[i], static_cast<int>(i) + 1);
  if (isIntegerClass(part->classID())) {
    raiseFault("class", "Complex numbers are double or single, not " + classText(*part) + ".",
               "convert it: double(x)", static_cast<int>(i) + 1);
  }
  return part;
}

void makeComplex(Call& call) {
  txArrayPtr const real = complexPart(call, 0);
  if (call.size() == 1) return call.give(toComplex(*real));
  txArrayPtr const imaginary = complexPart(call, 1);
  bool const single = real->classID() == txClassSingle || imaginary->classID() == txClassSingle;
  if (real->isComplex() || imaginary->isComplex()) {
    raiseFault("numbersExpected", "Both parts are real.", "", real->isComplex() ? 1 : 2);
  }
  txArray const& larger = real->isScalar() ? *imaginary : *real;
  if (!real->isScalar() && !imaginary->isScalar() && !sameDims(*real, *imaginary)) {
    raiseFault("sizes", "Both parts have the same size.", "", 2);
  }
  auto const build = [&]<class T>(T) {
    txClassID const target = embedded_host::kClassOf<T>;
    txArrayPtr const re = convertClass(*real, target);
    txArrayPtr const im = convertClass(*imaginary, target);
    txArrayPtr result =
        embedded_host::makeUninitialized(larger.dims(), target, txComplexity::complex);
    T const* from = std::as_const(*re).template dataAs<T>();
    T const* fromIm = std::as_const(*im).template dataAs<T>();
    T* to = result->template dataAs<T>();
    std::uint64_t const step = re->isScalar() ? 0 : 1;
    std::uint64_t const stepIm = im->isScalar() ? 0 : 1;
    embedded_host::each(larger.numel(), [=](std::uint64_t i) {
      to[2 * i] = from[i * step];
      to[2 * i + 1] = fromIm[i * stepIm];
    });
    call.give(std::move(result));
  };
  single ? build(float()) : build(double());
}

template <int part>
void partOfComplex(Call& call) {
  txArrayPtr const value = elementsArgument(call[0], 1);
  if (!value->isComplex()) {
    if (part == 0) return call.give(txShare(*value));
    txClassID const id = isFloatClass(value->classID()) || isIntegerClass(value->classID())
                             ? value->classID()
                             : txClassDouble;
    return call.give(embedded_host::makeZeros(value->dims(), id));
  }
  txArrayPtr result = embedded_host::makeUninitialized(value->dims(), value->classID());
  auto const take = [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    embedded_host::each(value->numel(), [=](std::uint64_t i) { to[i] = from[2 * i + part]; });
  };
  value->classID() == txClassSingle ? take(float()) : take(double());
  call.give(std::move(result));
}

constexpr FunctionRow kRows[] = {
    {"double", convert<txClassDouble>, 1, 1, 1, "the value as double", "double(int8(5)) / 2"},
    {"single", convert<txClassSingle>, 1, 1, 1, "the value as single", "single(pi)"},
    {"int8", convert<txClassInt8>, 1, 1, 1, "as int8, saturated and rounded", "int8(200)"},
    {"uint8", convert<txClassUint8>, 1, 1, 1, "as uint8, saturated and rounded", "uint8(2.5)"},
    {"int16", convert<txClassInt16>, 1, 1, 1, "as int16, saturated and rounded", "int16(-5)"},
    {"uint16", convert<txClassUint16>, 1, 1, 1, "as uint16, saturated and rounded", "uint16(7)"},
    {"int32", convert<txClassInt32>, 1, 1, 1, "as int32, saturated and rounded", "int32(2^40)"},
    {"uint32", convert<txClassUint32>, 1, 1, 1, "as uint32, saturated and rounded", "uint32(5)"},
    {"int64", convert<txClassInt64>, 1, 1, 1, "as int64, saturated and rounded", "int64(2^53)+1"},
    {"uint64", convert<txClassUint64>, 1, 1, 1, "as uint64, saturated and rounded", "uint64(2)^63"},
    {"logical", makeLogical, 1, 1, 1, "true where the value is not 0", "logical([0 2 3])"},
    {"char", makeChar, 1, 1, 1, "characters of these codes", "char([72 105])"},
    {"string", makeString, 1, 1, 1, "the value as strings", "string(0.5) + \" of it\""},
    {"cell", makeCell, 0, -1, 1, "a cell array of that size", "cell(1,2)"},
    {"sparse", makeSparse, 1, 1, 1, "a full matrix as sparse", "sparse([0 1; 2 0])"},
    {"full", makeFull, 1, 1, 1, "a sparse matrix as full", "full(sparse([0 1]))"},
    {"complex", makeComplex, 1, 2, 1, "complex from real and imaginary part", "complex(1,0)"},
    {"real", partOfComplex<0>, 1, 1, 1, "the real part", "real(3+4i)"},
    {"imag", partOfComplex<1>, 1, 1, 1, "the imaginary part", "imag(3+4i)"},
};

}  // namespace

FunctionTable constructorFunctions() { return kRows; }

}  // namespace language
