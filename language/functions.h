#pragma once

// The functions of the language itself, in tables by topic.

#include <span>
#include <string_view>
#include <vector>

#include "host/export.h"
#include "host/tx_array.h"
#include "language/session.h"
#include "language/values.h"

namespace language {

// One call of a function: its arguments, and the place for its results.
class Call {
 public:
  Call(Session& session, int outputs, txArrayPtr* results,
       std::span<txArray const* const> arguments)
      : session_(session), outputs_(outputs), results_(results), arguments_(arguments) {}

  Session& session() const { return session_; }
  std::size_t size() const { return arguments_.size(); }
  txArray const& operator[](std::size_t i) const { return *arguments_[i]; }
  std::span<txArray const* const> arguments() const { return arguments_; }
  int outputs() const { return outputs_; }
  bool wants(int output) const { return output < std::max(outputs_, 1); }
  void give(txArrayPtr value, int output = 0) { results_[output] = std::move(value); }

 private:
  Session& session_;
  int outputs_;
  txArrayPtr* results_;
  std::span<txArray const* const> arguments_;
};

struct FunctionRow {
  char const* name;
  void (*body)(Call&);
  int fewest;  // arguments
  int most;    // -1: any number
  int mostOutputs;
  char const* what;     // for help
  char const* example;  // runs as it stands
};
using FunctionTable = std::span<FunctionRow const>;

FunctionTable constructorFunctions();
FunctionTable shapeFunctions();
FunctionTable constantFunctions();
FunctionTable queryFunctions();
FunctionTable elementwiseFunctions();
FunctionTable reductionFunctions();
FunctionTable statisticsFunctions();
FunctionTable sortingFunctions();
FunctionTable programFunctions();

TV_EXPORT std::vector<FunctionTable> functionTables();

void registerFunctions(Session& session);
void unregisterFunctions(Session& session) noexcept;

// Sizes as arguments [first, end): nothing is 1-by-1, n is n-by-n, a vector is all extents.
Shape sizeArguments(Call const& call, std::size_t first, std::size_t end);
// Argument `at` as a dimension from 0; without it the first extent other than 1 of `value`.
std::size_t dimensionArgument(Call const& call, std::size_t at, txArray const& value);

// The lines that a reduction works on.
struct Reduced {
  txArrayPtr value;
  std::size_t dimension;
};

// Argument `at` is a dimension or 'all', which makes the array one column. Without it the first
// extent other than 1 goes, and nothing (0-by-0) counts as an empty column: it has one result.
Reduced reduced(Call const& call, std::size_t at, txArrayPtr value);

}  // namespace language
