// The host-language class RandStream, and a Vm from the outside.

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "embedded_host/allocator.h"
#include "embedded_host/object_system.h"
#include "host/strings.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"

namespace {

using namespace testing_support;
using embedded_host::setProperty;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string textOf(txArray const& value) { return utToAscii(*value.scalarText()); }

class RandStreamClass : public VmTest {
 protected:
  txArrayPtr run(char const* name, Args const& given = {}, int nlhs = 1) {
    std::vector<txArray const*> inputs;
    for (txArrayPtr const& value : given) inputs.push_back(value.get());
    return std::move(vm.call(name, inputs, nlhs).front());
  }
  template <class... Values>
  txArrayPtr make(Values&&... values) {
    return run("RandStream", args(std::forward<Values>(values)...));
  }
  std::vector<double> draw(txArrayPtr const& object, double n) {
    return numbers(*run("rand", args(txShare(*object), 1, n)));
  }
  std::vector<double> drawGlobal(double n) { return numbers(*run("rand", args(1, n))); }
  // The text of the error of RandStream(values...).
  template <class... Values>
  std::string complaint(Values&&... values) {
    try {
      make(std::forward<Values>(values)...);
    } catch (foundation::core::except::AnyException const& error) {
      return error.GetID() + "@" + std::to_string(error.GetBaseMsgIDObj().faultyArgument()) + " " +
             error.text();
    }
    return "no error";
  }
};

std::string property(txArrayPtr const& object, char const* name) {
  txArrayPtr const value = txGetProperty(*object, name);
  if (value->isText()) return textOf(*value);
  return shapeOf(*value) + " " + std::to_string(value->scalarAsDouble());
}

TEST_F(RandStreamClass, OptionsComeInAnyOrderAndCase) {
  txArrayPtr const one = make("mrg32k3a", "Seed", 7, "NumStreams", 4, "StreamIndices", 2);
  txArrayPtr const two =
      make("MRG32K3A", "streamindices", 2, "NUMSTREAMS", typed<std::int8_t>(4), "seed", 7);
  EXPECT_EQ(property(one, "Type"), "mrg32k3a");
  EXPECT_EQ(property(two, "Type"), "mrg32k3a");
  EXPECT_EQ(property(one, "Seed"), "1x1 uint32 7.000000");
  EXPECT_EQ(property(one, "NumStreams"), "1x1 uint64 4.000000");
  EXPECT_EQ(property(one, "StreamIndex"), "1x1 uint64 2.000000");
  EXPECT_EQ(draw(one, 5), draw(two, 5));
}

TEST_F(RandStreamClass, NamesOfGeneratorsHaveOtherSpellings) {
  EXPECT_EQ(property(make(), "Type"), "mt19937ar");
  EXPECT_EQ(property(make("twister"), "Type"), "mt19937ar");
  EXPECT_EQ(property(make("Philox4x32-10"), "Type"), "philox4x32_10");
  txArrayPtr const names = run("RandStream.list");
  EXPECT_EQ(shapeOf(*names), "9x1 string");
  for (std::uint64_t i = 0; i < names->numel(); ++i) {
    std::string const name = utToAscii(*embedded_host::stringAt(*names, i));
    EXPECT_EQ(property(make(name.c_str()), "Type"), name);
  }
}

TEST_F(RandStreamClass, SeveralIndicesMakeSeveralStreams) {
  txArrayPtr const cell = make("threefry4x64_20", "NumStreams", 3, "StreamIndices", row({1, 2, 3}));
  ASSERT_EQ(shapeOf(*cell), "1x3 cell");
  std::vector<std::vector<double>> drawn;
  for (std::uint64_t i = 0; i < 3; ++i) {
    txArrayPtr const stream = txShare(*cell->cell(i));
    EXPECT_EQ(property(stream, "StreamIndex"),
              "1x1 uint64 " + std::to_string(static_cast<double>(i + 1)));
    drawn.push_back(draw(stream, 3));
  }
  EXPECT_NE(drawn[0], drawn[1]);
  EXPECT_NE(drawn[1], drawn[2]);
  EXPECT_EQ(shapeOf(*make("mrg32k3a", "CellOutput", typed<bool>(true))), "1x1 cell");
}

TEST_F(RandStreamClass, EntropySeedsDiffer) {
  std::vector<std::string> seeds;
  for (int i = 0; i < 4; ++i)
    seeds.push_back(property(make("mt19937ar", "Seed", "Entropy"), "Seed"));
  std::sort(seeds.begin(), seeds.end());
  // Four equal seeds of 32 random bits do not happen.
  EXPECT_NE(seeds.front(), seeds.back());
}

TEST_F(RandStreamClass, PropertiesCanBeGivenAtOnce) {
  txArrayPtr const object = make("mrg32k3a", "Substream", 3, "RandnAlg", "polar", "Antithetic",
                                 typed<bool>(true), "FullPrecision", typed<bool>(false));
  EXPECT_EQ(property(object, "Substream"), "1x1 double 3.000000");
  EXPECT_EQ(property(object, "RandnAlg"), "Polar");
  EXPECT_EQ(property(object, "Antithetic"), "1x1 logical 1.000000");
  EXPECT_EQ(property(object, "FullPrecision"), "1x1 logical 0.000000");
}

TEST_F(RandStreamClass, MistakesAreNamedWithWhatWasMeant) {
  EXPECT_THAT(complaint("mrg32k3"), HasSubstr("TALVOR:RandStream:create:UnknownRNGType@1 "));
  EXPECT_THAT(complaint("mrg32k3"), HasSubstr("Did you mean \"mrg32k3a\"?"));
  EXPECT_THAT(complaint("xyz"), Not(HasSubstr("Did you mean")));
  EXPECT_THAT(complaint("mrg32k3a", "Sead", 1),
              HasSubstr("TALVOR:RandStream:create:UnknownOption@2 "));
  EXPECT_THAT(complaint("mrg32k3a", "Sead", 1), HasSubstr("Did you mean \"Seed\"?"));
  EXPECT_THAT(complaint("mrg32k3a", 5, 1), HasSubstr("create:UnknownOption@2"));
  EXPECT_THAT(complaint("mrg32k3a", "Seed"), HasSubstr("create:MissingValue"));
  EXPECT_THAT(complaint(5), HasSubstr("create:InvalidRNGType@1"));
}

TEST_F(RandStreamClass, ValuesThatMakeNoStreamAreRefused) {
  for (auto make : {+[] { return toArgument(-1.0); }, +[] { return toArgument(0.5); },
                    +[] { return toArgument(0x1p32); },
                    +[] {
                      return row({1, 2});
                    },
                    +[] { return toArgument("shuffle"); }, +[] { return imaginary(1); }})
    EXPECT_THAT(complaint("mrg32k3a", "Seed", make()), HasSubstr("create:BadSeed@3"));
  for (auto make : {+[] { return toArgument(0.0); }, +[] { return toArgument(1.5); },
                    +[] {
                      return row({1, 2});
                    },
                    +[] { return toArgument("two"); }})
    EXPECT_THAT(complaint("mrg32k3a", "NumStreams", make()), HasSubstr("create:BadNumStreams@3"));
  for (auto make : {+[] { return toArgument(0.0); }, +[] { return toArgument(3.0); },
                    +[] {
                      return row({1, 2.5});
                    },
                    +[] { return emptyMatrix(); }})
    EXPECT_THAT(complaint("mrg32k3a", "NumStreams", 2, "StreamIndices", make()),
                HasSubstr("create:BadStreamIndex@5"));
  EXPECT_THAT(complaint("mt19937ar", "NumStreams", 2),
              HasSubstr("TALVOR:RandStream:mt19937ar:MultipleStreams"));
  EXPECT_THAT(complaint("mrg32k3a", "Seed", 1, "Substream", 0),
              HasSubstr("set:InvalidSubstreamIndex@5"));
  EXPECT_THAT(complaint("mrg32k3a", "RandnAlg", "box"), HasSubstr("set:UnknownRandnAlg@3"));
}

TEST_F(RandStreamClass, WhatIsFixedAtCreationCanOnlyBeRead) {
  txArrayPtr const object = make("mrg32k3a", "Seed", 7);
  txArrayPtr const value = toArgument(1.0);
  for (char const* name : {"Type", "Seed", "NumStreams", "StreamIndex", "StreamID", "Parameters"})
    EXPECT_EQ(identifierOf([&] { setProperty(*object, name, *value); }),
              "TALVOR:object:ReadOnlyProperty");
  EXPECT_EQ(shapeOf(*txGetProperty(*object, "Parameters")), "4x1 uint64");
}

TEST_F(RandStreamClass, StateSavesAndRestores) {
  txArrayPtr const object = make("mt19937ar", "Seed", 7);
  txArrayPtr const saved = txGetProperty(*object, "State");
  std::vector<double> const drawn = draw(object, 3);
  setProperty(*object, "State", *saved);
  EXPECT_EQ(draw(object, 3), drawn);
}

TEST_F(RandStreamClass, CopiesShareTheStream) {
  txArrayPtr const object = make("mt19937ar", "Seed", 0);
  txArrayPtr const copy = txShare(*object);
  EXPECT_EQ(draw(object, 1), std::vector{0.81472368639317894});
  EXPECT_EQ(draw(copy, 1), std::vector{0.90579193707561922});
}

TEST_F(RandStreamClass, ResetKeepsOrChangesTheSeedProperty) {
  txArrayPtr const object = make("mt19937ar", "Seed", 7);
  std::vector<double> const first = draw(object, 3);
  run("reset", args(txShare(*object)), 0);
  EXPECT_EQ(draw(object, 3), first);
  run("reset", args(txShare(*object), 11), 0);
  EXPECT_EQ(property(object, "Seed"), "1x1 uint32 11.000000");
  EXPECT_EQ(draw(object, 3), draw(make("mt19937ar", "Seed", 11), 3));
  run("reset", args(txShare(*object)), 0);
  EXPECT_EQ(draw(object, 3), draw(make("mt19937ar", "Seed", 11), 3));
  EXPECT_EQ(identifierOf([&] { run("reset", args(txShare(*object), -1), 0); }),
            "TALVOR:RandStream:reset:BadSeed");
  EXPECT_EQ(property(object, "Seed"), "1x1 uint32 11.000000");
}

// Asking twice gives one object, and dropping what was given does not clear the stream.
TEST_F(RandStreamClass, GlobalStreamHasOneObject) {
  drawGlobal(1);
  EXPECT_TRUE(embedded_host::sameObject(*run("RandStream.global"), *run("RandStream.global")));
  EXPECT_EQ(drawGlobal(1), std::vector{0.90579193707561922});
  EXPECT_EQ(property(run("RandStream.global"), "Type"), "mt19937ar");
}

TEST_F(RandStreamClass, ObjectCanBecomeTheGlobalStream) {
  txArrayPtr const object = make("mt19937ar", "Seed", 0);
  txArrayPtr const previous = run("RandStream.global", args(txShare(*object)), 1);
  EXPECT_FALSE(embedded_host::sameObject(*previous, *object));
  EXPECT_TRUE(embedded_host::sameObject(*run("RandStream.global"), *object));
  EXPECT_EQ(drawGlobal(1), std::vector{0.81472368639317894});
  EXPECT_EQ(draw(object, 1), std::vector{0.90579193707561922});
  // Nothing that is no stream object becomes global.
  EXPECT_EQ(identifierOf([&] { run("RandStream.global", args(5), 0); }),
            "TALVOR:RandStream:InvalidHandle");
  EXPECT_TRUE(embedded_host::sameObject(*run("RandStream.global"), *object));
}

TEST_F(RandStreamClass, GlobalStreamOutlivesTheVariableThatHeldIt) {
  run("RandStream.global", args(make("mt19937ar", "Seed", 0)), 0);
  EXPECT_EQ(drawGlobal(1), std::vector{0.81472368639317894});
  EXPECT_EQ(drawGlobal(1), std::vector{0.90579193707561922});
}

TEST_F(RandStreamClass, DeletedObjectHasNoStreamAndIsNotGlobal) {
  txArrayPtr const object = make("mrg32k3a");
  run("RandStream.global", args(txShare(*object)), 0);
  run("delete", args(txShare(*object)), 0);
  EXPECT_EQ(identifierOf([&] { draw(object, 1); }), "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(identifierOf([&] { run("RandStream.global", args(txShare(*object)), 0); }),
            "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(identifierOf([&] { txGetProperty(*object, "State"); }),
            "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(identifierOf([&] { run("delete", args(txShare(*object)), 0); }), "no error");
  EXPECT_EQ(drawGlobal(1), std::vector{0.81472368639317894});  // a new one from the settings
}

TEST_F(RandStreamClass, DefaultStreamIsWhatNewGlobalStreamsContinue) {
  txArrayPtr const object = make("mt19937ar", "Seed", 0);
  draw(object, 1);
  run("RandStream.default", args(txShare(*object)), 0);
  run("delete", args(txShare(*object)), 0);  // the default record keeps the stream
  EXPECT_EQ(drawGlobal(1), std::vector{0.90579193707561922});
  run("clearGlobalRandStream", {}, 0);
  EXPECT_EQ(drawGlobal(1), std::vector{0.90579193707561922});
  run("RandStream.default", args(emptyMatrix()), 0);
  run("clearGlobalRandStream", {}, 0);
  EXPECT_EQ(drawGlobal(1), std::vector{0.81472368639317894});
}

TEST_F(RandStreamClass, ActivityTellsWhetherAStreamMoved) {
  txArrayPtr const object = make("mrg32k3a");
  auto const activityOf = [&](auto&& action) {
    std::uint64_t const before = vm.streamActivity();
    identifierOf(action);
    return vm.streamActivity() - before;
  };
  EXPECT_EQ(activityOf([&] { draw(object, 1); }), 1U);
  EXPECT_EQ(activityOf([&] { drawGlobal(1); }), 1U);
  EXPECT_EQ(activityOf([&] { setProperty(*object, "Substream", *toArgument(2.0)); }), 1U);
  EXPECT_EQ(activityOf([&] { txGetProperty(*object, "State"); }), 0U);
  EXPECT_EQ(activityOf([&] { drawGlobal(0.5); }), 0U);
  EXPECT_EQ(activityOf([&] { run("rand", args(txShare(*object), "int8")); }), 0U);
  EXPECT_EQ(activityOf([&] { run("randi", args(0)); }), 0U);
  EXPECT_EQ(activityOf([&] { run("reset", args(txShare(*object), -1), 0); }), 0U);
}

// Lifetimes.

// Owners of a stream: the global record, the default record and two objects, dropped in turn.
TEST_F(RandStreamClass, StreamDiesWithItsLastOwner) {
  auto const blocks = [] { return embedded_host::allocationCounts().liveBlocks; };
  run("RandStream.default", args(emptyMatrix()), 0);
  auto const atStart = blocks();
  txArrayPtr object = make("mrg32k3a");
  txArrayPtr copy = txShare(*object);
  run("RandStream.default", args(txShare(*object)), 0);
  run("RandStream.global", args(txShare(*object)), 0);
  object.reset();
  draw(copy, 1);
  copy.reset();
  drawGlobal(1);
  run("RandStream.global", args(make("mt19937ar")), 0);
  run("clearGlobalRandStream", {}, 0);
  run("RandStream.global", {}, 0);  // a clone of the default stream
  EXPECT_EQ(property(run("RandStream.global"), "Type"), "mrg32k3a");
  run("RandStream.default", args(emptyMatrix()), 0);
  run("delete", args(run("RandStream.global")), 0);
  run("RandStream.global", {}, 0);
  auto const withGlobalOnly = blocks();
  run("clearGlobalRandStream", {}, 0);
  run("RandStream.global", {}, 0);
  EXPECT_EQ(blocks(), withGlobalOnly);
  EXPECT_GT(withGlobalOnly, atStart);
}

// A class whose method deletes the stream object in the middle of a call that draws from it.
TEST_F(RandStreamClass, StreamOutlivesTheCallThatDeletesItsObject) {
  txArrayPtr const object = make("mt19937ar", "Seed", 0);
  embedded_host::ClassDefinition definition{.name = "Deleting"};
  definition.methods["double"] = [&](int, txArrayPtr* plhs, int, txArray const**) {
    run("delete", args(txShare(*object)), 0);
    plhs[0] = embedded_host::makeScalar(1.0);
  };
  vm.context().classes().add(std::move(definition));
  txArrayPtr const size = embedded_host::makeObject(vm.context().classes().find("Deleting"));
  EXPECT_EQ(numbers(*run("rand", args(txShare(*object), txShare(*size), 1))),
            std::vector{0.81472368639317894});
  EXPECT_EQ(identifierOf([&] { draw(object, 1); }), "TALVOR:RandStream:InvalidHandle");
}

TEST_F(RandStreamClass, SourceTextKeepsItsVariablesAndGivesItsLastValue) {
  vm.evaluate("s = RandStream('mt19937ar','Seed',0);");
  EXPECT_EQ(numbers(*vm.evaluate("x = rand(s,1,2); x(2)")), std::vector{0.90579193707561922});
  EXPECT_EQ(vm.evaluate("% nothing"), nullptr);
  EXPECT_THROW(vm.evaluate("rand(s,'int8')"), language::SourceError);
}

TEST(VmEnd, LeavesNothingAliveAndObjectsHarmless) {
  auto const before = embedded_host::allocationCounts().liveBlocks;
  txArrayPtr survivor;
  {
    runtime::Vm vm;
    vm.context().useSettingsFile("no-such-file.toml");
    txArrayPtr const type = toArgument("mrg32k3a");
    survivor = vm.call("RandStream", {type.get()});
    txArrayPtr const other = vm.call("RandStream", {type.get()});
    vm.call("RandStream.global", {survivor.get()}, 0);
    vm.call("RandStream.default", {other.get()}, 0);
    vm.call("rand");
  }
  EXPECT_GT(embedded_host::allocationCounts().liveBlocks, before);
  survivor.reset();
  EXPECT_EQ(embedded_host::allocationCounts().liveBlocks, before);
}

// Each request for memory fails once, everywhere in the life of a stream object.
TEST_F(RandStreamClass, LifeOutOfMemoryLeavesNothingBehind) {
  std::vector<std::function<void()>> const steps = {
      [&] { make("mrg32k3a", "Seed", 7, "RandnAlg", "Polar"); },
      [&] {
        make("mrg32k3a", "NumStreams", 3, "StreamIndices", row({1, 2, 3}));
      },
      [&] { run("delete", args(make("mrg32k3a")), 0); },
      [&] { run("reset", args(make("mrg32k3a"), 5), 0); },
      [&] { run("RandStream.global", {}, 1); },
      [&] { run("RandStream.global", args(make("mrg32k3a")), 1); },
      [&] { txGetProperty(*make("mt19937ar"), "State"); },
      [&] { run("RandStream.list"); },
  };
  auto const restore = [&] {
    run("clearGlobalRandStream", {}, 0);
    run("RandStream.global", {}, 1);
  };
  for (auto const& step : steps) {
    SCOPED_TRACE(&step - steps.data());
    restore();
    auto const before = embedded_host::allocationCounts().liveBlocks;
    for (std::uint64_t k = 1;; ++k) {
      ASSERT_LT(k, 500U);
      {
        embedded_host::FailingAllocation const failing(k);
        std::string const error = identifierOf(step);
        EXPECT_EQ(error, failing.happened() ? "TALVOR:nomem" : "no error") << "request " << k;
        if (!failing.happened()) break;
      }
      restore();
      ASSERT_EQ(embedded_host::allocationCounts().liveBlocks, before) << "request " << k;
    }
  }
}

TEST_F(RandStreamClass, UnknownFunctionIsAnIdentifiedError) {
  EXPECT_EQ(identifierOf([&] { run("ramd"); }), "TALVOR:UndefinedFunction");
  EXPECT_EQ(identifierOf([&] { run("RandStream.ramd"); }), "TALVOR:UndefinedFunction");
}

}  // namespace
