// What the catalogue says of the generators is so, and users find them by their names.

#include <gmock/gmock.h>

#include <bit>

#include "host/except.h"
#include "rng/create_stream.h"
#include "rng/generator_names.h"

namespace {

class Catalogue : public testing::TestWithParam<tfl_rng::Generator> {
 protected:
  tfl_rng::GeneratorTraits const& traits_ = GetParam().traits;

  static std::unique_ptr<randstream> make(bool fullPrecision) {
    std::unique_ptr<randstream> stream = rng::createStream(GetParam().name, 7);
    stream->setFullPrecision(fullPrecision);
    return stream;
  }
  static std::vector<double> draw(randstream& stream, std::size_t n) {
    std::vector<double> values(n);
    stream.randuFcn(values.data(), n);
    return values;
  }
};

TEST_P(Catalogue, PromisesNoMoreBitsThanVary) {
  for (bool const full : {true, false}) {
    std::uint64_t changes = 0;
    std::uint64_t last = 0;
    for (double const u : draw(*make(full), 1000)) {
      auto const word = static_cast<std::uint64_t>(u * 0x1p53);
      changes |= last ^ word;
      last = word;
    }
    EXPECT_LE(full ? traits_.bits : traits_.reducedBits, 53 - std::countr_zero(changes)) << full;
  }
}

TEST_P(Catalogue, KnowsPrecisionsAndTheirSteps) {
  auto const full = make(true);
  auto const reduced = make(false);
  bool const same = draw(*full, 30) == draw(*reduced, 30);
  EXPECT_NE(same, GetParam().hasTwoPrecisions());
  // The steps of 30 full draws.
  int const steps = GetParam().hasTwoPrecisions() ? traits_.stepsADraw : 1;
  draw(*reduced, 30 * static_cast<std::size_t>(steps - 1));
  reduced->setFullPrecision(true);
  EXPECT_EQ(draw(*full, 5), draw(*reduced, 5));
}

TEST_P(Catalogue, KnowsWhoHasSubstreams) {
  EXPECT_EQ(make(true)->hasSubstreams(), GetParam().hasSubstreams());
}

TEST_P(Catalogue, GivesItForEverySpellingInAnyCase) {
  for (std::string spelling :
       {GetParam().name, GetParam().otherSpelling, GetParam().traits.shortName}) {
    if (spelling.empty()) continue;
    for (char& c : spelling) c = ascii_case::upper(c);
    EXPECT_STREQ(rng::createStream(spelling, 7)->generatorType(), GetParam().name);
    spelling.back() = '?';
    EXPECT_EQ(rng::closestGenerator(spelling).size(), spelling.size()) << spelling;
  }
}

INSTANTIATE_TEST_SUITE_P(Generators, Catalogue,
                         testing::ValuesIn(tfl_rng::generators().begin(),
                                           tfl_rng::generators().end()),
                         [](auto const& row) { return row.param.name; });

// The text of the error that a call ends with.
template <class Call>
std::string textOf(Call&& call) {
  try {
    call();
  } catch (foundation::core::except::AnyException const& error) {
    return error.GetID() + ": " + error.text();
  }
  return "no error";
}

TEST(CreateStream, TellsWhatWouldHaveBeenRight) {
  using testing::EndsWith;
  using testing::StartsWith;
  auto const create = [](char const* name, std::uint64_t index = 0, std::uint64_t count = 1) {
    return textOf([&] { rng::createStream(name, 7, index, count); });
  };
  EXPECT_THAT(create("twistr"),
              EndsWith("no generator named \"twistr\". Did you mean \"twister\"?"));
  EXPECT_THAT(create("legacy"), EndsWith("no generator named \"legacy\"."));
  EXPECT_THAT(create(""), EndsWith("no generator named \"\"."));
  EXPECT_THAT(create(std::string(100'000, 'x').c_str()),
              StartsWith("TALVOR:RandStream:create:Unk"));
  EXPECT_THAT(create("philox", 4, 4), StartsWith("TALVOR:RandStream:create:BadStreamIndex: "));
  EXPECT_THAT(create("philox", 4, 4), EndsWith("Counted from 0, index 4 is not below 4."));
  EXPECT_THAT(create("philox", ~0UL, 4), StartsWith("TALVOR:RandStream:create:BadStreamIndex: "));
  EXPECT_THAT(create("philox", 0, 0), StartsWith("TALVOR:RandStream:create:BadNumStreams: "));
  EXPECT_THAT(create("twister", 1, 2), StartsWith("TALVOR:RandStream:mt19937ar:MultipleStreams: "));
  EXPECT_EQ(rng::createStream("philox", 7, 3, 4)->streamIndex(), 3U);
}

}  // namespace
