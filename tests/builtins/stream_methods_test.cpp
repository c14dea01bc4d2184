// The native methods of stream objects.

#include <gmock/gmock.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "builtins/builtins.h"
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

class StreamMethods : public VmTest {
 protected:
  StreamMethods() {
    vm.context().setWarningSink(
        [this](auto const& id, std::string const&) { warnings.push_back(id.identifier()); });
  }

  std::vector<std::string> warnings;
};

// An object of a generator, and what can be done to it.
class Object {
 public:
  explicit Object(char const* type, double numStreams = 1)
      : Object(createStream(type, 7, numStreams), type, numStreams) {}
  Object(Handle handle, char const* type, double numStreams)
      : handle_(std::move(handle)), object_(objectOf(handle_, properties(type, numStreams))) {}

  txArrayPtr share() const { return txShare(*object_); }
  randstream& stream() const { return *mrGetCPPRandStreamFromTxArray(object_.get()); }
  std::size_t state() const { return stateOf(stream()); }

  txArrayPtr get(char const* name) const { return call(RandStream::getset, args(name, share())); }
  void set(char const* name, txArrayPtr value) const {
    call(RandStream::getset, args(name, share(), std::move(value)), 0);
  }
  // The identifier of the error of setting, and that nothing has changed.
  std::string refusal(char const* name, txArrayPtr value) const {
    auto const settings = [&] {
      return std::to_string(state()) + stream().getRandnAlg() +
             std::to_string(stream().antithetic()) + std::to_string(stream().fullPrecision()) +
             std::to_string(stream().getSubstream());
    };
    std::string const before = settings();
    std::string const error = identifierOf([&] { set(name, std::move(value)); });
    EXPECT_EQ(settings(), before);
    return error;
  }
  std::vector<double> draw(double n) const {
    return numbers(*call(RandStream::randstreamRand, args(share(), 1, n)));
  }

 private:
  static std::vector<std::pair<std::string, txArrayPtr>> properties(char const* type,
                                                                    double numStreams) {
    std::vector<std::pair<std::string, txArrayPtr>> result;
    result.emplace_back("Seed", typed<std::uint32_t>(7));
    result.emplace_back("Type", toArgument(type));
    result.emplace_back("NumStreams", typed<std::uint64_t>(numStreams));
    return result;
  }

  Handle handle_;
  txArrayPtr object_;
};

// create and deletefcn.

TEST_F(StreamMethods, CreateChecksClassesInOrder) {
  auto const attempt = [](txArrayPtr type, txArrayPtr numStreams, txArrayPtr index, txArrayPtr seed,
                          txArrayPtr params) {
    return identifierOf([&] {
      Handle const made(
          call(RandStream::create, args(std::move(type), std::move(numStreams), std::move(index),
                                        std::move(seed), std::move(params))));
    });
  };
  auto const type = [] { return toArgument("mrg32k3a"); };
  auto const one = [] { return uint64Of(1); };
  auto const seed = [] { return typed<std::uint32_t>(7); };
  auto const wrong = [] { return typed<std::int8_t>(1); };
  EXPECT_EQ(attempt(type(), one(), one(), seed(), emptyMatrix()), "no error");
  EXPECT_EQ(attempt(wrong(), wrong(), wrong(), wrong(), wrong()),
            "TALVOR:RandStream:create:InvalidRNGType");
  EXPECT_EQ(attempt(embedded_host::makeString(u"mrg32k3a"), one(), one(), seed(), emptyMatrix()),
            "TALVOR:RandStream:create:InvalidRNGType");
  EXPECT_EQ(attempt(type(), wrong(), wrong(), wrong(), wrong()),
            "TALVOR:RandStream:create:BadNumStreams");
  EXPECT_EQ(attempt(type(), one(), wrong(), wrong(), wrong()),
            "TALVOR:RandStream:create:BadStreamIndex");
  EXPECT_EQ(attempt(type(), one(), one(), wrong(), wrong()), "TALVOR:RandStream:create:BadSeed");
  EXPECT_EQ(attempt(type(), one(), one(), toArgument(7.0), wrong()),
            "TALVOR:RandStream:create:BadSeed");
  EXPECT_EQ(attempt(type(), one(), one(), seed(), row({1, 2, 3})),
            "TALVOR:RandStream:create:BadParams");
  EXPECT_EQ(attempt(type(), one(), one(), seed(), uint64Of(1)),
            "TALVOR:RandStream:mrg32k3a:InvalidParameter");
  EXPECT_EQ(attempt(type(), one(), uint64Of(0), seed(), emptyMatrix()),
            "TALVOR:RandStream:mrg32k3a:TooManyStreams");
  EXPECT_EQ(attempt(toArgument("twister"), one(), one(), seed(), emptyMatrix()),
            "TALVOR:RandStream:create:UnknownRNGType");
  EXPECT_EQ(identifierOf([] { callAll(RandStream::create, args(1), 2); }), "TALVOR:maxlhs");
  EXPECT_EQ(identifierOf([] { call(RandStream::create, args(1)); }), "TALVOR:minrhs");
}

