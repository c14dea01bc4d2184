#include <gmock/gmock.h>

#include "rng/mr_functions.h"
#include "tests/support/identifiers.h"
#include "tests/support/turkish_locale.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

using testing_support::argumentsOf;
using testing_support::identifierOf;

class Factory : public ::testing::TestWithParam<tfl_rng::Generator> {
 protected:
  static std::unique_ptr<randstream> make(char const* type, std::uint64_t numStreams,
                                          std::uint64_t index, std::uint64_t nParams = 0) {
    std::uint64_t params[1] = {0};
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

// What the plug-ins make of them is their tests' matter.
TEST_P(Factory, PassesStreamsAndParametersOn) {
  EXPECT_EQ(identifierOf([&] { make(GetParam().name, ~0UL, ~0UL, 1); }), id("InvalidParameter"));
  EXPECT_EQ(identifierOf([&] { make(GetParam().name, 0, 0); }), "no error");
  const std::string tooMany = id(GetParam().hasSubstreams() ? "TooManyStreams" : "MultipleStreams");
  EXPECT_EQ(identifierOf([&] { make(GetParam().name, ~0UL, 0); }), tooMany);
  EXPECT_EQ(identifierOf([&] { make(GetParam().name, 1, ~0UL); }), tooMany);
}

TEST_P(Factory, FreshStateIsAcceptedBackAndRestoresTheSequence) {
  const auto stream = make(GetParam().name, 1, 0);
  std::vector<char> state(stream->getStateBufLen());
  EXPECT_EQ(state.size(), GetParam().stateLen * (GetParam().stateClass == 7 ? 4 : 8));
  std::vector<double> before(700), after(700);
  stream->getStateBuf(state.data(), state.size());
  stream->randuFcn(before.data(), before.size());
  stream->setStateBuf(state.data(), state.size());
  stream->randuFcn(after.data(), after.size());
  EXPECT_EQ(before, after);
}

INSTANTIATE_TEST_SUITE_P(Generators, Factory,
                         ::testing::ValuesIn(tfl_rng::generators().begin(),
                                             tfl_rng::generators().end()),
                         [](auto const& row) { return row.param.name; });

TEST(FactoryNames, UnknownNamesAreReportedAsGiven) {
  for (char const* name : {"twister", "Philox", "legacy", "mt19937ar ", "", "MT 19937"}) {
    const auto make = [&] { delete mrCreateRNGStream(name, 1, 0, 0, nullptr, 0); };
    EXPECT_EQ(identifierOf(make), "TALVOR:RandStream:create:UnknownRNGType");
    EXPECT_EQ(argumentsOf(make), name);
  }
  EXPECT_EQ(identifierOf([] { delete mrCreateRNGStream(nullptr, 1, 0, 0, nullptr, 0); }),
            "TALVOR:RandStream:create:UnknownRNGType");
}

using NamesInTurkish = testing_support::TurkishLocale;

TEST_F(NamesInTurkish, AreComparedAndCapitalisedInAscii) {
  for (char const* type : {"PHILOX4X32_10", "PHILOX4X32-10", "MLFG6331_64"}) {
    std::unique_ptr<randstream> const stream(mrCreateRNGStream(type, 1, 0, 0, nullptr, 0));
    for (char const* method : {"ZIGGURAT", "INVERSION", "Inversion"}) {
      stream->setRandnAlg(method);
      EXPECT_STREQ(stream->getRandnAlg(), method);
    }
    stream->setRandnAlg("inversion");
    EXPECT_STREQ(stream->getRandnAlg(), "Inversion");
  }
}

}  // namespace
