// Functions of each element.

#include <functional>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "language/broadcast.h"
#include "language/fault.h"
#include "language/functions.h"
#include "language/operands.h"

namespace language {

namespace {

using embedded_host::each;
using embedded_host::makeUninitialized;

// Computes in the class of a float argument, in double for text and logicals. Integers stay as they
// are under functions that round (`integersPass`); the others refuse them.
template <auto function>
void onFloats(Call& call, bool integersPass = false) {
  txArrayPtr const given = elementsArgument(call[0], 1);
  if (isIntegerClass(given->classID())) {
    if (integersPass) return call.give(txShare(*given));
    raiseFault("class", "This function takes double or single, not " + classText(*given) + ".",
               "convert it: double(x)", 1);
  }
  txClassID const id = given->classID() == txClassSingle ? txClassSingle : txClassDouble;
  txArrayPtr const value = convertClass(*given, id);
  auto const apply = [&]<class T>(T) {
    if (value->isComplex()) {
      using C = std::complex<T>;
      if constexpr (std::is_invocable_v<decltype(function), C>) {
        txArrayPtr result = makeUninitialized(value->dims(), id, txComplexity::complex);
        C const* from = std::as_const(*value).template dataAs<C>();
        C* to = result->template dataAs<C>();
        each(value->numel(), [=](std::uint64_t i) { to[i] = function(from[i]); });
        return call.give(dropZeroImaginary(std::move(result)));
      } else {
        raiseFault("class", "This function takes real numbers.", "", 1);
      }
    }
    txArrayPtr result = makeUninitialized(value->dims(), id);
    T const* from = std::as_const(*value).template dataAs<T>();
    T* to = result->template dataAs<T>();
    each(value->numel(), [=](std::uint64_t i) { to[i] = function(from[i]); });
    call.give(std::move(result));
  };
  id == txClassSingle ? apply(float()) : apply(double());
}

template <auto function>
void floats(Call& call) {
  onFloats<function>(call);
}

template <auto function>
void rounding(Call& call) {
  onFloats<function>(call, true);
}

// Roots and logarithms of negative numbers are complex.
template <auto function>
void complexBelowZero(Call& call) {
  txArray const& value = call[0];
  bool negative = false;
  if (isFloatClass(value.classID()) && !value.isComplex()) {
    txArrayPtr const full = txToFull(value);
    auto const look = [&]<class T>(T) {
      T const* from = std::as_const(*full).template dataAs<T>();
      for (std::uint64_t i = 0; i < full->numel(); ++i) negative = negative || from[i] < T(0);
    };
    value.classID() == txClassSingle ? look(float()) : look(double());
  }
  if (!negative) return onFloats<function>(call);
  txArrayPtr const complex = toComplex(value);
  txArray const* const arguments[] = {complex.get()};
  txArrayPtr result;
  Call inner(call.session(), 1, &result, arguments);
  onFloats<function>(inner);
  call.give(std::move(result));
}

constexpr auto kExp = [](auto x) { return std::exp(x); };
constexpr auto kSqrt = [](auto x) { return std::sqrt(x); };
constexpr auto kLog = [](auto x) { return std::log(x); };
constexpr auto kLog10 = [](auto x) { return std::log10(x); };
constexpr auto kLog2 = []<class T>(T x) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::log2(x);
  } else {
    return std::log(x) / std::log(typename T::value_type(2));
  }
};
constexpr auto kSin = [](auto x) { return std::sin(x); };
constexpr auto kCos = [](auto x) { return std::cos(x); };
constexpr auto kTan = [](auto x) { return std::tan(x); };
constexpr auto kAtan = [](auto x) { return std::atan(x); };
constexpr auto kFloor = [](std::floating_point auto x) { return std::floor(x); };
constexpr auto kCeil = [](std::floating_point auto x) { return std::ceil(x); };
constexpr auto kRound = [](std::floating_point auto x) { return std::round(x); };
constexpr auto kFix = [](std::floating_point auto x) { return std::trunc(x); };
constexpr auto kErf = [](std::floating_point auto x) { return std::erf(x); };
constexpr auto kConj = []<class T>(T x) {
  if constexpr (std::is_floating_point_v<T>) {
    return x;
  } else {
    return std::conj(x);
  }
};

