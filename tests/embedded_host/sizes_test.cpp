#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>

#include "embedded_host/array.h"
#include "embedded_host/object_system.h"
#include "host/messages.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;

using testing_support::identifierOf;

namespace {

template <class... Arrays>
std::vector<std::uint64_t> dimsFrom(Arrays const&... arrays) {
  std::array<txArray const*, sizeof...(arrays)> const args{arrays.get()...};
  std::vector<std::uint64_t> dims(16);
  dims.resize(txGetDims(args.size(), args.data(), dims.data(), dims.size()));
  return dims;
}

txArrayPtr number(double value) { return txCreateDouble(value); }

TEST(Sizes, OneScalarIsTheSideOfASquare) {
  EXPECT_THAT(dimsFrom(number(3)), ElementsAre(3, 3));
  EXPECT_THAT(dimsFrom(number(0)), ElementsAre(0, 0));
  EXPECT_THAT(dimsFrom(makeScalar(std::uint8_t{200})), ElementsAre(200, 200));
  EXPECT_THAT(dimsFrom(makeScalar(true)), ElementsAre(1, 1));
}

TEST(Sizes, OneVectorHoldsOneDimensionAnElement) {
  EXPECT_THAT(dimsFrom(makeRow({2., 3.})), ElementsAre(2, 3));
  EXPECT_THAT(dimsFrom(makeColumn<std::int32_t>({2, 3, 4})), ElementsAre(2, 3, 4));
  EXPECT_THAT(dimsFrom(makeRow<double>({})), ElementsAre(0, 0));
  EXPECT_THAT(dimsFrom(toSparse(*makeRow({2., 0., 5.}))), ElementsAre(2, 0, 5));
}

TEST(Sizes, SeveralArgumentsAreOneDimensionEach) {
  EXPECT_THAT(dimsFrom(number(2), number(3), number(1)), ElementsAre(2, 3, 1));
  EXPECT_THAT(dimsFrom(makeScalar(2.f), makeScalar(std::int64_t{4})), ElementsAre(2, 4));
}

TEST(Sizes, NegativeSizesCountAsZero) {
  EXPECT_THAT(dimsFrom(number(-1)), ElementsAre(0, 0));
  EXPECT_THAT(dimsFrom(number(-0.0), number(-1e300)), ElementsAre(0, 0));
  EXPECT_THAT(dimsFrom(makeRow<std::int8_t>({4, -128})), ElementsAre(4, 0));
}

TEST(Sizes, LooksThroughObjectsToTheirArray) {
  auto const length = std::make_shared<ClassDefinition>(ClassDefinition{.name = "Length"});
  EXPECT_THAT(dimsFrom(makeObject(length, number(2)), number(5)), ElementsAre(2, 5));
  txArrayPtr const bare = makeObject(length);
  EXPECT_EQ(identifierOf([&] { dimsFrom(bare); }), "TALVOR:size:NotNumeric");
}

TEST(Sizes, RefusesWhatIsNoSize) {
  double const inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(identifierOf([] { dimsFrom(number(2.5)); }), "TALVOR:size:NotWhole");
  EXPECT_EQ(identifierOf([] { dimsFrom(number(-0.5)); }), "TALVOR:size:NotWhole");
  EXPECT_EQ(identifierOf([] { dimsFrom(number(NAN)); }), "TALVOR:size:NotFinite");
  EXPECT_EQ(identifierOf([&] { dimsFrom(number(2), number(-inf)); }), "TALVOR:size:NotFinite");
  EXPECT_EQ(identifierOf([&] { dimsFrom(number(0x1p48)); }), "TALVOR:size:TooLarge");
  EXPECT_EQ(identifierOf([] { dimsFrom(makeScalar(UINT64_MAX), number(0)); }),
            "TALVOR:size:TooLarge");
  EXPECT_EQ(identifierOf([] { dimsFrom(makeComplex(2, 0)); }), "TALVOR:size:NotReal");
  EXPECT_EQ(identifierOf([] { dimsFrom(txCreateText("3")); }), "TALVOR:size:NotNumeric");
  EXPECT_EQ(identifierOf([] { dimsFrom(number(2), makeRow({3., 4.})); }), "TALVOR:size:NotScalar");
  EXPECT_EQ(identifierOf([] { dimsFrom(number(2), makeRow<double>({})); }),
            "TALVOR:size:NotScalar");
  EXPECT_EQ(identifierOf([] {
              dimsFrom(makeZeros(std::array<std::uint64_t, 2>{2, 2}, txClassDouble));
            }),
            "TALVOR:size:NotVector");
}

TEST(Sizes, ErrorNamesTheArgumentAtFault) {
  try {
    dimsFrom(number(2), number(3), number(1.5));
    FAIL();
  } catch (std::exception const& error) {
    EXPECT_STREQ(error.what(), "Size 3 is 1.5; sizes must be whole numbers.");
  }
}

TEST(Sizes, WritesNoMoreThanTheBufferHolds) {
  txArrayPtr const sizes = makeRow({2., 3., 4., 5.});
  txArray const* const args[] = {sizes.get()};
  std::uint64_t dims[] = {9, 9, 9};
  EXPECT_EQ(txGetDims(1, args, dims, 2), 4u);
  EXPECT_THAT(dims, ElementsAre(2, 3, 9));
}

TEST(Indices, TruncateAndStayBelowTwoToThe53) {
  EXPECT_EQ(txCheckIndex(0.0), 0u);
  EXPECT_EQ(txCheckIndex(2.9), 2u);
  EXPECT_EQ(txCheckIndex(0x1p53 - 1), (std::uint64_t{1} << 53) - 1);
  EXPECT_EQ(identifierOf([] { txCheckIndex(0x1p53); }), "TALVOR:index:TooLarge");
  EXPECT_EQ(identifierOf([] { txCheckIndex(INFINITY); }), "TALVOR:index:TooLarge");
  EXPECT_EQ(identifierOf([] { txCheckIndex(NAN); }), "TALVOR:index:NaN");
  EXPECT_EQ(identifierOf([] { txCheckIndex(-1.0); }), "TALVOR:index:Negative");
}

TEST(Indices, ArgumentMustBeOneRealWholeNumber) {
  EXPECT_EQ(txArgMustBeIndices(*number(7), 1), 7u);
  EXPECT_EQ(txArgMustBeIndices(*makeScalar(std::uint8_t{0}), 1), 0u);
  for (double wrong : {-1.0, 0.5, double(NAN), double(-INFINITY)}) {
    EXPECT_EQ(identifierOf([&] { txArgMustBeIndices(*number(wrong), 1); }),
              "TALVOR:index:NotIndex");
  }
  EXPECT_EQ(identifierOf([] {
              txArgMustBeIndices(*makeRow({1., 2.}), 1);
            }),
            "TALVOR:index:NotIndex");
  EXPECT_EQ(identifierOf([] { txArgMustBeIndices(*makeComplex(1, 0), 1); }),
            "TALVOR:index:NotIndex");
  EXPECT_EQ(identifierOf([] { txArgMustBeIndices(*txCreateText("1"), 1); }),
            "TALVOR:index:NotIndex");
  EXPECT_EQ(identifierOf([] { txArgMustBeIndices(*number(0x1p53), 1); }), "TALVOR:index:TooLarge");
}

TEST(Counts, HaveTheirStandardErrors) {
  EXPECT_EQ(identifierOf(matrix::detail::error_maxlhs), "TALVOR:maxlhs");
  EXPECT_EQ(identifierOf(matrix::detail::error_maxrhs), "TALVOR:maxrhs");
  EXPECT_EQ(identifierOf(matrix::detail::error_minrhs), "TALVOR:minrhs");
}

}  // namespace
