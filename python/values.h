#pragma once

// Single values of the caller's.

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>

namespace tvpython {

std::string typeName(pybind11::handle value);

// A value as the text of an error shows it, cut where it is long; does not fail.
std::string quoted(pybind11::handle value);

// The whole number that a value stands for, an int; null when it stands for none.
pybind11::object wholeNumber(pybind11::handle value);

// A whole number of [0, 2^64); `what` names it in the error TALVOR:python:InvalidNumber.
std::uint64_t readCount(pybind11::handle value, char const* what);

// The limits of randi: n for 1 to n, or a pair.
struct Limits {
  double lowest;
  double highest;
};
// Errors: TALVOR:python:InvalidLimits; values are left to the library.
Limits readLimits(pybind11::handle value);

// A seed of the operating system's choice.
std::uint32_t chosenSeed();

// A seed, "entropy" for one chosen by the operating system. Errors: "<path>:BadSeed".
std::uint32_t readSeed(pybind11::handle value, char const* path);

// True or False, NumPy's too; `what` names it in the error TALVOR:python:InvalidFlag.
bool readFlag(pybind11::handle value, char const* what);

// Text that C strings can hold, in UTF-8. Errors: TALVOR:python:InvalidText.
std::string readText(pybind11::handle value, char const* what);

}  // namespace tvpython
