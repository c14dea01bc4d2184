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

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

txArrayPtr uint64Of(std::uint64_t value) { return embedded_host::makeScalar(value); }

using StreamMethods = VmTest;

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
