#include "host/sort.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "embedded_host/allocator.h"
#include "embedded_host/array.h"
#include "tests/support/every_target.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;

using testing_support::identifierOf;

namespace {

txArrayPtr columnOf(std::vector<double> const& values) {
  return makeArray<double>(std::array<std::uint64_t, 2>{values.size(), 1},
                           std::span<const double>(values));
}

struct Sorted {
  std::vector<double> values, positions;
};

Sorted sortOf(txArrayPtr const& array) {
  txArrayPtr out[2];
  txArray const* in[] = {array.get()};
  mathcoreSortFcn(2, out, 1, in);
  auto const values = elementsOf<double>(*out[0]), positions = elementsOf<double>(*out[1]);
  return {{values.begin(), values.end()}, {positions.begin(), positions.end()}};
}

// Stable ascending order with NaN last, by insertion into an ordered multimap of the library.
std::vector<double> referencePositions(std::vector<double> const& values) {
  std::vector<std::size_t> order(values.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  auto const before = [&](std::size_t a, std::size_t b) {
    if (std::isnan(values[a]) || std::isnan(values[b])) {
      return !std::isnan(values[a]) && std::isnan(values[b]);
    }
    return values[a] < values[b];
  };
  std::stable_sort(order.begin(), order.end(), before);
  std::vector<double> positions;
  for (std::size_t i : order) positions.push_back(static_cast<double>(i + 1));
  return positions;
}

void expectSorted(std::vector<double> const& values) {
  Sorted const sorted = sortOf(columnOf(values));
  std::vector<double> const expected = referencePositions(values);
  ASSERT_EQ(sorted.positions, expected);
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_EQ(std::bit_cast<std::uint64_t>(sorted.values[i]),
              std::bit_cast<std::uint64_t>(values[static_cast<std::size_t>(expected[i]) - 1]))
        << i;
  }
}

TEST(Sort, OrdersSpecialValuesAndKeepsTies) {
  double const inf = std::numeric_limits<double>::infinity();
  Sorted const sorted = sortOf(columnOf({NAN, 1, -0.0, inf, 0.0, -NAN, -inf, -1, 1, 0x1p-1074}));
  EXPECT_THAT(sorted.positions, ElementsAre(7, 8, 3, 5, 10, 2, 9, 4, 1, 6));
  EXPECT_TRUE(std::signbit(sorted.values[2]));
  EXPECT_FALSE(std::signbit(sorted.values[3]));
}

// Lengths around the limits between methods, and kinds of data on which a sort by leading bits goes
// wrong: few distinct values, keys that differ in their last bits only, one crowded bucket, both
// signs, sorted runs.
TEST(Sort, AgreesWithTheLibraryOnEveryKindOfDataAndInstructionSet) {
  std::mt19937_64 bits(1);
  auto const uniform = [&] { return (static_cast<double>(bits() >> 11) + 0.5) * 0x1p-53; };
  struct Kind {
    char const* name;
    std::function<double(std::size_t)> value;
  };
  std::vector<Kind> const kinds = {
      {"uniform", [&](std::size_t) { return uniform(); }},
      {"53-bit uniform", [&](std::size_t) { return std::floor(uniform() * 0x1p53) * 0x1p-53; }},
      {"ties below 2^-53",
       [&](std::size_t i) { return uniform() * 0x1p-40 + (i % 2 ? 0x1p-20 : 0); }},
      {"with both zeros", [&](std::size_t i) { return i % 3   ? uniform()
                                                      : i % 2 ? 0.0
                                                              : -0.0; }},
      {"one outside", [&](std::size_t i) { return i == 777 ? 1.0 : uniform(); }},
      {"one NaN", [&](std::size_t i) { return i == 63 ? NAN : uniform(); }},
      {"all in the last block", [&](std::size_t) { return 1 - uniform() * 0x1p-20; }},
      {"both signs", [&](std::size_t) { return uniform() - 0.5; }},
      {"32-bit uniforms with ties",
       [&](std::size_t) { return std::floor(uniform() * 1000) / 1000; }},
      {"two values", [&](std::size_t) { return bits() & 1 ? 0.25 : 0.75; }},
      {"one value", [](std::size_t) { return 0.5; }},
      {"last bits only",
       [&](std::size_t) { return 0.5 + static_cast<double>(bits() & 7) * 0x1p-53; }},
      {"crowded", [&](std::size_t i) { return i % 16 ? 0.5 + uniform() * 0x1p-30 : uniform(); }},
      {"rising", [](std::size_t i) { return static_cast<double>(i); }},
      {"falling", [](std::size_t i) { return -static_cast<double>(i); }},
      {"any bits", [&](std::size_t) { return std::bit_cast<double>(bits()); }},
      {"tiny", [&](std::size_t) { return std::bit_cast<double>(bits() & 0xFFFFF); }},
  };
  for (Kind const& kind : kinds) {
    for (std::size_t n : {0, 1, 2, 3, 10, 63, 64, 100, 1000, 1023, 1024, 1025, 5000, 70'000}) {
      SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(n));
      std::vector<double> values;
      for (std::size_t i = 0; i < n; ++i) values.push_back(kind.value(i));
      every_target::run([&] { expectSorted(values); });
    }
  }
}

TEST(Sort, GivesValuesAloneWhenPositionsAreNotAskedFor) {
  txArrayPtr const row = makeRow({3., 1., 2.});
  txArrayPtr out[2];
  txArray const* in[] = {row.get()};
  mathcoreSortFcn(1, out, 1, in);
  EXPECT_THAT(elementsOf<double>(*out[0]), ElementsAre(1, 2, 3));
  EXPECT_THAT(out[0]->dims(), ElementsAre(1, 3));
  EXPECT_EQ(out[1], nullptr);
}

TEST(Sort, RefusesWhatItCannotSort) {
  auto const sortError = [](txArrayPtr const& array) {
    return identifierOf([&] { sortOf(array); });
  };
  EXPECT_EQ(sortError(makeRow({1.f})), "TALVOR:sort:NotDoubleVector");
  EXPECT_EQ(sortError(makeComplex(1, 2)), "TALVOR:sort:NotDoubleVector");
  EXPECT_EQ(sortError(toSparse(*txCreateDouble(1))), "TALVOR:sort:NotDoubleVector");
  EXPECT_EQ(sortError(makeZeros(std::array<std::uint64_t, 2>{2, 2}, txClassDouble)),
            "TALVOR:sort:NotDoubleVector");
  txArrayPtr out[3];
  txArray const* in[] = {nullptr, nullptr};
  EXPECT_EQ(identifierOf([&] { mathcoreSortFcn(3, out, 1, in); }), "TALVOR:maxlhs");
  EXPECT_EQ(identifierOf([&] { mathcoreSortFcn(1, out, 2, in); }), "TALVOR:maxrhs");
  EXPECT_EQ(identifierOf([&] { mathcoreSortFcn(1, out, 0, in); }), "TALVOR:minrhs");
}

// What random permutations pay for: the two results, one of them a little larger than its values.
TEST(Sort, OfUniformsTakesLittleMemoryBeyondItsResults) {
  constexpr std::size_t kCount = 2'000'000;
  std::mt19937_64 bits(2);
  std::vector<double> values(kCount);
  for (double& value : values) value = static_cast<double>(bits() >> 11) * 0x1p-53;
  txArrayPtr const column = columnOf(values);
  resetPeakBytes();
  std::int64_t const before = peakBytes();
  Sorted const sorted = sortOf(column);
  EXPECT_LT(static_cast<double>(peakBytes() - before), 2.5 * 8 * kCount);
  EXPECT_TRUE(std::is_sorted(sorted.values.begin(), sorted.values.end()));
}

TEST(Sort, FailureLeavesNothingBehind) {
  std::vector<double> values;
  for (int i = 0; i < 20'000; ++i) values.push_back(std::sin(i));
  txArrayPtr const column = columnOf(values);
  std::int64_t const before = allocationCounts().liveBlocks;
  std::uint64_t k = 0;
  for (bool failed = true; failed;) {
    FailingAllocation const failure(++k);
    std::string const error = identifierOf([&] { sortOf(column); });
    failed = failure.happened();
    EXPECT_EQ(error, failed ? "TALVOR:nomem" : "no error") << k;
    EXPECT_EQ(allocationCounts().liveBlocks, before) << k;
  }
}

}  // namespace
