#pragma once

// The argument grammar that rand, randn and randi share, as builtins and as methods of a stream
// object: [limits,] sizes ..., then nothing, a class name, or 'like' and a prototype. Parsing draws
// nothing; its errors name the argument at fault.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "builtins/dimensions.h"
#include "host/tx_array.h"

namespace builtins {

// What is peculiar to one sampling function.
struct Grammar {
  // Each raises the error that its name tells, for the argument at `position`.
  using RaiseAt = void (*)(int position);

  char const* method;      // the classes' method that a call is offered to: "rand"
  char const* methodLike;  // the same for prototypes: "randLike"
  bool asksClasses;        // whether calls are offered to classes at all
  std::size_t leading;     // arguments before the sizes: 1, the limits, for randi
  bool (*canFill)(txClassID);
  // Raises for a class name that is refused before any class is asked; null: there is none.
  void (*checkName)(std::u16string_view name, int position);
  // Raises for a class that cannot be filled; `meant` is one that can, or empty.
  void (*unknownClass)(int position, std::string_view meant);
  RaiseAt objectPrototype;  // an object around nothing numeric, or of a class that makes none
  void (*prototypeClass)(txArray const& prototype, int position);
  RaiseAt sparsePrototype;
  RaiseAt inputType;
};

// The arguments of a call that the grammar reads.
struct Arguments {
  std::span<txArray const* const> values;
  int firstPosition;  // position of values[0] in the call, from 1

  std::size_t size() const noexcept { return values.size(); }
  txArray const& operator[](std::size_t index) const noexcept { return *values[index]; }
  int position(std::size_t index) const noexcept { return firstPosition + static_cast<int>(index); }
  Arguments subrange(std::size_t from, std::size_t to) const noexcept {
    return {values.subspan(from, to - from), position(from)};
  }
};

// What the end of an argument list says about the result.
struct Output {
  std::size_t argumentsBefore;
  txClassID classID = txClassDouble;
  txComplexity complexity = txComplexity::real;
  std::string castThrough = {};  // the constructor that the result goes through; empty: none
};

// Reads the class name or the prototype. Nothing when a class took the call: its result is in plhs.
std::optional<Output> parseOutput(Grammar const& grammar, int nlhs, txArrayPtr* plhs,
                                  Arguments const& args);

// The dimensions that size arguments ask for; those that are no numbers are converted by the host
// language's "talvor.internal.builtinhelper.convertSizeArgToDouble" first.
Dimensions parseSizes(Grammar const& grammar, Arguments const& sizes);

// The filled result, passed through the prototype's class where the output says so.
txArrayPtr finish(Output const& output, txArrayPtr result);

inline bool isNumericOrLogical(txArray const& array) noexcept {
  return array.isNumeric() || array.isLogical();
}

}  // namespace builtins