TEST_F(StreamMethods, DeleteIgnoresWhatIsNoHandle) {
  for (auto make : {+[] { return toArgument(5.0); }, +[] { return uint64Of(0); },
                    +[] {
                      return embedded_host::makeRow<std::uint64_t>({1, 2});
                    }})
    EXPECT_EQ(identifierOf([&] { call(RandStream::deletefcn, args(make()), 0); }), "no error");
  EXPECT_EQ(identifierOf([] { call(RandStream::deletefcn, {}, 0); }), "TALVOR:minrhs");
}

TEST_F(StreamMethods, CreationOutOfMemoryLeavesNothingBehind) {
  Args const arguments =
      args("mrg32k3a", uint64Of(1), uint64Of(1), typed<std::uint32_t>(7), emptyMatrix());
  auto const blocks = embedded_host::allocationCounts().liveBlocks;
  for (std::uint64_t k = 1;; ++k) {
    ASSERT_LT(k, 50U);
    embedded_host::FailingAllocation const failing(k);
    std::string const error =
        identifierOf([&] { Handle const made(call(RandStream::create, arguments)); });
    EXPECT_EQ(embedded_host::allocationCounts().liveBlocks, blocks);
    EXPECT_EQ(error, failing.happened() ? "TALVOR:nomem" : "no error");
    if (!failing.happened()) break;
  }
}

// getset.