void absolute(Call& call) {
  txArrayPtr const given = elementsArgument(call[0], 1);
  txClassID const id = isIntegerClass(given->classID()) || given->classID() == txClassSingle
                           ? given->classID()
                           : txClassDouble;
  txArrayPtr const value = convertClass(*given, id);
  txArrayPtr result = makeUninitialized(value->dims(), id);
  visitElementType(id, [&]<class T>(T) {
    T* to = result->dataAs<T>();
    T const* from = std::as_const(*value).template dataAs<T>();
    each(value->numel(), [&](std::uint64_t i) {
      if constexpr (std::is_floating_point_v<T>) {
        to[i] = value->isComplex() ? std::hypot(from[2 * i], from[2 * i + 1]) : std::fabs(from[i]);
      } else if constexpr (std::is_signed_v<T>) {
        T const lowest = std::numeric_limits<T>::min();
        to[i] = from[i] == lowest ? std::numeric_limits<T>::max()
                                  : static_cast<T>(from[i] < 0 ? -from[i] : from[i]);
      } else {
        to[i] = from[i];
      }
    });
  });
  call.give(std::move(result));
}

// Two arguments, and the class that arithmetic gives them.
struct Pair {
  txArrayPtr left;
  txArrayPtr right;
  txClassID id;

  explicit Pair(Call const& call)
      : left(elementsArgument(call[0], 1)),
        right(elementsArgument(call[1], 2)),
        id(typing(Operator::add, *left, *right).result) {
    if (left->isComplex() || right->isComplex()) {
      raiseFault("class", "This function takes real numbers.", "", left->isComplex() ? 1 : 2);
    }
  }
  // A number that is no integer yet would change if it became one.
  bool mixesIntegers() const { return isIntegerClass(id) && left->classID() != right->classID(); }
};

// result = each(x, y) with both as an Element.
template <class Element, class T, class Each>
txArrayPtr eachPair(Pair const& pair, Each each) {
  Broadcast const walk(*pair.left, *pair.right, "this function");
  Operand<Element> const left(*pair.left);
  Operand<Element> const right(*pair.right);
  txArrayPtr result = makeUninitialized(walk.result(), pair.id);
  walk.run(result->dataAs<T>(), left.data(), right.data(), each);
  return result;
}

// `exact` is the same for 64-bit integers with numbers of other classes.
template <auto function, auto exact>
void onPairs(Call& call) {
  Pair const pair(call);
  visitElementType(pair.id, [&]<class T>(T) {
    if constexpr (std::is_integral_v<T>) {
      if (pair.mixesIntegers()) {
        auto const exactly = [](Exact const& x, Exact const& y) {
          return exact(x, y).template as<T>();
        };
        auto const inDouble = [](double x, double y) { return castElement<T>(function(x, y)); };
        return call.give(is64Bit(pair.id) ? eachPair<Exact, T>(pair, exactly)
                                          : eachPair<double, T>(pair, inDouble));
      }
    }
    call.give(eachPair<T, T>(pair, [](T x, T y) { return static_cast<T>(function(x, y)); }));
  });
}

// mod takes the sign of the divisor, rem that of the dividend; x modulo 0 is x.
constexpr auto kMod = []<class T>(T x, T y) -> T {
  if (y == T(0)) return x;
  if constexpr (std::is_floating_point_v<T>) {
    T const rest = std::fmod(x, y);
    if (rest == T(0)) return T(0);
    return std::signbit(rest) != std::signbit(y) ? rest + y : rest;
  } else if constexpr (std::is_signed_v<T>) {
    if (y == T(-1)) return T(0);
    T const rest = static_cast<T>(x % y);
    return rest != 0 && (rest < 0) != (y < 0) ? static_cast<T>(rest + y) : rest;
  } else {
    return static_cast<T>(x % y);
  }
};
constexpr auto kRem = []<class T>(T x, T y) -> T {
  if (y == T(0)) return x;
  if constexpr (std::is_floating_point_v<T>) {
    return std::fmod(x, y);
  } else if constexpr (std::is_signed_v<T>) {
    return y == T(-1) ? T(0) : static_cast<T>(x % y);
  } else {
    return static_cast<T>(x % y);
  }
};

