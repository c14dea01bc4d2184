// The properties of stream objects.

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "builtins/stream_methods.h"
#include "embedded_host/allocator.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"
#include "tests/support/streams.h"
#include "vmstate/legacy_mode.h"

namespace {

using namespace testing_support;
using testing::ElementsAre;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

txArrayPtr uint64Of(std::uint64_t value) { return embedded_host::makeScalar(value); }

class StreamProperties : public VmTest {
 protected:
  StreamProperties() {
    vm.context().setWarningSink(
        [this](auto const& id, std::string const&) { warnings.push_back(id.identifier()); });
  }

  std::vector<std::string> warnings;
};

TEST_F(StreamProperties, PropertyNamesMayBeShortened) {
  Object const object("mrg32k3a");
  struct Row {
    char const* name;
    char const* shape;  // null: no property
  };
  constexpr Row kRows[] = {
      {"s", nullptr},
      {"St", "12x1 uint32"},
      {"STATE", "12x1 uint32"},
      {"stateX", nullptr},
      {"SUBS", "1x1 double"},
      {"r", "1x8 char"},
      {"antithetic", "1x1 logical"},
      {"F", "1x1 logical"},
      {"para", "4x1 uint64"},
      {"", nullptr},
      {"fulll", nullptr},
      {"\xC3\x9F", nullptr},
  };
  for (Row const& row : kRows) {
    SCOPED_TRACE(row.name);
    txArrayPtr const value = object.get(row.name);
    ASSERT_EQ(value != nullptr, row.shape != nullptr);
    if (value) {
      EXPECT_EQ(shapeOf(*value), row.shape);
    }
  }
  EXPECT_EQ(identifierOf([&] { object.set("nothing", toArgument(1.0)); }), "no error");
}

TEST_F(StreamProperties, StateRestoresTheSequence) {
  for (char const* type : {"mt19937ar", "dsfmt19937", "mrg32k3a", "philox4x32_10", "swb2712"}) {
    SCOPED_TRACE(type);
    Object const object(type);
    object.draw(3);
    txArrayPtr const saved = object.get("State");
    std::vector<double> const drawn = object.draw(5);
    object.set("state", txShare(*saved));
    EXPECT_EQ(object.draw(5), drawn);
  }
}

TEST_F(StreamProperties, LegacyStateIsACellOfComponents) {
  Object const object(Handle(call(getLegacyRandStream)), "legacy", 1);
  txArrayPtr const state = object.get("State");
  ASSERT_EQ(shapeOf(*state), "1x6 cell");
  EXPECT_EQ(shapeOf(*state->cell(3)), "625x1 uint32");
  std::vector<double> const drawn = object.draw(4);
  object.set("State", txShare(*state));
  EXPECT_EQ(object.draw(4), drawn);

  constexpr char const* kCount = "TALVOR:RandStream:set:InvalidNumStateComponents";
  EXPECT_EQ(object.refusal("State", toArgument(1.0)), kCount);
  EXPECT_EQ(object.refusal("State", txCreateCell(std::array<std::uint64_t, 2>{1, 5})), kCount);
  EXPECT_EQ(object.refusal("State", txCreateCell(std::array<std::uint64_t, 2>{1, 6})), kCount);
  txArrayPtr wrongLength = txShare(*state);
  wrongLength->setCell(3, typed<std::uint32_t>(1));
  EXPECT_EQ(object.refusal("State", std::move(wrongLength)),
            "TALVOR:RandStream:set:InvalidStateLen");
  txArrayPtr wrongClass = txShare(*state);
  wrongClass->setCell(5, toArgument("text"));
  EXPECT_EQ(object.refusal("State", std::move(wrongClass)),
            "TALVOR:RandStream:set:InvalidStateClass");
}

TEST_F(StreamProperties, StateOfAnotherKindIsRefused) {
  Object const object("swb2712");
  std::uint64_t const length = object.get("State")->numel();
  auto const zeros = [&](std::uint64_t n, txClassID id, txComplexity complexity) {
    return embedded_host::makeZeros(std::array<std::uint64_t, 2>{n, 1}, id, complexity);
  };
  constexpr char const* kClass = "TALVOR:RandStream:set:InvalidStateClass";
  EXPECT_EQ(object.refusal("State", zeros(length, txClassSingle, txComplexity::real)), kClass);
  EXPECT_EQ(object.refusal("State", zeros(length, txClassDouble, txComplexity::complex)), kClass);
  EXPECT_EQ(object.refusal("State", embedded_host::toSparse(
                                        *zeros(length, txClassDouble, txComplexity::real))),
            kClass);
  EXPECT_EQ(object.refusal("State", cellOf(nullptr)), kClass);
  EXPECT_EQ(object.refusal("State", zeros(length + 1, txClassDouble, txComplexity::real)),
            "TALVOR:RandStream:set:InvalidStateLen");
  EXPECT_EQ(argumentsOf([&] { object.set("State", emptyMatrix()); }), "swb2712");
  EXPECT_EQ(object.refusal("State", zeros(length, txClassDouble, txComplexity::real)),
            "TALVOR:RandStream:swb2712:InvalidState");
}

TEST_F(StreamProperties, SubstreamCountsFromOne) {
  Object const object("mrg32k3a");
  EXPECT_EQ(numbers(*object.get("Substream")), std::vector{1.0});
  object.set("Substream", toArgument(4.0));
  EXPECT_EQ(object.stream().getSubstream(), 3U);
  object.set("Substream", uint64Of(5));
  EXPECT_EQ(shapeOf(*object.get("Substream")), "1x1 double");
  EXPECT_EQ(numbers(*object.get("Substream")), std::vector{5.0});
  object.set("Substream", typed<std::int8_t>(2));
  EXPECT_EQ(object.stream().getSubstream(), 1U);
  object.set("Substream", sparseScalar(3));
  EXPECT_EQ(object.stream().getSubstream(), 2U);
}

TEST_F(StreamProperties, LargeSubstreamIsReadAsUint64WithWarning) {
  Object const object("mrg32k3a");
  object.set("Substream", uint64Of((std::uint64_t{1} << 48) - 1));
  EXPECT_EQ(shapeOf(*object.get("Substream")), "1x1 double");
  EXPECT_THAT(warnings, ElementsAre());
  object.set("Substream", toArgument(0x1p48));
  EXPECT_EQ(shapeOf(*object.get("Substream")), "1x1 uint64");
  EXPECT_THAT(warnings, ElementsAre("TALVOR:RandStream:get:SubstreamIndexTooLarge"));
}

TEST_F(StreamProperties, SubstreamValuesThatAreNoIndexAreRefused) {
  Object const object("mrg32k3a");
  txArrayPtr values[] = {
      toArgument(1.5),  toArgument(0.0),         toArgument(-1.0),
      toArgument(kInf), toArgument(kNaN),        typed<float>(1.5),
      uint64Of(0),      typed<std::int64_t>(-1), typed<bool>(true),
      row({1, 2}),      emptyMatrix(),           imaginary(1),
      toArgument("1"),  cellOf(toArgument(1.0)), typed<std::int8_t>(0),
  };
  for (txArrayPtr& value : values) {
    SCOPED_TRACE(&value - values);
    EXPECT_EQ(object.refusal("Substream", std::move(value)),
              "TALVOR:RandStream:set:InvalidSubstreamIndex");
  }
  Object const twister("mt19937ar");
  EXPECT_EQ(twister.refusal("Substream", toArgument(2.0)),
            "TALVOR:RandStream:set:SubstreamsNotSupported");
  EXPECT_EQ(twister.refusal("Substream", toArgument(1.0)), "no error");
}

TEST_F(StreamProperties, NormalMethodIsChosenByAnyTextInAnyCase) {
  Object const object("mrg32k3a");
  EXPECT_EQ(textOf(*object.get("RandnAlg")), "Ziggurat");
  object.set("RandnAlg", toArgument("POLAR"));
  EXPECT_EQ(textOf(*object.get("RandnAlg")), "Polar");
  object.set("RandnAlg", embedded_host::makeString(u"Inversion"));
  EXPECT_EQ(textOf(*object.get("RandnAlg")), "Inversion");
  EXPECT_EQ(object.refusal("RandnAlg", toArgument("Box")), "TALVOR:RandStream:set:UnknownRandnAlg");
  EXPECT_EQ(object.refusal("RandnAlg", embedded_host::makeMissingString()),
            "TALVOR:string:MissingNotSupported");
  EXPECT_EQ(object.refusal("RandnAlg", toArgument(1.0)),
            "TALVOR:string:MustBeStringScalarOrCharacterVector");
  EXPECT_EQ(object.refusal("RandnAlg", embedded_host::makeTextUtf8("P\xC3\xB6lar")),
            "TALVOR:string:NotAscii");
}

TEST_F(StreamProperties, FlagsTakeAnyScalarWithATruthValue) {
  Object const object("mrg32k3a");
  for (char const* name : {"Antithetic", "FullPrecision"}) {
    SCOPED_TRACE(name);
    std::string const error = std::string("TALVOR:RandStream:set:Invalid") + name;
    for (bool on : {false, true}) {
      object.set(name, typed<double>(on ? 2 : 0));
      EXPECT_EQ(numbers(*object.get(name)), std::vector{on ? 1.0 : 0.0});
      object.set(name, typed<bool>(!on));
      EXPECT_EQ(numbers(*object.get(name)), std::vector{on ? 0.0 : 1.0});
    }
    EXPECT_EQ(object.refusal(name, row({1, 0})), error);
    EXPECT_EQ(object.refusal(name, emptyMatrix()), error);
    EXPECT_EQ(object.refusal(name, toArgument("on")), error);
    EXPECT_EQ(object.refusal(name, toArgument(kNaN)), "TALVOR:logical:NaN");
    EXPECT_EQ(object.refusal(name, cellOf(nullptr)), "TALVOR:invalidConversion");
  }
  double const u = [] { return Object("mrg32k3a").draw(1).front(); }();
  Object const mirrored("mrg32k3a");
  mirrored.set("a", typed<bool>(true));
  EXPECT_EQ(mirrored.draw(1).front(), 1 - u);
}

TEST_F(StreamProperties, ParametersAreReadOnly) {
  Object const object("mrg32k3a");
  EXPECT_THAT(numbers(*object.get("Parameters")), ElementsAre(0x1p63, 0x1p51, 127, 76));
  EXPECT_EQ(object.refusal("Parameters", toArgument(1.0)), "TALVOR:RandStream:set:WrongNumberArgs");
}

TEST_F(StreamProperties, ReadingWithAValueIsNeitherReadingNorWriting) {
  Object const object("mrg32k3a");
  EXPECT_EQ(identifierOf(
                [&] { call(RandStream::getset, args("State", object.share(), emptyMatrix()), 1); }),
            "TALVOR:RandStream:set:WrongNumberArgs");
  EXPECT_EQ(identifierOf([] { call(RandStream::getset, args("State")); }), "TALVOR:minrhs");
  EXPECT_EQ(identifierOf([] { call(RandStream::getset, args(1, 2, 3, 4)); }), "TALVOR:maxrhs");
}

TEST_F(StreamProperties, StateOutOfMemoryIsLeftAsItWas) {
  Object const object("mrg32k3a");
  txArrayPtr const other = Object("mrg32k3a", 2).get("State");
  object.draw(3);
  std::size_t const before = object.state();
  bool happened = true;
  for (std::uint64_t k = 1; happened; ++k) {
    ASSERT_LT(k, 100U);
    std::string error;
    {
      embedded_host::FailingAllocation const failing(k);
      error = identifierOf([&] {
        object.get("State");
        object.set("State", txShare(*other));
      });
      happened = failing.happened();
    }
    EXPECT_EQ(error, happened ? "TALVOR:nomem" : "no error");
    EXPECT_EQ(object.state() == before, happened) << "request " << k;
  }
}

}  // namespace
