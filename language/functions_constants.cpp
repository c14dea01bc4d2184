// Constants and arrays of one value.

#include <limits>

#include "embedded_host/array.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/text.h"
#include "host/tcos.h"
#include "language/fault.h"
#include "language/functions.h"

namespace language {

namespace {

// The classes that the last argument may choose.
enum class Classes { floats, integers, numeric };

// What the arguments behind the sizes say.
struct Request {
  Shape shape;
  txClassID id = txClassDouble;
};

bool allowed(txClassID id, Classes classes) {
  return (classes != Classes::integers && isFloatClass(id)) ||
         (classes != Classes::floats && isIntegerClass(id));
}

Request parseRequest(Call const& call, Classes classes, txClassID standard) {
  Request request;
  request.id = standard;
  std::size_t end = call.size();
  bool const like = end >= 2 && isScalarText(call[end - 2]) &&
                    embedded_host::equalIgnoringAsciiCase(utf8Of(call[end - 2]), "like");
  if (like) {
    request.id = call[end - 1].classID();
  } else if (end >= 1 && isScalarText(call[end - 1])) {
    request.id = tcos::builtinClass(*call[end - 1].scalarText());
  } else {
    request.shape = sizeArguments(call, 0, end);
    return request;
  }
  bool const logical = classes == Classes::numeric && request.id == txClassLogical;
  if (!allowed(request.id, classes) && !logical) {
    raiseFault("class",
               "This is not a class that " +
                   std::string(classes == Classes::integers ? "integers" : "numbers") +
                   " can have here.",
               classes == Classes::integers ? "int8 to uint64"
               : classes == Classes::floats ? "'double' or 'single'"
                                            : "'double', 'single', 'int8' to 'uint64'",
               static_cast<int>(end));
  }
  request.shape = sizeArguments(call, 0, end - (like ? 2 : 1));
  return request;
}

template <class Value>
void giveFilled(Call& call, Request const& request, Value&& value) {
  if (request.shape.size() == 2 && request.shape[0] == 1 && request.shape[1] == 1 &&
      request.id == txClassDouble) {
    return call.give(makeDouble(static_cast<double>(value(double()))));
  }
  txArrayPtr result = embedded_host::makeUninitialized(request.shape, request.id);
  visitElementType(request.id, [&]<class T>(T) {
    T const element = static_cast<T>(value(T()));
    T* to = result->dataAs<T>();
    embedded_host::each(result->numel(), [=](std::uint64_t i) { to[i] = element; });
  });
  call.give(std::move(result));
}

void zeros(Call& call) {
  Request const request = parseRequest(call, Classes::numeric, txClassDouble);
  call.give(embedded_host::makeZeros(request.shape, request.id));
}

void ones(Call& call) {
  giveFilled(call, parseRequest(call, Classes::numeric, txClassDouble),
             []<class T>(T) { return T(1); });
}

template <bool value>
void logicals(Call& call) {
  Request request;
  request.shape = sizeArguments(call, 0, call.size());
  request.id = txClassLogical;
  giveFilled(call, request, []<class T>(T) { return static_cast<T>(value); });
}

// A constant of the float classes; `value` maps double() or float() to it.
template <auto value>
void floatConstant(Call& call) {
  giveFilled(call, parseRequest(call, Classes::floats, txClassDouble), [&]<class T>(T) {
    if constexpr (std::is_floating_point_v<T>) {
      return value(T());
    } else {
      return T(0);
    }
  });
}

constexpr auto kPi = []<class T>(T) { return static_cast<T>(3.141592653589793); };
constexpr auto kInf = []<class T>(T) { return std::numeric_limits<T>::infinity(); };
constexpr auto kNaN = []<class T>(T) { return std::numeric_limits<T>::quiet_NaN(); };
constexpr auto kRealMax = []<class T>(T) { return std::numeric_limits<T>::max(); };
constexpr auto kRealMin = []<class T>(T) { return std::numeric_limits<T>::min(); };
constexpr auto kFlintMax = []<class T>(T) {
  return static_cast<T>(std::is_same_v<T, float> ? 0x1p24 : 0x1p53);
};

// eps, eps('single'), or the gap behind each element of x.
void gap(Call& call) {
  if (call.size() == 1 && isFloatClass(call[0].classID())) {
    txArrayPtr const value = elementsArgument(call[0], 1);
    txArrayPtr result = embedded_host::makeUninitialized(value->dims(), value->classID());
    auto const fill = [&]<class T>(T) {
      T const* from = std::as_const(*value).template dataAs<T>();
      T* to = result->template dataAs<T>();
      std::uint64_t const step = value->isComplex() ? 2 : 1;
      embedded_host::each(value->numel(), [=](std::uint64_t i) {
        T const magnitude = std::fabs(from[i * step]);
        to[i] = std::nextafter(magnitude, std::numeric_limits<T>::infinity()) - magnitude;
      });
    };
    value->classID() == txClassSingle ? fill(float()) : fill(double());
    return call.give(std::move(result));
  }
  giveFilled(call, parseRequest(call, Classes::floats, txClassDouble), []<class T>(T) {
    if constexpr (std::is_floating_point_v<T>) {
      return std::numeric_limits<T>::epsilon();
    } else {
      return T(0);
    }
  });
}

template <bool largest>
void integerLimit(Call& call) {
  txClassID id = txClassInt32;
  if (call.size() == 1) {
    id = isScalarText(call[0]) ? tcos::builtinClass(*call[0].scalarText()) : call[0].classID();
  }
  if (!isIntegerClass(id)) {
    raiseFault("class", "This is no integer class.", "'int8' to 'uint64'", 1);
  }
  Request request;
  request.shape = {1, 1};
  request.id = id;
  giveFilled(call, request, []<class T>(T) {
    return largest ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
  });
}

void identity(Call& call) {
  Request const request = parseRequest(call, Classes::numeric, txClassDouble);
  if (request.shape.size() != 2) raiseFault("sizes", "An identity matrix has two dimensions.");
  txArrayPtr result = embedded_host::makeZeros(request.shape, request.id);
  visitElementType(request.id, [&]<class T>(T) {
    T* to = result->dataAs<T>();
    std::uint64_t const rows = request.shape[0];
    for (std::uint64_t i = 0; i < std::min(rows, request.shape[1]); ++i) to[i * rows + i] = T(1);
  });
  call.give(std::move(result));
}

void imaginaryUnit(Call& call) { call.give(embedded_host::makeComplex(0, 1)); }

constexpr FunctionRow kRows[] = {
    {"zeros", zeros, 0, -1, 1, "an array of zeros", "zeros(2,3,'int8')"},
    {"ones", ones, 0, -1, 1, "an array of ones", "ones(2)"},
    {"eye", identity, 0, -1, 1, "an identity matrix", "eye(2)"},
    {"true", logicals<true>, 0, -1, 1, "logical true", "true(1,2)"},
    {"false", logicals<false>, 0, -1, 1, "logical false", "false"},
    {"pi", floatConstant<kPi>, 0, -1, 1, "3.14159...", "pi"},
    {"Inf", floatConstant<kInf>, 0, -1, 1, "infinity", "-Inf"},
    {"NaN", floatConstant<kNaN>, 0, -1, 1, "not a number", "NaN(1,2)"},
    {"eps", gap, 0, -1, 1, "the gap behind 1, or behind each x", "eps(1000)"},
    {"realmax", floatConstant<kRealMax>, 0, -1, 1, "the largest finite number", "realmax"},
    {"realmin", floatConstant<kRealMin>, 0, -1, 1, "the smallest normal number", "realmin"},
    {"flintmax", floatConstant<kFlintMax>, 0, -1, 1, "integers are exact up to here", "flintmax"},
    {"intmax", integerLimit<true>, 0, 1, 1, "the largest of a class", "intmax('uint8')"},
    {"intmin", integerLimit<false>, 0, 1, 1, "the smallest of a class", "intmin('int8')"},
    {"i", imaginaryUnit, 0, 0, 1, "the imaginary unit", "2*i"},
};

}  // namespace

FunctionTable constantFunctions() { return kRows; }

}  // namespace language
