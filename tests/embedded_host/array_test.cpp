#include "embedded_host/array.h"

#include <gmock/gmock.h>

#include "embedded_host/allocator.h"
#include "host/allocator.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;
using testing::IsEmpty;

using testing_support::identifierOf;

namespace {

using DimVector = std::vector<std::uint64_t>;

TEST(Array, HasAtLeastTwoDimensionsAndDropsTrailingOnes) {
  auto const dimsOf = [](DimVector const& dims) {
    txArrayPtr const array = txCreateUninitialized(dims, txClassInt8);
    return DimVector(array->dims().begin(), array->dims().end());
  };
  EXPECT_THAT(dimsOf({}), ElementsAre(1, 1));
  EXPECT_THAT(dimsOf({3}), ElementsAre(3, 1));
  EXPECT_THAT(dimsOf({1, 1, 1, 1}), ElementsAre(1, 1));
  EXPECT_THAT(dimsOf({2, 1, 4, 1}), ElementsAre(2, 1, 4));
  EXPECT_THAT(dimsOf({2, 3, 4, 5, 1, 6, 1, 1}), ElementsAre(2, 3, 4, 5, 1, 6));
  EXPECT_THAT(dimsOf({0, 5, 2, 0}), ElementsAre(0, 5, 2, 0));
}

TEST(Array, SharesAreIndependentWhenOneIsWritten) {
  // One value that fits inside the array and one in a block of its own.
  for (std::uint64_t n : {1, 3, 1000}) {
    txArrayPtr const first = makeZeros(DimVector{n, 1}, txClassDouble);
    txArrayPtr const second = txShare(*first);
    second->dataAs<double>()[n - 1] = 7;
    EXPECT_EQ(std::as_const(*first).dataAs<double>()[n - 1], 0);
    EXPECT_EQ(std::as_const(*second).dataAs<double>()[n - 1], 7);
  }
}

TEST(Array, SharingALargeArrayCopiesNothing) {
  txArrayPtr const first = makeZeros(DimVector{1000, 1000}, txClassDouble);
  std::int64_t const before = allocationCounts().liveBytes;
  txArrayPtr const second = txShare(*first);
  txArrayPtr const third = reshape(*first, DimVector{10, 100, 1000});
  EXPECT_LT(allocationCounts().liveBytes - before, 2000);
  EXPECT_EQ(std::as_const(*first).data(), std::as_const(*third).data());
  EXPECT_THAT(third->dims(), ElementsAre(10, 100, 1000));
  EXPECT_EQ(identifierOf([&] {
              reshape(*first, DimVector{10, 100});
            }),
            "TALVOR:array:ElementCount");
}

TEST(Array, GrowingOneByOneMovesTheElementsRarely) {
  txArrayPtr const array = makeZeros(DimVector{1, 1}, txClassDouble);
  int moves = 0;
  for (std::uint64_t n = 2; n <= 10000; ++n) {
    void const* const before = std::as_const(*array).data();
    extend(*array, DimVector{1, n});
    if (std::as_const(*array).data() != before) ++moves;
    ASSERT_EQ(array->dims()[1], n);
    ASSERT_EQ(std::as_const(*array).dataAs<double>()[n - 1], 0);
    array->dataAs<double>()[n - 1] = static_cast<double>(n - 1);
  }
  EXPECT_LT(moves, 40);
  for (std::uint64_t i = 0; i < 10000; ++i) {
    ASSERT_EQ(std::as_const(*array).dataAs<double>()[i], static_cast<double>(i));
  }
}

TEST(Array, GrowingAShareLeavesTheOtherAsItWas) {
  auto const grown = [](txArray& array) {
    txArrayPtr const share = txShare(array);
    extend(*share, DimVector{1, array.numel() + 1});
    EXPECT_EQ(share->numel(), array.numel() + 1);
    return txShare(*share);
  };
  for (std::uint64_t n : {0, 1, 2, 3, 1000}) {
    txArrayPtr const numbers = makeZeros(DimVector{1, n}, txClassDouble);
    extend(*numbers, DimVector{1, n + 1});  // with room behind
    txArrayPtr const other = grown(*numbers);
    other->dataAs<double>()[n] = 5;
    other->dataAs<double>()[n + 1] = 5;
    extend(*numbers, DimVector{1, n + 2});
    EXPECT_THAT(elementsOf<double>(*numbers), testing::Each(0.0));
  }
  txArrayPtr const cells = txCreateCell(DimVector{1, 1});
  EXPECT_EQ(grown(*cells)->cell(1), nullptr);
  txArrayPtr const texts = makeString(u"a");
  EXPECT_EQ(stringAt(*grown(*texts), 1), u"");
}

TEST(Array, GrowingWithoutMemoryChangesNothing) {
  for (txArrayPtr const& array :
       {makeZeros(DimVector{1, 5}, txClassInt8), makeZeros(DimVector{1, 5}, txClassDouble),
        txCreateCell(DimVector{1, 5}), makeStrings(DimVector{1, 5})}) {
    bool happened = true;
    for (std::uint64_t k = 1; happened; ++k) {
      txArrayPtr const share = txShare(*array);
      FailingAllocation const failing(k);
      if (identifierOf([&] { extend(*share, DimVector{1, 1000}); }) != "no error") {
        EXPECT_EQ(share->numel(), 5);
      }
      happened = failing.happened();
    }
  }
  txArrayPtr const array = makeZeros(DimVector{1, 5}, txClassDouble);
  EXPECT_EQ(identifierOf([&] {
              extend(*array, DimVector{1, std::uint64_t{1} << 60});
            }),
            "TALVOR:array:SizeLimitExceeded");
  EXPECT_EQ(array->numel(), 5);
}

TEST(Array, CellsOfASharedCellArrayAreIndependent) {
  txArrayPtr const first = txCreateCell(DimVector{1, 2});
  first->setCell(1, txCreateDouble(5));
  txArrayPtr const second = txShare(*first);
  second->setCell(1, txCreateText("text"));
  EXPECT_EQ(first->cell(0), nullptr);
  EXPECT_EQ(first->cell(1)->scalarAsDouble(), 5);
  EXPECT_EQ(second->cell(1)->scalarText(), u"text");
  EXPECT_EQ(identifierOf([&] { first->setCell(2, nullptr); }), "TALVOR:array:IndexOutOfRange");
}

TEST(Array, ComplexElementsArePairs) {
  txArrayPtr const z = makeComplex(1, -2);
  EXPECT_TRUE(z->isComplex());
  EXPECT_THAT(elementsOf<double>(*z), ElementsAre(1, -2));
  EXPECT_THAT(elementsOf<float>(*makeZeros(DimVector{1, 2}, txClassSingle, txComplexity::complex)),
              ElementsAre(0, 0, 0, 0));
  EXPECT_EQ(identifierOf([] { makeZeros(DimVector{1}, txClassLogical, txComplexity::complex); }),
            "TALVOR:array:ComplexClass");
}

TEST(Array, ReadsEveryNumericClassAsDouble) {
  EXPECT_EQ(makeScalar(true)->scalarAsDouble(), 1);
  EXPECT_EQ(makeScalar(u'A')->scalarAsDouble(), 65);
  EXPECT_EQ(makeScalar(-1.5f)->scalarAsDouble(), -1.5);
  EXPECT_EQ(makeScalar(std::int8_t{-128})->scalarAsDouble(), -128);
  EXPECT_EQ(makeScalar(std::uint16_t{65535})->scalarAsDouble(), 65535);
  EXPECT_EQ(makeScalar(INT64_MIN)->scalarAsDouble(), -0x1p63);
  EXPECT_EQ(makeScalar(UINT64_MAX)->scalarAsDouble(), 0x1p64);
  EXPECT_EQ(makeScalar((std::uint64_t{1} << 53) + 3)->scalarAsDouble(), 0x1p53 + 4);
  EXPECT_EQ(identifierOf([] { makeString(u"1")->scalarAsDouble(); }), "TALVOR:invalidConversion");
  EXPECT_EQ(identifierOf([] { makeRow<double>({})->scalarAsDouble(); }),
            "TALVOR:array:IndexOutOfRange");
}

TEST(Array, ConvertsToDoubleElementByElement) {
  txArrayPtr const doubles = txToDouble(*makeRow<std::int16_t>({-3, 0, 32767}));
  EXPECT_THAT(elementsOf<double>(*doubles), ElementsAre(-3, 0, 32767));
  EXPECT_THAT(elementsOf<double>(*txToDouble(*txCreateText("az"))), ElementsAre(97, 122));
  txArrayPtr const complex = makeZeros(DimVector{2, 1}, txClassInt32, txComplexity::complex);
  complex->dataAs<std::int32_t>()[3] = 9;
  EXPECT_TRUE(txToDouble(*complex)->isComplex());
  EXPECT_THAT(elementsOf<double>(*txToDouble(*complex)), ElementsAre(0, 0, 0, 9));
  EXPECT_EQ(identifierOf([] { txToDouble(*makeString(u"1")); }), "TALVOR:invalidConversion");
  EXPECT_EQ(identifierOf([] { txToDouble(*txCreateCell(DimVector{1})); }),
            "TALVOR:invalidConversion");
}

TEST(Array, TruthNeedsOneNumber) {
  EXPECT_EQ(identifierOf([] { txToLogical(*makeRow({1., 2.})); }), "TALVOR:logical:NotScalar");
}

TEST(Array, ScalarTextIsOneRowOrOneString) {
  EXPECT_EQ(txCreateText("like")->scalarText(), u"like");
  EXPECT_EQ(txCreateText("")->scalarText(), u"");
  EXPECT_EQ(makeUninitialized(DimVector{1, 0}, txClassChar)->scalarText(), u"");
  EXPECT_EQ(makeString(u"like")->scalarText(), u"like");
  EXPECT_EQ(makeMissingString()->scalarText(), std::nullopt);
  EXPECT_EQ(makeStrings(DimVector{1, 2})->scalarText(), std::nullopt);
  EXPECT_EQ(makeZeros(DimVector{2, 2}, txClassChar)->scalarText(), std::nullopt);
  EXPECT_EQ(makeZeros(DimVector{0, 3}, txClassChar)->scalarText(), std::nullopt);
  EXPECT_EQ(txCreateDouble(65)->scalarText(), std::nullopt);
}

TEST(Array, StringElementsAreTextsOrMissing) {
  txArrayPtr const first = makeStrings(DimVector{2, 1});
  txArrayPtr const second = txShare(*first);
  setString(*second, 1, std::nullopt);
  EXPECT_EQ(stringAt(*first, 1), u"");
  EXPECT_EQ(stringAt(*second, 1), std::nullopt);
  EXPECT_EQ(identifierOf([&] { stringAt(*first, 2); }), "TALVOR:array:IndexOutOfRange");
}

TEST(Array, TextConversionsKeepEveryElementOfACharMatrix) {
  txArrayPtr const matrix =
      makeArray<char16_t>(DimVector{2, 2}, std::u16string_view(u"ab\u00E9\u20AC"));
  std::unique_ptr<char, txFree_deleter> const narrow(txArrayToString(*matrix));
  EXPECT_STREQ(narrow.get(), "ab\xE9?");
  EXPECT_EQ(txArrayToU16String(*matrix), u"ab\u00E9\u20AC");
  EXPECT_EQ(txArrayToString(*makeString(u"x")), nullptr);
  EXPECT_EQ(identifierOf([] { txArrayToU16String(*makeMissingString()); }),
            "TALVOR:string:MissingNotSupported");
  EXPECT_EQ(identifierOf([] { txArrayToU16String(*txCreateDouble(1)); }),
            "TALVOR:string:MustBeStringScalarOrCharacterVector");
}

TEST(Array, TooLargeAnArrayIsAnErrorBeforeAnythingIsAllocated) {
  std::int64_t const before = allocationCounts().liveBlocks;
  resetPeakBytes();
  std::int64_t const peakBefore = peakBytes();
  for (DimVector const& dims :
       {DimVector{std::uint64_t{1} << 40, 1 << 20},
        DimVector{std::uint64_t{1} << 32, std::uint64_t{1} << 32},
        DimVector{std::uint64_t{1} << 61, 1}, DimVector{1'000'000, 1'000'000}}) {
    EXPECT_EQ(identifierOf([&] { txCreateUninitialized(dims, txClassDouble); }),
              "TALVOR:array:SizeLimitExceeded");
    EXPECT_EQ(identifierOf([&] { txCreateCell(dims); }), "TALVOR:array:SizeLimitExceeded");
  }
  EXPECT_EQ(peakBytes(), peakBefore);
  EXPECT_EQ(allocationCounts().liveBlocks, before);
  // Nothing to hold, however long the other side is.
  EXPECT_TRUE(
      txCreateUninitialized(DimVector{0, std::uint64_t{1} << 47}, txClassDouble)->isEmpty());
}

}  // namespace
