#include <gmock/gmock.h>

#include "rng/mr_functions.h"
#include "tests/support/identifiers.h"

namespace {

using testing_support::argumentsOf;
using testing_support::identifierOf;

struct Row {
  char const* name;
  char const* otherSpelling;
  bool substreams;
  int stateClass;
  unsigned long stateLen;
  char const* nativeNormals;
};

class Factory : public ::testing::TestWithParam<Row> {
 protected:
  static std::unique_ptr<randstream> make(char const* type, unsigned long numStreams,
                                          unsigned long index, unsigned long nParams = 0) {
    unsigned long params[1] = {0};
    return std::unique_ptr<randstream>(
        mrCreateRNGStream(type, numStreams, index, 7, params, nParams));
  }
  static std::string id(char const* key) {
    return std::string("TALVOR:RandStream:") + GetParam().name + ':' + key;
  }
};

TEST_P(Factory, KnowsTheNameInAnyCaseAndKeepsItsSpelling) {
  std::string capitals = GetParam().name;
  for (char& c : capitals) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const auto stream = make(capitals.c_str(), 1, 0);
  EXPECT_EQ(stream->generatorType(), capitals);
  EXPECT_STREQ(stream->getRandnAlg(),
               *GetParam().nativeNormals ? GetParam().nativeNormals : "Ziggurat");
  if (*GetParam().otherSpelling) {
    EXPECT_STREQ(make(GetParam().otherSpelling, 1, 0)->generatorType(), GetParam().otherSpelling);
  }
  double u = 0;
  stream->randuFcn(&u, 1);
  EXPECT_TRUE(u > 0 && u < 1);
}

TEST_P(Factory, ChecksParametersFirstAndStreamsThen) {
  EXPECT_EQ(identifierOf([&] { make(GetParam().name, ~0UL, ~0UL, 1); }), id("InvalidParameter"));
  EXPECT_EQ(identifierOf([&] { make(GetParam().name, 0, 0); }), "no error");
  if (GetParam().substreams) {
    EXPECT_EQ(identifierOf([&] { make(GetParam().name, ~0UL, 0); }), id("TooManyStreams"));
    EXPECT_EQ(identifierOf([&] { make(GetParam().name, 1, ~0UL); }), id("TooManyStreams"));
    EXPECT_EQ(identifierOf([&] { make(GetParam().name, 2, 9); }), "no error");
  } else {
    EXPECT_EQ(identifierOf([&] { make(GetParam().name, 2, 0); }), id("MultipleStreams"));
    EXPECT_EQ(identifierOf([&] { make(GetParam().name, 1, 1); }), id("MultipleStreams"));
  }
}

TEST_P(Factory, FreshStateIsAcceptedBackAndRestoresTheSequence) {
  for (const unsigned seed : {0U, 1U, 4294967295U}) {
    std::unique_ptr<randstream> stream(mrCreateRNGStream(GetParam().name, 1, 0, seed, nullptr, 0));
    txClassID classID{};
    unsigned long length = 0;
    ASSERT_EQ(stream->getNumStateComponents(), 1U);
    stream->getStateComponentTypes(1, &classID, &length);
    EXPECT_EQ(classID, GetParam().stateClass + 6);
    EXPECT_EQ(length, GetParam().stateLen);

    std::vector<char> state(stream->getStateBufLen());
    std::vector<double> before(700), after(700);
    for (const std::size_t drawnFirst : {0, 1, 3, 700}) {
      stream->randuFcn(before.data(), drawnFirst);
      stream->getStateBuf(state.data(), state.size());
      stream->randuFcn(before.data(), before.size());
      stream->setStateBuf(state.data(), state.size());
      stream->randuFcn(after.data(), after.size());
      EXPECT_EQ(before, after) << "seed " << seed << " after " << drawnFirst;
    }
  }
}

TEST_P(Factory, AllZeroStateIsRefusedAndLeavesTheStreamAsItWas) {
  const auto stream = make(GetParam().name, 1, 0);
  const auto twin = make(GetParam().name, 1, 0);
  std::vector<char> zeros(stream->getStateBufLen());
  EXPECT_EQ(identifierOf([&] { stream->setStateBuf(zeros.data(), zeros.size()); }),
            id("InvalidState"));
  double a[10], b[10];
  stream->randuFcn(a, 10);
  twin->randuFcn(b, 10);
  EXPECT_TRUE(std::equal(a, a + 10, b));
}

TEST_P(Factory, ResetReturnsToTheStartOfTheSeed) {
  const auto stream = make(GetParam().name, 1, 0);
  double first[50], again[50];
  stream->randuFcn(first, 50);
  stream->reset(8);
  stream->randuFcn(again, 50);
  EXPECT_FALSE(std::equal(first, first + 50, again)) << "another seed, another sequence";
  stream->reset(7);
  stream->randuFcn(again, 50);
  EXPECT_TRUE(std::equal(first, first + 50, again));
}

constexpr bool Single = false;
constexpr bool Substreams = true;
#define TFL_GENERATOR(name, core, otherSpelling, family, stateClass, stateLen, normals, period) \
  Row{#name, otherSpelling, family, stateClass, stateLen, normals},
const std::vector<Row> kGenerators = {
#include "tfl_rng/generators.def"
};
#undef TFL_GENERATOR
INSTANTIATE_TEST_SUITE_P(Generators, Factory, ::testing::ValuesIn(kGenerators),
                         [](auto const& row) { return row.param.name; });

TEST(FactoryNames, UnknownNamesAreReportedAsGiven) {
  for (char const* name : {"twister", "legacy", "mt19937ar ", "", "MT 19937"}) {
    const auto make = [&] { delete mrCreateRNGStream(name, 1, 0, 0, nullptr, 0); };
    EXPECT_EQ(identifierOf(make), "TALVOR:RandStream:create:UnknownRNGType");
    EXPECT_EQ(argumentsOf(make), name);
  }
  EXPECT_EQ(identifierOf([] { delete mrCreateRNGStream(nullptr, 1, 0, 0, nullptr, 0); }),
            "TALVOR:RandStream:create:UnknownRNGType");
}

}  // namespace
