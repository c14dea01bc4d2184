// The shortcuts for native code: the same numbers as the builtins and methods, and their own size
// rules.

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "builtins/builtins.h"
#include "builtins/stream_methods.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"

namespace {

using namespace testing_support;
using embedded_host::makeScalar;
using Sizes = matrix::typed_row_vector<double>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
const Sizes kSizes{2, 3, 2}, kNegative{-2, 3}, kThree{1, 2, 3}, kFraction{2, 1.5}, kLimits{-3, 9};

class Variants : public VmTest {
 protected:
  Variants() : stream(vm.evaluate("RandStream('mt19937ar','Seed',0)")) {}

  txArrayPtr stream;
};

TEST_F(Variants, DrawWhatTheHostLanguageDraws) {
  struct Row {
    std::function<txArrayPtr()> draw;
    char const* source;
  };
  txArray const* const s = stream.get();
  Row const rows[] = {
      {[] { return mathrng::randVariant(3); }, "rand(3)"},
      {[] { return mathrng::randVariant(0.0); }, "rand(0)"},
      {[] { return mathrng::randVariant(-3); }, "rand(0)"},
      {[] { return mathrng::randVariant(2, -0.5); }, "rand(2,0)"},
      {[] { return mathrng::randVariant(2, -1); }, "rand(2,0)"},
      {[] { return mathrng::randVariant(&kSizes); }, "rand(2,3,2)"},
      {[] { return mathrng::randnVariant(2); }, "randn(2)"},
      {[] { return mathrng::randnVariant(2, 5); }, "randn(2,5)"},
      {[] { return mathrng::randnVariant(&kSizes); }, "randn(2,3,2)"},
      {[] { return mathrng::randnVariant(&kNegative); }, "randn(0,3)"},
      {[] { return makeScalar(mathrngRandiVariant(6)); }, "randi(6)"},
      {[] { return makeScalar(mathrngRandiVariant(&kLimits)); }, "randi([-3 9])"},
      {[] { return randVariant(7); }, "randperm(7)"},
      {[] { return randVariant(-4); }, "randperm(0)"},
      {[] { return randVariant(7, 3); }, "randperm(7,3)"},
      {[] { return randVariant(4, 0); }, "randperm(4,0)"},
      {[&] { return RandStream::randVariant(s, 2.0); }, "rand(2)"},
      {[&] { return RandStream::randVariant(s, 2, 3); }, "rand(2,3)"},
      {[&] { return RandStream::randVariant(s, &kSizes); }, "rand(2,3,2)"},
      {[&] { return RandStream::randnVariant(s, 2.0); }, "randn(2)"},
      {[&] { return RandStream::randnVariant(s, 2, -1); }, "randn(2,0)"},
      {[&] { return RandStream::randnVariant(s, &kSizes); }, "randn(2,3,2)"},
  };
  for (Row const& row : rows) {
    SCOPED_TRACE(row.source);
    vm.evaluate("clearGlobalRandStream");
    txArrayPtr const expected = vm.evaluate(row.source);
    vm.evaluate("clearGlobalRandStream");
    vm.call("reset", {s}, 0);
    txArrayPtr const drawn = row.draw();
    EXPECT_EQ(shapeOf(*drawn), shapeOf(*expected));
    EXPECT_EQ(numbers(*drawn), numbers(*expected));
  }
}

TEST_F(Variants, RefuseWithoutDrawing) {
  struct Row {
    std::function<void()> draw;
    char const* identifier;
  };
  txArray const* const s = stream.get();
  txArrayPtr const none = toArgument(5.0);
  Row const rows[] = {
      {[] { mathrng::randVariant(2.5); }, "TALVOR:NonIntegerInput"},
      {[] { mathrng::randnVariant(2, 2.5); }, "TALVOR:NonIntegerInput"},
      {[] { mathrng::randVariant(2.5, kNaN); }, "TALVOR:NonIntegerInput"},
      {[] { mathrng::randVariant(kNaN); }, "TALVOR:index:NaN"},
      {[] { mathrng::randVariant(&kFraction); }, "TALVOR:size:NotWhole"},
      {[] { mathrngRandiVariant(&kThree); }, "TALVOR:randi:invalidLimits"},
      {[] { mathrngRandiVariant(0.5); }, "TALVOR:RandStream:randi:invalidLimits"},
      {[] { randVariant(2.5); }, "TALVOR:NonIntegerInput"},
      {[] { randVariant(-1, kNaN); }, "TALVOR:randperm:inputType"},
      {[] { randVariant(0x1p53, 1); }, "TALVOR:randperm:inputNTooLarge"},
      {[] { randVariant(5, 6); }, "TALVOR:randperm:inputKTooLarge"},
      {[&] { RandStream::randVariant(s, 2.5); }, "TALVOR:NonIntegerInput"},
      {[&] { RandStream::randnVariant(none.get(), 2.5); }, "TALVOR:RandStream:InvalidHandle"},
  };
  auto const states = [&] {
    return std::pair(globalState(), stateOf(*mrGetCPPRandStreamFromTxArray(s)));
  };
  auto const before = states();
  for (Row const& row : rows) EXPECT_EQ(identifierOf(row.draw), row.identifier);
  EXPECT_EQ(states(), before);
}

TEST(Module, LoadsAndUnloadsWithoutAVirtualMachine) {
  TLInitialize_libtvmathrng();
  TLTerminate_libtvmathrng();
}

}  // namespace
