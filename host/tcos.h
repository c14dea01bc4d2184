#pragma once

// The host's object system: classes of the host language and their instances.

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/export.h"
#include "host/tx_array.h"

namespace tcos {

// The class of a value as its users name it: "double", "char", "RandStream", ...
TV_EXPORT std::string className(txArray const& value);

// The built-in array behind an object (classes that wrap or derive from one), or the value itself
// when it is no object. Null for an object without an underlying array. Borrowed from `value`.
TV_EXPORT txArray const* underlyingArray(txArray const& value);

// The class named by a class-identifier object; nothing for every other value.
TV_EXPORT std::optional<std::u16string> namedClass(txArray const& value);

// The class number of a built-in class name (exact case); txClassUnknown for every other name.
TV_EXPORT txClassID builtinClass(std::u16string_view name);

// Calls method `method` of the class of `args[0]` or, for the static form, of class `className`.
// Returns false, with nothing called, when there is no such class or method; errors raised by the
// method reach the caller.
TV_EXPORT bool callMethod(std::string_view method, int nlhs, txArrayPtr* plhs,
                          std::span<txArray const* const> args);
// The same for a method of the class of `object` that does not get `object` as an argument.
TV_EXPORT bool callMethodOfClass(txArray const& object, std::string_view method, int nlhs,
                                 txArrayPtr* plhs, std::span<txArray const* const> args);
TV_EXPORT bool callStaticMethod(std::u16string_view className, std::string_view method, int nlhs,
                                txArrayPtr* plhs, std::span<txArray const* const> args);

}  // namespace tcos