// The bits of a whole number below 2^53.
std::uint64_t bitsOf(Exact const& number, int position) {
  bool const negative = number.negative && number.magnitude != 0;
  if (!number.isWhole() || number.exponent > 0 || negative) {
    raiseFault("numberExpected", "Bits belong to whole numbers from 0 to 2^53.", "", position);
  }
  return number.magnitude;
}

// Integers of one class are combined as they stand in memory, all others as whole numbers.
template <auto op>
void bits(Call& call) {
  Pair const pair(call);
  visitElementType(pair.id, [&]<class T>(T) {
    if constexpr (std::is_integral_v<T>) {
      if (!pair.mixesIntegers()) {
        return call.give(eachPair<T, T>(pair, [](T x, T y) {
          return static_cast<T>(op(static_cast<std::uint64_t>(x), static_cast<std::uint64_t>(y)));
        }));
      }
    }
    call.give(eachPair<Exact, T>(pair, [](Exact const& x, Exact const& y) {
      return castElement<T>(op(bitsOf(x, 1), bitsOf(y, 2)));
    }));
  });
}

template <Operator op>
void operation(Call& call) {
  call.give(applyBinary(op, call[0], call[1]));
}

constexpr auto kAnd = [](std::uint64_t x, std::uint64_t y) { return x & y; };
constexpr auto kOr = [](std::uint64_t x, std::uint64_t y) { return x | y; };
constexpr auto kXor = [](std::uint64_t x, std::uint64_t y) { return x ^ y; };

constexpr FunctionRow kRows[] = {
    {"abs", absolute, 1, 1, 1, "absolute value", "abs(3-4i)"},
    {"sqrt", complexBelowZero<kSqrt>, 1, 1, 1, "square root", "sqrt(-4)"},
    {"exp", floats<kExp>, 1, 1, 1, "exponential", "exp(1)"},
    {"log", complexBelowZero<kLog>, 1, 1, 1, "natural logarithm", "log(10)"},
    {"log2", complexBelowZero<kLog2>, 1, 1, 1, "logarithm to base 2", "log2(8)"},
    {"log10", complexBelowZero<kLog10>, 1, 1, 1, "logarithm to base 10", "log10(1000)"},
    {"sin", floats<kSin>, 1, 1, 1, "sine", "sin(pi/6)"},
    {"cos", floats<kCos>, 1, 1, 1, "cosine", "cos(pi/3)"},
    {"tan", floats<kTan>, 1, 1, 1, "tangent", "tan(pi/4)"},
    {"atan", floats<kAtan>, 1, 1, 1, "arc tangent", "4*atan(1)"},
    {"erf", floats<kErf>, 1, 1, 1, "error function", "erf(1)"},
    {"conj", floats<kConj>, 1, 1, 1, "complex conjugate", "conj(1+2i)"},
    {"floor", rounding<kFloor>, 1, 1, 1, "rounded down", "floor(-2.5)"},
    {"ceil", rounding<kCeil>, 1, 1, 1, "rounded up", "ceil(-2.5)"},
    {"round", rounding<kRound>, 1, 1, 1, "rounded to nearest", "round(-2.5)"},
    {"fix", rounding<kFix>, 1, 1, 1, "rounded towards 0", "fix(-2.5)"},
    {"mod", onPairs<kMod, modulus>, 2, 2, 1, "remainder with the divisor's sign", "mod(-1,3)"},
    {"rem", onPairs<kRem, remainder>, 2, 2, 1, "remainder with the dividend's sign", "rem(-1,3)"},
    {"power", operation<Operator::elementPower>, 2, 2, 1, "x .^ y", "power(2,[1 2 3])"},
    {"bitand", bits<kAnd>, 2, 2, 1, "common bits", "bitand(12,10)"},
    {"bitor", bits<kOr>, 2, 2, 1, "bits of either", "bitor(12,10)"},
    {"bitxor", bits<kXor>, 2, 2, 1, "bits of one alone", "bitxor(12,10)"},
};

}  // namespace

FunctionTable elementwiseFunctions() { return kRows; }

}  // namespace language
