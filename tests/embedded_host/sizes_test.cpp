#include <gmock/gmock.h>

#include <cmath>
#include <span>

#include "embedded_host/array.h"
#include "embedded_host/object_system.h"
#include "host/messages.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;

using testing_support::identifierOf;

namespace {

// What builtins meet of these rules stands in tests/runtime/calls/sizes.txt.

std::uint64_t countDims(txArrayPtr const& sizes, std::span<std::uint64_t> dims) {
  txArray const* const args[] = {sizes.get()};
  return txGetDims(1, args, dims.data(), dims.size());
}

TEST(Sizes, LookThroughObjectsToTheirArray) {
  auto const length = std::make_shared<ClassDefinition>(ClassDefinition{.name = "Length"});
  std::uint64_t dims[2];
  EXPECT_EQ(countDims(makeObject(length, txCreateDouble(2)), dims), 2u);
  EXPECT_THAT(dims, ElementsAre(2, 2));
  for (auto const& wrong : {makeObject(length), txCreateText("3")})
    EXPECT_EQ(identifierOf([&] { countDims(wrong, dims); }), "TALVOR:size:NotNumeric");
}

TEST(Sizes, NoneMeanAScalar) {
  std::uint64_t dims[2] = {7, 7};
  EXPECT_EQ(txGetDims(0, nullptr, dims, 2), 2u);
  EXPECT_THAT(dims, ElementsAre(1, 1));
}

TEST(Sizes, ErrorNamesTheArgumentAtFault) {
  std::uint64_t dims[2];
  try {
    countDims(txCreateDouble(1.5), dims);
    FAIL();
  } catch (std::exception const& error) {
    EXPECT_STREQ(error.what(), "Size 1 is 1.5; sizes must be whole numbers.");
  }
}

TEST(Sizes, WriteNoMoreThanTheBufferHolds) {
  std::uint64_t dims[] = {9, 9, 9};
  EXPECT_EQ(countDims(makeRow({2., 3., 4., 5.}), std::span(dims, 2)), 4u);
  EXPECT_THAT(dims, ElementsAre(2, 3, 9));
}

TEST(Indices, TruncateAndStayBelowTwoToThe53) {
  EXPECT_EQ(txCheckIndex(0.0), 0u);
  EXPECT_EQ(txCheckIndex(2.9), 2u);
  EXPECT_EQ(txCheckIndex(0x1p53 - 1), (std::uint64_t{1} << 53) - 1);
  for (auto const& [value, key] :
       {std::pair(0x1p53, "TooLarge"), std::pair(double(INFINITY), "TooLarge"),
        std::pair(double(NAN), "NaN"), std::pair(-1.0, "Negative")})
    EXPECT_EQ(identifierOf([&, v = value] { txCheckIndex(v); }),
              std::string("TALVOR:index:") + key);
}

TEST(Indices, AreNoText) {
  EXPECT_EQ(identifierOf([] { txArgMustBeIndices(*txCreateText("1"), 1); }),
            "TALVOR:index:NotIndex");
}

TEST(Counts, HaveTheirStandardErrors) {
  EXPECT_EQ(identifierOf(matrix::detail::error_maxlhs), "TALVOR:maxlhs");
  EXPECT_EQ(identifierOf(matrix::detail::error_maxrhs), "TALVOR:maxrhs");
  EXPECT_EQ(identifierOf(matrix::detail::error_minrhs), "TALVOR:minrhs");
}

}  // namespace
