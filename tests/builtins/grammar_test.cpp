// The argument grammar of the sampling builtins: what a call returns, what it refuses and at which
// argument, and that a refused call leaves the stream where it was.

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <set>

#include "builtins/builtins.h"
#include "embedded_host/allocator.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"
#include "vmstate/global_stream.h"

namespace {

using namespace testing_support;
using embedded_host::makeClassIdentifier;
using embedded_host::makeColumn;
using embedded_host::makeMissingString;
using embedded_host::makeString;
using embedded_host::makeStrings;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

txArrayPtr textMatrix() {
  return embedded_host::makeArray<char16_t>(std::array<std::uint64_t, 2>{2, 3},
                                            std::u16string_view(u"sdiong"));
}

struct Accepted {
  char const* call;
  txBuiltin builtin;
  std::function<Args()> arguments;
  char const* shape;
};
void PrintTo(Accepted const& row, std::ostream* out) { *out << row.call; }

class AcceptedCall : public VmTest, public testing::WithParamInterface<Accepted> {};

TEST_P(AcceptedCall, ReturnsShapeAndClassAskedFor) {
  EXPECT_EQ(shapeOf(*call(GetParam().builtin, GetParam().arguments())), GetParam().shape);
}

#define CALL(builtin, ...) #builtin " " #__VA_ARGS__, builtin, [] { return args(__VA_ARGS__); }
constexpr auto rand = mathrngRandFcn;
constexpr auto randn = mathrngRandnFcn;
constexpr auto randi = mathrngRandiFcn;
constexpr auto randperm = mathrngRandpermFcn;

Accepted const kReals[] = {
    {CALL(rand), "1x1 double"},
    {CALL(rand, 3), "3x3 double"},
    {CALL(rand, 2, 3), "2x3 double"},
    {CALL(rand, row({2, 3, 4})), "2x3x4 double"},
    {CALL(rand, 2, 3, 1, 1), "2x3 double"},
    {CALL(rand, -2, 3), "0x3 double"},
    {CALL(rand, 0), "0x0 double"},
    {CALL(rand, 1, 1, 1, 1, 1, 1, 1, 1, 2), "1x1x1x1x1x1x1x1x2 double"},
    {CALL(rand, row({1, 1, 1, 1, 1, 1, 1, 1, 1, 2})), "1x1x1x1x1x1x1x1x1x2 double"},
    {CALL(rand, 1, 1, 1, 1, 1, 1, 1, 1, 2, "single"), "1x1x1x1x1x1x1x1x2 single"},
    {CALL(rand, typed<std::int8_t>(2), typed<bool>(1)), "2x1 double"},
    {CALL(rand, sparseScalar(2)), "2x2 double"},
    {CALL(rand, "double"), "1x1 double"},
    {CALL(rand, 2, "single"), "2x2 single"},
    {CALL(rand, 2, makeString(u"single")), "2x2 single"},
    {CALL(rand, 2, makeClassIdentifier(u"single")), "2x2 single"},
    {CALL(rand, 2, "like", typed<float>(1)), "2x2 single"},
    {CALL(rand, "LiKe", typed<float>(1)), "1x1 single"},
    {CALL(rand, 2, makeString(u"like"), imaginary(1)), "2x2 complex double"},
    {CALL(rand, 2, 0, "like", imaginary(1)), "2x0 complex double"},
    {CALL(randn), "1x1 double"},
    {CALL(randn, 2, 3, "single"), "2x3 single"},
    {CALL(randn, 2, "like", imaginary(1)), "2x2 complex double"},
};
INSTANTIATE_TEST_SUITE_P(Reals, AcceptedCall, testing::ValuesIn(kReals));

Accepted const kIntegers[] = {
    {CALL(randi, 6), "1x1 double"},
    {CALL(randi, row({1, 6}), 2, 3), "2x3 double"},
    {CALL(randi, 6, row({2, 3})), "2x3 double"},
    {CALL(randi, typed<bool>(1)), "1x1 double"},
    {CALL(randi, 6, 2, "logical"), "2x2 logical"},
    {CALL(randi, 6, 2, "single"), "2x2 single"},
    {CALL(randi, 6, 2, "int8"), "2x2 int8"},
    {CALL(randi, 6, 2, "uint8"), "2x2 uint8"},
    {CALL(randi, 6, 2, "int16"), "2x2 int16"},
    {CALL(randi, 6, 2, "uint16"), "2x2 uint16"},
    {CALL(randi, 6, 2, "int32"), "2x2 int32"},
    {CALL(randi, 6, 2, "uint32"), "2x2 uint32"},
    {CALL(randi, 6, "uint32"), "1x1 uint32"},
    {CALL(randi, 10, 2, "like", typed<std::int8_t>(1)), "2x2 int8"},
    {CALL(randi, 10, "like", typed<bool>(1)), "1x1 logical"},
    {CALL(randi, 10, 2, "like", imaginary(1)), "2x2 complex double"},
    {CALL(randperm, 0), "1x0 double"},
    {CALL(randperm, 5), "1x5 double"},
    {CALL(randperm, typed<std::uint8_t>(5)), "1x5 double"},
    {CALL(randperm, sparseScalar(5)), "1x5 double"},
    {CALL(randperm, 5, 0), "1x0 double"},
    {CALL(randperm, 5, 5), "1x5 double"},
    {CALL(randperm, 0x1p53 - 1, 3), "1x3 double"},
};
INSTANTIATE_TEST_SUITE_P(Integers, AcceptedCall, testing::ValuesIn(kIntegers));

struct Refused {
  char const* call;
  txBuiltin builtin;
  std::function<Args()> arguments;
  char const* identifier;
  int faultyArgument = 0;
  char const* textArguments = "";
};
void PrintTo(Refused const& row, std::ostream* out) { *out << row.call; }

class RefusedCall : public VmTest, public testing::WithParamInterface<Refused> {};

TEST_P(RefusedCall, NamesFaultyArgumentAndLeavesStreamAlone) {
  std::size_t const before = globalState();
  std::uint64_t const activity = vm.streamActivity();
  auto const attempt = [] { call(GetParam().builtin, GetParam().arguments()); };
  try {
    attempt();
    FAIL() << "accepted";
  } catch (foundation::core::except::AnyException const& error) {
    EXPECT_EQ(error.GetID(), GetParam().identifier);
    EXPECT_EQ(error.GetBaseMsgIDObj().faultyArgument(), GetParam().faultyArgument);
  }
  EXPECT_EQ(argumentsOf(attempt), GetParam().textArguments);
  EXPECT_EQ(globalState(), before);
  EXPECT_EQ(vm.streamActivity(), activity);
}

Refused const kBadReals[] = {
    {CALL(rand, 2, "int8"), "TALVOR:rand:invalidOutputType", 2},
    {CALL(rand, "SEED"), "TALVOR:rand:invalidOutputType", 1},
    {CALL(rand, ""), "TALVOR:rand:invalidOutputType", 1},
    {CALL(rand, "like"), "TALVOR:rand:invalidOutputType", 1},
    {CALL(rand, 2, "Single"), "TALVOR:rand:invalidOutputType", 2},
    {CALL(rand, 2, textMatrix()), "TALVOR:rand:invalidOutputType", 2},
    {CALL(rand, 2, makeMissingString()), "TALVOR:rand:invalidOutputType", 2},
    {CALL(rand, 2, makeStrings(std::array<std::uint64_t, 2>{1, 2})),
     "TALVOR:rand:invalidOutputType", 2},
    {CALL(rand, 2, makeClassIdentifier(u"nowhere")), "TALVOR:rand:invalidOutputType", 2},
    {CALL(rand, 2, "like", typed<std::int8_t>(1)), "TALVOR:rand:invalidPrototype", 3},
    {CALL(rand, 2, "like", typed<bool>(1)), "TALVOR:rand:invalidPrototype", 3},
    {CALL(rand, "like", "text"), "TALVOR:rand:invalidPrototype", 2},
    {CALL(rand, 2, "like", cellOf(nullptr)), "TALVOR:rand:invalidPrototype", 3},
    {CALL(rand, 2, "like", sparseScalar(1)), "TALVOR:rand:sparsePrototype", 3},
    {CALL(rand, 2, "likes", 1), "TALVOR:rand:inputType", 2},
    {CALL(rand, cellOf(nullptr)), "TALVOR:rand:inputType", 1},
    {CALL(rand, 2, "3", 4), "TALVOR:rand:inputType", 2},
    {CALL(rand, 2, cellOf(nullptr), "single"), "TALVOR:rand:inputType", 2},
    {CALL(rand, 1, 1, 1, 1, 1, 1, 1, 1, cellOf(nullptr)), "TALVOR:rand:inputType", 9},
    {CALL(rand, 2.5), "TALVOR:size:NotWhole", 0, "1.000000|2.500000"},
    {CALL(rand, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2.5), "TALVOR:size:NotWhole", 0, "10.000000|2.500000"},
    {CALL(rand, kNaN, 1), "TALVOR:size:NotFinite", 0, "1.000000|nan"},
    {CALL(rand, kInf), "TALVOR:size:NotFinite", 0, "1.000000|inf"},
    {CALL(randn, 2, "int8"), "TALVOR:randn:invalidOutputType", 2},
    {CALL(randn, "twister", 1), "TALVOR:randn:inputType", 1},
    {CALL(randn, "like", typed<std::int8_t>(1)), "TALVOR:randn:invalidPrototype", 2},
    {CALL(randn, 2, "like", sparseScalar(1)), "TALVOR:randn:sparsePrototype", 3},
    {CALL(randn, cellOf(nullptr)), "TALVOR:randn:inputType", 1},
};
INSTANTIATE_TEST_SUITE_P(Reals, RefusedCall, testing::ValuesIn(kBadReals));

Refused const kBadIntegers[] = {
    {CALL(randi), "TALVOR:minrhs"},
    {CALL(randi, 10, 2, "int64"), "TALVOR:randi:invalidOutputType", 3, "int64"},
    {CALL(randi, 10, makeClassIdentifier(u"uint64")), "TALVOR:randi:invalidOutputType", 2,
     "uint64"},
    {CALL(randi, 10, 2, "like", typed<std::int64_t>(1)), "TALVOR:randi:invalidOutputType", 4,
     "int64"},
    {CALL(randi, 10, "like", "text"), "TALVOR:randi:invalidOutputType", 3, "char"},
    {CALL(randi, 10, 2, "char"), "TALVOR:randi:invalidClassname", 3},
    {CALL(randi, 10, "nowhere"), "TALVOR:randi:invalidClassname", 2},
    {CALL(randi, 10, 2, textMatrix()), "TALVOR:randi:invalidClassname", 3},
    {CALL(randi, 10, "like", sparseScalar(1)), "TALVOR:randi:sparsePrototype", 3},
    {CALL(randi, row({1, 2, 3})), "TALVOR:randi:invalidLimits", 1},
    {CALL(randi, emptyMatrix()), "TALVOR:randi:invalidLimits", 1},
    {CALL(randi, imaginary(5)), "TALVOR:randi:invalidLimits", 1},
    {CALL(randi, "double"), "TALVOR:randi:invalidLimits", 1},
    {CALL(randi, cellOf(nullptr), 2), "TALVOR:randi:invalidLimits", 1},
    // The output is looked at before the limits, the limits before the sizes, their range last.
    {CALL(randi, imaginary(5), cellOf(nullptr), "int64"), "TALVOR:randi:invalidOutputType", 3,
     "int64"},
    {CALL(randi, imaginary(5), cellOf(nullptr)), "TALVOR:randi:invalidLimits", 1},
    {CALL(randi, 0.5, cellOf(nullptr)), "TALVOR:randi:inputType", 2},
    {CALL(randi, 0.5, 2), "TALVOR:RandStream:randi:invalidLimits", 1},
    {CALL(randi, 0), "TALVOR:RandStream:randi:invalidLimits", 1},
    {CALL(randi, kNaN), "TALVOR:RandStream:randi:invalidLimits", 1},
    {CALL(randi, kInf), "TALVOR:RandStream:randi:LimitsTooLarge", 1},
    {CALL(randi, typed<std::uint64_t>(0x1p63)), "TALVOR:RandStream:randi:LimitsTooLarge", 1},
    {CALL(randi, row({-0x1p52, 0x1p52})), "TALVOR:RandStream:randi:RangeTooLarge", 1},
    {CALL(randperm), "TALVOR:minrhs"},
    {CALL(randperm, 1, 2, 3), "TALVOR:maxrhs"},
    {CALL(randperm, 3.5), "TALVOR:index:NotIndex", 0, "1.000000"},
    {CALL(randperm, -1), "TALVOR:index:NotIndex", 0, "1.000000"},
    {CALL(randperm, row({3, 4})), "TALVOR:index:NotIndex", 0, "1.000000"},
    {CALL(randperm, 3.5, 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, -1, 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, kNaN, 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, row({3, 4}), 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, imaginary(3), 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, typed<bool>(1), 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, "a", 1), "TALVOR:randperm:inputType", 1},
    {CALL(randperm, 0x1p53, "k"), "TALVOR:randperm:inputNTooLarge", 1},
    {CALL(randperm, kInf, 1), "TALVOR:randperm:inputNTooLarge", 1},
    {CALL(randperm, 5, 1.5), "TALVOR:randperm:inputType", 2},
    {CALL(randperm, 5, -1), "TALVOR:randperm:inputType", 2},
    {CALL(randperm, 5, row({1, 2})), "TALVOR:randperm:inputType", 2},
    {CALL(randperm, 5, 6), "TALVOR:randperm:inputKTooLarge", 2},
};
INSTANTIATE_TEST_SUITE_P(Integers, RefusedCall, testing::ValuesIn(kBadIntegers));

using Builtins = VmTest;

TEST_F(Builtins, SecondOutputIsRefusedBeforeAnyArgument) {
  for (txBuiltin builtin : {rand, randn, randi, randperm})
    EXPECT_EQ(identifierOf([&] { callAll(builtin, args("nonsense"), 2); }), "TALVOR:maxlhs");
}

TEST_F(Builtins, FreshMachineStartsWithPublishedSequence) {
  EXPECT_THAT(numbers(*call(rand, args(1, 5))),
              testing::ElementsAre(0.81472368639317894, 0.90579193707561922, 0.12698681629350606,
                                   0.91337585613901939, 0.63235924622540951));
}

TEST_F(Builtins, ComplexUniformsAreTwiceAsManyInterleaved) {
  std::vector<double> const complex = numbers(*call(rand, args(2, 2, "like", imaginary(1))));
  call(clearGlobalRandStream, {}, 0);
  EXPECT_EQ(complex, numbers(*call(rand, args(8, 1))));
}

// The parts have half the variance each; dividing by sqrt(2) is exact to a rounding.
TEST_F(Builtins, ComplexNormalsHaveVarianceOne) {
  std::vector<double> const parts = numbers(*call(randn, args(50, 1, "like", imaginary(1))));
  call(clearGlobalRandStream, {}, 0);
  std::vector<double> const real = numbers(*call(randn, args(100, 1)));
  for (std::size_t i = 0; i < 100; ++i) EXPECT_NEAR(parts[i], real[i] / std::sqrt(2.0), 1e-15);
}

TEST_F(Builtins, IntegersStayInsideLimitsAndReachThem) {
  std::vector<double> const dice = numbers(*call(randi, args(row({-2, 3}), 1000, 1, "int8")));
  EXPECT_EQ(std::set<double>(dice.begin(), dice.end()), (std::set<double>{-2, -1, 0, 1, 2, 3}));
}

// The factory's seed is 0, the first uniforms 0.81, 0.91 and 0.13.
TEST_F(Builtins, EqualLimitsStillDrawOneUniformEach) {
  call(randi, args(row({3, 3}), 2, 1));
  EXPECT_EQ(numbers(*call(rand)), std::vector{0.12698681629350606});
}

TEST_F(Builtins, PermutationIsOrderOfUniforms) {
  // 0.815 0.906 0.127 0.913 0.632
  EXPECT_THAT(numbers(*call(randperm, args(5))), testing::ElementsAre(3, 5, 1, 2, 4));
}

// Every request for memory fails once, in calls that need none beyond their result, in calls that
// need it for many sizes, and in permutations.
TEST_F(Builtins, CallOutOfMemoryLeavesStreamAndMemoryAlone) {
  struct Row {
    txBuiltin builtin;
    Args arguments;
  };
  Row rows[] = {
      {rand, args(40, 40)},
      {rand, args(1, 1, 1, 1, 1, 1, 1, 1, 2, 3)},
      {rand, args(row({1, 1, 1, 1, 1, 1, 1, 1, 1, 2}), "single")},
      {randn, args(40, 40, "like", imaginary(1))},
      {randi, args(row({1, 6}), 40, 40, "uint8")},
      {randperm, args(100)},
      {randperm, args(1000, 20)},
      {randperm, args(100, 50)},
      {randperm, args(100, 100)},
  };
  std::size_t const before = globalState();
  for (Row const& row : rows) {
    SCOPED_TRACE(&row - rows);
    auto const blocks = embedded_host::allocationCounts().liveBlocks;
    for (std::uint64_t k = 1;; ++k) {
      ASSERT_LT(k, 100U);
      embedded_host::FailingAllocation const failing(k);
      std::string const error = identifierOf([&] { call(row.builtin, row.arguments); });
      if (!failing.happened()) {
        EXPECT_EQ(error, "no error");
        EXPECT_GT(k, 1U);
        break;
      }
      EXPECT_EQ(error, "TALVOR:nomem");
      EXPECT_EQ(globalState(), before) << "request " << k;
      EXPECT_EQ(embedded_host::allocationCounts().liveBlocks, blocks);
    }
    call(clearGlobalRandStream, {}, 0);
    ASSERT_EQ(globalState(), before);
  }
}

}  // namespace