TEST_F(StreamMethods, PropertyNamesMayBeShortened) {
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

TEST_F(StreamMethods, StateRestoresTheSequence) {
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

TEST_F(StreamMethods, LegacyStateIsACellOfComponents) {
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

TEST_F(StreamMethods, StateOfAnotherKindIsRefused) {
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

TEST_F(StreamMethods, SubstreamCountsFromOne) {
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

TEST_F(StreamMethods, LargeSubstreamIsReadAsUint64WithWarning) {
  Object const object("mrg32k3a");
  object.set("Substream", uint64Of((std::uint64_t{1} << 48) - 1));
  EXPECT_EQ(shapeOf(*object.get("Substream")), "1x1 double");
  EXPECT_THAT(warnings, ElementsAre());
  object.set("Substream", toArgument(0x1p48));
  EXPECT_EQ(shapeOf(*object.get("Substream")), "1x1 uint64");
  EXPECT_THAT(warnings, ElementsAre("TALVOR:RandStream:get:SubstreamIndexTooLarge"));
}

TEST_F(StreamMethods, SubstreamValuesThatAreNoIndexAreRefused) {
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

TEST_F(StreamMethods, NormalMethodIsChosenByAnyTextInAnyCase) {
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

TEST_F(StreamMethods, FlagsTakeAnyScalarWithATruthValue) {
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

TEST_F(StreamMethods, ParametersAreReadOnly) {
  Object const object("mrg32k3a");
  EXPECT_THAT(numbers(*object.get("Parameters")), ElementsAre(0x1p63, 0x1p51, 127, 76));
  EXPECT_EQ(object.refusal("Parameters", toArgument(1.0)), "TALVOR:RandStream:set:WrongNumberArgs");
}

TEST_F(StreamMethods, ReadingWithAValueIsNeitherReadingNorWriting) {
  Object const object("mrg32k3a");
  EXPECT_EQ(identifierOf(
                [&] { call(RandStream::getset, args("State", object.share(), emptyMatrix()), 1); }),
            "TALVOR:RandStream:set:WrongNumberArgs");
  EXPECT_EQ(identifierOf([] { call(RandStream::getset, args("State")); }), "TALVOR:minrhs");
  EXPECT_EQ(identifierOf([] { call(RandStream::getset, args(1, 2, 3, 4)); }), "TALVOR:maxrhs");
}

// reset and advance.

TEST_F(StreamMethods, ResetReturnsToOwnOrNewSeed) {
  auto const reset = [](Object const& object, auto... seed) {
    call(RandStream::resetFcn, args(object.share(), std::move(seed)...), 0);
  };
  Object const object("mt19937ar");
  std::vector<double> const first = object.draw(4);
  reset(object);
  EXPECT_EQ(object.draw(4), first);
  reset(object, toArgument(0.9));
  EXPECT_EQ(object.draw(1), std::vector{0.81472368639317894});
  reset(object, toArgument(7.9));
  EXPECT_EQ(object.draw(4), first);
  reset(object, uint64Of(4294967295));
  EXPECT_EQ(object.stream().seed(), 4294967295U);

  Object const ofSeveral("mrg32k3a", 2);
  EXPECT_EQ(identifierOf([&] { reset(ofSeveral); }), "no error");
  Object const legacy(Handle(call(getLegacyRandStream)), "legacy", 1);
  EXPECT_EQ(identifierOf([&] { reset(legacy); }), "no error");
}

TEST_F(StreamMethods, ResetAndAdvanceRefuseInOrder) {
  Object const object("mrg32k3a");
  Object const ofSeveral("mrg32k3a", 2);
  Object const legacy(Handle(call(getLegacyRandStream)), "legacy", 1);
  auto const refusal = [](txBuiltin method, Object const& target, txArrayPtr value) {
    std::size_t const before = target.state();
    std::string const error =
        identifierOf([&] { call(method, args(target.share(), std::move(value)), 0); });
    EXPECT_EQ(target.state(), before);
    return error;
  };
  for (auto make : {+[] { return toArgument(0x1p32); }, +[] { return toArgument(-1.0); },
                    +[] { return toArgument(kNaN); },
                    +[] {
                      return row({1, 2});
                    },
                    +[] { return imaginary(1); }, +[] { return toArgument("7"); },
                    +[] { return emptyMatrix(); }, +[] { return typed<bool>(true); }}) {
    EXPECT_EQ(refusal(RandStream::resetFcn, object, make()), "TALVOR:RandStream:reset:BadSeed");
    EXPECT_EQ(refusal(RandStream::resetFcn, ofSeveral, make()),
              "TALVOR:RandStream:reset:SeedNotAllowed");
    EXPECT_EQ(refusal(RandStream::resetFcn, legacy, make()),
              "TALVOR:RandStream:reset:LegacySeedNotAllowed");
  }
  for (auto make : {+[] { return toArgument(-1.0); }, +[] { return toArgument(2.5); },
                    +[] { return toArgument(kNaN); }, +[] { return toArgument(kInf); },
                    +[] { return typed<std::int64_t>(-1); }, +[] { return imaginary(1); },
                    +[] {
                      return row({1, 2});
                    },
                    +[] { return toArgument("1"); }, +[] { return typed<bool>(true); }})
    EXPECT_EQ(refusal(RandStream::advance, object, make()), "TALVOR:RandStream:advance:BadNsteps");
  EXPECT_EQ(identifierOf([&] { callAll(RandStream::resetFcn, args(object.share()), 1); }),
            "TALVOR:maxlhs");
  EXPECT_EQ(identifierOf([&] { call(RandStream::advance, args(object.share()), 0); }),
            "TALVOR:minrhs");
}

TEST_F(StreamMethods, AdvanceLeavesStreamWhereDrawsWould) {
  for (char const* type : {"mt19937ar", "mrg32k3a", "threefry4x64_20"}) {
    SCOPED_TRACE(type);
    Object const drawn(type);
    Object const advanced(type);
    drawn.draw(251);
    call(RandStream::advance, args(advanced.share(), 0), 0);
    call(RandStream::advance, args(advanced.share(), typed<std::int64_t>(250)), 0);
    call(RandStream::advance, args(advanced.share(), uint64Of(1)), 0);
    EXPECT_EQ(drawn.draw(3), advanced.draw(3));
  }
}

// Sampling methods: the builtins' grammar on the object's stream, without class dispatch.

TEST_F(StreamMethods, DrawWhatTheBuiltinsDrawAndLeaveTheGlobalStreamAlone) {
  struct Row {
    txBuiltin method;
    txBuiltin builtin;
    Args arguments;
  };
  Row rows[] = {
      {RandStream::randstreamRand, mathrngRandFcn, args(2, 3, "like", typed<float>(1))},
      {RandStream::randn, mathrngRandnFcn, args(2, 3)},
      {RandStream::randi, mathrngRandiFcn, args(row({1, 6}), 2, 3, "uint8")},
      {RandStream::randperm, mathrngRandpermFcn, args(10)},
      {RandStream::randperm, mathrngRandpermFcn, args(10, 4)},
  };
  Handle const handle = createStream("mt19937ar", 0);
  txArrayPtr const object = objectOf(handle);
  for (Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    txArrayPtr const fromGlobal = call(row.builtin, row.arguments);
    std::size_t const global = globalState();
    row.arguments.insert(row.arguments.begin(), txShare(*object));
    txArrayPtr const fromObject = call(row.method, row.arguments);
    EXPECT_EQ(shapeOf(*fromObject), shapeOf(*fromGlobal));
    EXPECT_EQ(numbers(*fromObject), numbers(*fromGlobal));
    EXPECT_EQ(globalState(), global);
  }
}

TEST_F(StreamMethods, RefuseUnderTheirOwnIdentifiers) {
  Object const object("mt19937ar");
  constexpr auto rand = RandStream::randstreamRand;
  constexpr auto randn = RandStream::randn;
  constexpr auto randi = RandStream::randi;
  constexpr auto randperm = RandStream::randperm;
  struct Row {
    txBuiltin method;
    Args arguments;
    char const* identifier;
    int faultyArgument;
  };
  Row rows[] = {
      {rand, args("seed"), "rand:invalidOutputType", 2},
      {rand, args(2, "int8"), "rand:invalidOutputType", 3},
      {rand, args(2, "like", typed<std::int8_t>(1)), "rand:invalidPrototype", 4},
      {rand, args(2, "like", object.share()), "rand:invalidPrototype", 4},
      {rand, args(2, "like", sparseScalar(1)), "rand:sparsePrototype", 4},
      {rand, args(cellOf(nullptr)), "rand:inputType", 2},
      {randn, args("state"), "randn:invalidOutputType", 2},
      {randn, args("like", "text"), "randn:invalidPrototype", 3},
      {randn, args("like", sparseScalar(1)), "randn:sparsePrototype", 3},
      {randn, args(2, cellOf(nullptr)), "randn:inputType", 3},
      {randi, args(row({1, 2, 3})), "randi:invalidLimits", 2},
      {randi, args(0.5), "randi:invalidLimits", 2},
      {randi, args(0x1p53), "randi:LimitsTooLarge", 2},
      {randi, args(row({-0x1p52, 0x1p52})), "randi:RangeTooLarge", 2},
      {randi, args(6, "int64"), "randi:invalidOutputType", 3},
      {randi, args(6, "nowhere"), "randi:invalidClassname", 3},
      {randi, args(6, "like", typed<std::int64_t>(1)), "randi:invalidPrototype", 4},
      {randi, args(6, "like", sparseScalar(1)), "randi:sparsePrototype", 4},
      {randi, args(6, cellOf(nullptr)), "randi:inputType", 3},
      {randperm, args(3.5, 1), "randperm:inputType", 2},
      {randperm, args(0x1p53, 1), "randperm:inputNTooLarge", 2},
      {randperm, args(5, 6), "randperm:inputKTooLarge", 3},
  };
  std::size_t const before = object.state();
  for (Row& row : rows) {
    SCOPED_TRACE(std::string(row.identifier) + " " + std::to_string(&row - rows));
    row.arguments.insert(row.arguments.begin(), object.share());
    try {
      call(row.method, row.arguments);
      ADD_FAILURE() << "accepted";
    } catch (foundation::core::except::AnyException const& error) {
      EXPECT_EQ(error.GetID(), std::string("TALVOR:RandStream:") + row.identifier);
      EXPECT_EQ(error.GetBaseMsgIDObj().faultyArgument(), row.faultyArgument);
    }
  }
  EXPECT_EQ(object.state(), before);
}

TEST_F(StreamMethods, LookForTheStreamBeforeAnyArgument) {
  Object const object("mt19937ar");
  for (txBuiltin method : {RandStream::randstreamRand, RandStream::randn, RandStream::randi,
                           RandStream::randperm, RandStream::resetFcn, RandStream::advance}) {
    int const nlhs = method == RandStream::resetFcn || method == RandStream::advance ? 0 : 1;
    EXPECT_EQ(identifierOf([&] { call(method, args(5, cellOf(nullptr)), nlhs); }),
              "TALVOR:RandStream:InvalidHandle");
    EXPECT_EQ(identifierOf([&] { call(method, {}, nlhs); }), "TALVOR:minrhs");
  }
  EXPECT_EQ(identifierOf([] { call(RandStream::getset, args("nothing", 5)); }),
            "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(identifierOf([&] { call(RandStream::randi, args(object.share())); }), "TALVOR:minrhs");
  EXPECT_EQ(identifierOf([&] { call(RandStream::randperm, args(object.share())); }),
            "TALVOR:minrhs");
}

TEST_F(StreamMethods, VariantsDrawFromTheObject) {
  Object const object("mt19937ar");
  matrix::typed_row_vector<double> const sizes{2, 3};
  txArrayPtr const share = object.share();
  std::vector<double> drawn = numbers(*RandStream::randVariant(share.get(), 2.0));
  call(RandStream::resetFcn, args(object.share()), 0);
  EXPECT_EQ(drawn, object.draw(4));
  EXPECT_EQ(shapeOf(*RandStream::randVariant(share.get(), 2, 3)), "2x3 double");
  EXPECT_EQ(shapeOf(*RandStream::randVariant(share.get(), &sizes)), "2x3 double");
  EXPECT_EQ(shapeOf(*RandStream::randnVariant(share.get(), 2.0)), "2x2 double");
  EXPECT_EQ(shapeOf(*RandStream::randnVariant(share.get(), 2, -1)), "2x0 double");
  EXPECT_EQ(shapeOf(*RandStream::randnVariant(share.get(), &sizes)), "2x3 double");
  EXPECT_EQ(identifierOf([&] { RandStream::randVariant(share.get(), 2.5); }),
            "TALVOR:NonIntegerInput");
  txArrayPtr const none = toArgument(5.0);
  EXPECT_EQ(identifierOf([&] { RandStream::randnVariant(none.get(), 2.5); }),
            "TALVOR:RandStream:InvalidHandle");
}

}  // namespace
