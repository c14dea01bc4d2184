#include <gmock/gmock.h>

#include "embedded_host/array.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;

using testing_support::identifierOf;

namespace {

using Indices = std::vector<std::uint64_t>;

// 3-by-3 with column 2 empty: [0 0 5; 7 0 0; 0 0 -6].
txArrayPtr makeExample() {
  return makeSparse(3, 3, txClassDouble, txComplexity::real, Indices{0, 1, 1, 3}, Indices{1, 0, 2},
                    std::vector<double>{7, 5, -6});
}

TEST(Sparse, ConvertsToFullAndBack) {
  txArrayPtr const sparse = makeExample();
  EXPECT_TRUE(sparse->isSparse());
  EXPECT_EQ(std::as_const(*sparse).data(), nullptr);
  txArrayPtr const full = txToFull(*sparse);
  EXPECT_FALSE(full->isSparse());
  EXPECT_THAT(elementsOf<double>(*full), ElementsAre(0, 7, 0, 0, 0, 0, 5, 0, -6));
  txArrayPtr const again = toSparse(*full);
  EXPECT_THAT(sparseView(*again).columnStarts, ElementsAre(0, 1, 1, 3));
  EXPECT_THAT(sparseView(*again).rowIndices, ElementsAre(1, 0, 2));
  EXPECT_THAT(sparseView(*again).values, ElementsAre(7, 5, -6));
}

TEST(Sparse, KeepsAComplexEntryOfWhichOnePartIsZero) {
  txArrayPtr const full = makeZeros(Indices{2, 1}, txClassDouble, txComplexity::complex);
  full->dataAs<double>()[3] = 4;
  txArrayPtr const sparse = toSparse(*full);
  EXPECT_THAT(sparseView(*sparse).values, ElementsAre(0, 4));
  EXPECT_THAT(elementsOf<double>(*txToFull(*sparse)), ElementsAre(0, 0, 0, 4));
}

TEST(Sparse, LogicalStaysLogical) {
  txArrayPtr const sparse = toSparse(*makeRow({false, true}));
  EXPECT_TRUE(sparse->isLogical());
  EXPECT_THAT(elementsOf<bool>(*txToFull(*sparse)), ElementsAre(false, true));
  EXPECT_THAT(elementsOf<double>(*txToDouble(*sparse)), ElementsAre(0, 1));
}

TEST(Sparse, FirstElementReadsAsScalar) {
  EXPECT_EQ(makeExample()->scalarAsDouble(), 0);
  EXPECT_EQ(toSparse(*txCreateDouble(8))->scalarAsDouble(), 8);
  EXPECT_EQ(toSparse(*txCreateDouble(0))->scalarAsDouble(), 0);
}

TEST(Sparse, RefusesIllFormedStructures) {
  struct Row {
    char const* what;
    Indices starts, rows;
    std::vector<double> values;
  };
  for (Row const& row :
       {Row{"column count", {0, 1}, {0}, {1}}, Row{"first start", {1, 1, 1}, {0}, {1}},
        Row{"last start", {0, 0, 2}, {0}, {1}}, Row{"falling starts", {0, 2, 1}, {0}, {1}},
        Row{"row beyond the matrix", {0, 1, 1}, {2}, {1}},
        Row{"repeated row", {0, 2, 2}, {1, 1}, {1, 2}},
        Row{"falling rows", {0, 2, 2}, {1, 0}, {1, 2}},
        Row{"too few values", {0, 2, 2}, {0, 1}, {1}}}) {
    EXPECT_EQ(identifierOf([&] {
                makeSparse(2, 2, txClassDouble, txComplexity::real, row.starts, row.rows,
                           row.values);
              }),
              "TALVOR:sparse:Structure")
        << row.what;
  }
  EXPECT_EQ(identifierOf([] { toSparse(*makeScalar(1.f)); }), "TALVOR:sparse:Structure");
  EXPECT_EQ(identifierOf([] { sparseView(*txCreateDouble(1)); }), "TALVOR:sparse:NotSparse");
}

}  // namespace
