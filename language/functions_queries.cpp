// Questions about values.

#include <cstring>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/object_system.h"
#include "host/tcos.h"
#include "language/fault.h"
#include "language/functions.h"

namespace language {

namespace {

// Equal class, size and bits; cells cell by cell, objects by identity.
bool same(txArray const& a, txArray const& b) {
  if (a.classID() != b.classID() || !sameDims(a, b) || a.isComplex() != b.isComplex() ||
      a.isSparse() != b.isSparse()) {
    return false;
  }
  if (a.isSparse()) return same(*txToFull(a), *txToFull(b));
  switch (a.classID()) {
    case txClassCell:
      for (std::uint64_t i = 0; i < a.numel(); ++i) {
        txArray const* x = a.cell(i);
        txArray const* y = b.cell(i);
        if (x == y) continue;
        txArrayPtr const empty = emptyDouble();
        if (!same(x ? *x : *empty, y ? *y : *empty)) return false;
      }
      return true;
    case txClassString:
      for (std::uint64_t i = 0; i < a.numel(); ++i) {
        if (embedded_host::stringAt(a, i) != embedded_host::stringAt(b, i)) return false;
      }
      return true;
    case txClassObject:
      return embedded_host::sameObject(a, b);
    case txClassClassIdentifier:
      return tcos::namedClass(a) == tcos::namedClass(b);
    default: {
      std::size_t const bytes =
          embedded_host::elementBytes(a.classID()) * (a.isComplex() ? 2 : 1) * a.numel();
      return bytes == 0 || std::memcmp(a.data(), b.data(), bytes) == 0;
    }
  }
}

void sameFunction(Call& call) {
  for (std::size_t i = 1; i < call.size(); ++i) {
    if (!same(call[0], call[i])) return call.give(txCreateLogical(false));
  }
  call.give(txCreateLogical(true));
}

// Texts are the same when both are scalar texts of the same characters.
void sameText(Call& call) {
  auto const a = call[0].scalarText();
  auto const b = call[1].scalarText();
  call.give(txCreateLogical(a && b && *a == *b));
}

void classOf(Call& call) { call.give(makeText(classText(call[0]))); }

void isA(Call& call) {
  std::string const wanted = textArgument(call[1], 2);
  txClassID const id = call[0].classID();
  bool const answer =
      wanted == classText(call[0]) || (wanted == "numeric" && call[0].isNumeric()) ||
      (wanted == "float" && isFloatClass(id)) || (wanted == "integer" && isIntegerClass(id));
  call.give(txCreateLogical(answer));
}

template <auto test>
void ask(Call& call) {
  call.give(txCreateLogical(test(call[0])));
}

constexpr auto kIsEmpty = [](txArray const& x) { return x.isEmpty(); };
constexpr auto kIsScalar = [](txArray const& x) { return x.isScalar(); };
constexpr auto kIsReal = [](txArray const& x) {
  return hasElements(x.classID()) && !x.isComplex();
};
constexpr auto kIsNumeric = [](txArray const& x) { return x.isNumeric(); };
constexpr auto kIsLogical = [](txArray const& x) { return x.isLogical(); };
constexpr auto kIsChar = [](txArray const& x) { return x.classID() == txClassChar; };
constexpr auto kIsString = [](txArray const& x) { return x.classID() == txClassString; };
constexpr auto kIsCell = [](txArray const& x) { return x.classID() == txClassCell; };
constexpr auto kIsObject = [](txArray const& x) { return x.classID() == txClassObject; };
constexpr auto kIsSparse = [](txArray const& x) { return x.isSparse(); };

// A test of every element; those of classes without NaN and infinities are finite.
template <auto test>
void eachElement(Call& call) {
  txArrayPtr const value = elementsArgument(call[0], 1);
  txArrayPtr result = embedded_host::makeUninitialized(value->dims(), txClassLogical);
  bool* to = result->dataAs<bool>();
  visitElementType(value->classID(), [&]<class T>(T) {
    T const* from = std::as_const(*value).template dataAs<T>();
    std::uint64_t const step = value->isComplex() ? 2 : 1;
    embedded_host::each(value->numel(), [=](std::uint64_t i) {
      to[i] =
          test(static_cast<double>(from[i * step]), static_cast<double>(from[i * step + step - 1]));
    });
  });
  call.give(std::move(result));
}

constexpr auto kNaN = [](double re, double im) { return std::isnan(re) || std::isnan(im); };
constexpr auto kInfinite = [](double re, double im) { return std::isinf(re) || std::isinf(im); };
constexpr auto kFinite = [](double re, double im) {
  return std::isfinite(re) && std::isfinite(im);
};

constexpr FunctionRow kRows[] = {
    {"same", sameFunction, 2, -1, 1, "equal in class, size and every bit", "same(1:3,[1 2 3])"},
    {"strcmp", sameText, 2, 2, 1, "the same text", "strcmp('a',\"a\")"},
    {"class", classOf, 1, 1, 1, "the name of the class", "class(single(1))"},
    {"isa", isA, 2, 2, 1, "is it of that class or kind", "isa(5,'float')"},
    {"isempty", ask<kIsEmpty>, 1, 1, 1, "without elements", "isempty([])"},
    {"isscalar", ask<kIsScalar>, 1, 1, 1, "one element", "isscalar(5)"},
    {"isreal", ask<kIsReal>, 1, 1, 1, "stored without imaginary part", "isreal(2i)"},
    {"isnumeric", ask<kIsNumeric>, 1, 1, 1, "of a numeric class", "isnumeric('a')"},
    {"islogical", ask<kIsLogical>, 1, 1, 1, "of class logical", "islogical(true)"},
    {"ischar", ask<kIsChar>, 1, 1, 1, "of class char", "ischar('a')"},
    {"isstring", ask<kIsString>, 1, 1, 1, "of class string", "isstring(\"a\")"},
    {"iscell", ask<kIsCell>, 1, 1, 1, "of class cell", "iscell({})"},
    {"isobject", ask<kIsObject>, 1, 1, 1, "an object of a class", "isobject(5)"},
    {"issparse", ask<kIsSparse>, 1, 1, 1, "stored sparse", "issparse(sparse(1))"},
    {"isnan", eachElement<kNaN>, 1, 1, 1, "NaN, element by element", "isnan([1 NaN])"},
    {"isinf", eachElement<kInfinite>, 1, 1, 1, "infinite, element by element", "isinf(-Inf)"},
    {"isfinite", eachElement<kFinite>, 1, 1, 1, "finite, element by element", "isfinite([1 Inf])"},
};

}  // namespace

FunctionTable queryFunctions() { return kRows; }

}  // namespace language
