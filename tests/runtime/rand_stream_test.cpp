// The host-language class RandStream and the global streams from the outside: lifetimes, memory,
// several machines. What calls give and refuse stands in tests/runtime/calls.

#include <gmock/gmock.h>

#include <thread>

#include "embedded_host/allocator.h"
#include "embedded_host/messages.h"
#include "embedded_host/object_system.h"
#include "rng/snapshot.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"
#include "vmstate/legacy_mode.h"

namespace {

using namespace testing_support;
using embedded_host::setProperty;

constexpr double kFirst = 0.81472368639317894;  // of mt19937ar with seed 0

std::uint64_t liveBlocks() { return embedded_host::allocationCounts().liveBlocks; }

class RandStreamClass : public VmTest {
 protected:
  txArrayPtr run(char const* name, Args const& given = {}, int nlhs = 1) {
    std::vector<txArray const*> inputs;
    for (txArrayPtr const& value : given) inputs.push_back(value.get());
    return std::move(vm.call(name, inputs, nlhs).front());
  }
  txArrayPtr make(char const* type) { return run("RandStream", args(type)); }
  void draw(txArrayPtr const& object) { run("rand", args(txShare(*object))); }
};

// Whatever stream a statement draws from and whatever becomes of it, and of classes that take part.
TEST_F(RandStreamClass, DrawsOfAStatementAreCounted) {
  struct Row {
    char const* statement;
    std::uint64_t drawn;
  };
  embedded_host::ClassDefinition definition{.name = "Drawing"};
  definition.constructor = [&](int, txArrayPtr* plhs, int, txArray const**) {
    plhs[0] = embedded_host::makeObject(vm.context().classes().find("Drawing"));
  };
  definition.methods["double"] = [&](int, txArrayPtr*, int, txArray const**) {
    run("rand", args(1, 7));
    embedded_host::raiseHostError("TALVOR:nomem", 1);
  };
  vm.context().classes().add(std::move(definition));
  vm.evaluate("s = RandStream('mrg32k3a'); t = RandStream('mrg32k3a'); x = snapshot(t);");
  for (Row const& row : {
           Row{"rand(2)", 4},
           Row{"rand(RandStream('philox4x32_10'),3) + noSuchName", 9},
           Row{"[rand(s,1,2) randi(t,6,1,3) rand(1,4) rand(s,'x')]", 9},
           Row{"if rand(s) < 2, delete(s), error('my:id','text'), end", 1},
           Row{"if rand < 2, RandStream.global(t); rand(1,2); clearGlobalRandStream; rand, end", 4},
           Row{"if advance(t,1000), end", 0},  // has no output
           Row{"t.advance(1000)", 1000},
           Row{"rand(Drawing(),2)", 7},
           Row{"RandStream.global(RandStream('shr3cong'))", 0},
           Row{"t.Substream = 3; t.Antithetic = true; reset(t), restore(t,x), y = t.State;", 0},
           Row{"rand('seed',1)", 0},
           Row{"randi([5 1])", 0},
       }) {
    std::uint64_t const before = randstream::drawnInThread();
    try {
      vm.evaluate(row.statement);
    } catch (language::SourceError const&) {
    }
    EXPECT_EQ(randstream::drawnInThread() - before, row.drawn) << row.statement;
  }
}

TEST_F(RandStreamClass, LegacyStreamCanBeCloned) {
  vm.evaluate("randn('seed',3); rand('state',5); rand(1,3); randn(1,3);");
  randstream& stream = *mrGetGlobalStream();
  auto const copy = stream.clone();
  EXPECT_EQ(takeSnapshot(*copy), takeSnapshot(stream));
  double drawn;
  copy->randnFcn(&drawn, 1, false);
  EXPECT_NE(takeSnapshot(*copy), takeSnapshot(stream));
}

// Owners of a stream: the global record, the default record and two objects, dropped in turn.
TEST_F(RandStreamClass, StreamDiesWithItsLastOwner) {
  run("RandStream.default", args(emptyMatrix()), 0);
  auto const atStart = liveBlocks();
  txArrayPtr object = make("mrg32k3a");
  txArrayPtr copy = txShare(*object);
  run("RandStream.default", args(txShare(*object)), 0);
  run("RandStream.global", args(txShare(*object)), 0);
  object.reset();
  draw(copy);
  copy.reset();
  run("rand");
  run("RandStream.global", args(make("mt19937ar")), 0);
  run("clearGlobalRandStream", {}, 0);
  run("RandStream.global", {}, 0);  // a clone of the default stream
  EXPECT_EQ(txGetProperty(*run("RandStream.global"), "Type")->scalarText(), u"mrg32k3a");
  run("RandStream.default", args(emptyMatrix()), 0);
  run("delete", args(run("RandStream.global")), 0);
  run("RandStream.global", {}, 0);
  auto const withGlobalOnly = liveBlocks();
  run("clearGlobalRandStream", {}, 0);
  run("RandStream.global", {}, 0);
  EXPECT_EQ(liveBlocks(), withGlobalOnly);
  EXPECT_GT(withGlobalOnly, atStart);
}

// A class whose method deletes the stream object in the middle of a call that draws from it.
TEST_F(RandStreamClass, StreamOutlivesTheCallThatDeletesItsObject) {
  txArrayPtr const object = make("mt19937ar");
  embedded_host::ClassDefinition definition{.name = "Deleting"};
  definition.methods["double"] = [&](int, txArrayPtr* plhs, int, txArray const**) {
    run("delete", args(txShare(*object)), 0);
    plhs[0] = embedded_host::makeScalar(1.0);
  };
  vm.context().classes().add(std::move(definition));
  txArrayPtr const size = embedded_host::makeObject(vm.context().classes().find("Deleting"));
  EXPECT_EQ(numbers(*run("rand", args(txShare(*object), txShare(*size), 1))), std::vector{kFirst});
  EXPECT_EQ(identifierOf([&] { draw(object); }), "TALVOR:RandStream:InvalidHandle");
}

TEST_F(RandStreamClass, ResetWithoutASeedOfItsOwnSaysSo) {
  txArrayPtr const object = make("mt19937ar");
  embedded_host::setStoredProperty(*object, "Seed", toArgument(7.0));  // is no uint32
  try {
    run("reset", args(txShare(*object)), 0);
    FAIL() << "reset";
  } catch (foundation::core::except::AnyException const& error) {
    EXPECT_EQ(error.GetID(), "TALVOR:RandStream:reset:BadSeed");
    EXPECT_THAT(error.text(), testing::HasSubstr("The object keeps none"));
  }
}

// A number in a property of that name is no stream of ours.
TEST_F(RandStreamClass, ObjectsOfOtherClassesHaveNoStream) {
  vm.context().classes().add({.name = "Posing", .properties = {{.name = "StreamID"}}});
  txArrayPtr const object = embedded_host::makeObject(vm.context().classes().find("Posing"));
  embedded_host::setStoredProperty(*object, "StreamID",
                                   embedded_host::makeScalar<std::uint64_t>(64));
  EXPECT_EQ(identifierOf([&] { run("RandStream.global", args(txShare(*object)), 0); }),
            "TALVOR:RandStream:InvalidHandle");
}

// Outputs without an argument of their own stay empty.
TEST_F(RandStreamClass, SizesAreConvertedOneForOne) {
  txArrayPtr const size = toArgument(3.0);
  txArray const* const given[] = {size.get()};
  auto const outputs = vm.call("talvor.internal.builtinhelper.convertSizeArgToDouble", given, 3);
  EXPECT_EQ(numbers(*outputs[0]), std::vector{3.0});
  EXPECT_EQ(outputs[1], nullptr);
  EXPECT_EQ(outputs[2], nullptr);
}

TEST_F(RandStreamClass, CloneOutOfMemoryIsNotKept) {
  run("RandStream.default", args(make("mrg32k3a")), 0);
  for (std::uint64_t k = 1;; ++k) {
    ASSERT_LT(k, 100U);
    auto const blocks = liveBlocks();
    embedded_host::FailingAllocation const failing(k);
    std::string const error = identifierOf([&] { run("rand"); });
    EXPECT_EQ(error, failing.happened() ? "TALVOR:nomem" : "no error");
    if (!failing.happened()) break;
    // The result is asked for before the stream, so that nothing of either stays.
    EXPECT_EQ(liveBlocks(), blocks) << "request " << k;
  }
}

TEST_F(RandStreamClass, SourceTextKeepsItsVariablesAndGivesItsLastValue) {
  vm.evaluate("s = RandStream('mt19937ar','Seed',0);");
  EXPECT_EQ(numbers(*vm.evaluate("x = rand(s,1,2); x(1)")), std::vector{kFirst});
  EXPECT_EQ(vm.evaluate("% nothing"), nullptr);
  EXPECT_THROW(vm.evaluate("rand(s,'int8')"), language::SourceError);
}

// Evaluation has no other way out: a request for memory that fails anywhere is told with its place.
TEST_F(RandStreamClass, SourceTextOutOfMemoryIsASourceError) {
  std::uint64_t k = 0;
  for (bool happened = true; happened;) {
    ASSERT_LT(++k, 200U);
    embedded_host::FailingAllocation const failing(k);
    std::string error = "no error";
    try {
      vm.evaluate("x = [1 'a']; if x(1) > 2, y = x; end, for k = 1:2, {x, \"b\"}; end");
    } catch (language::SourceError const& caught) {
      error = caught.identifier();
    }
    happened = failing.happened();
    EXPECT_EQ(error, happened ? "TALVOR:nomem" : "no error") << "request " << k;
  }
  EXPECT_GT(k, 10U);
}

TEST_F(RandStreamClass, OnlyObjectsOfTheClassBecomeTheGlobalStream) {
  vm.context().classes().add({.name = "Other", .properties = {{.name = "StreamID"}}});
  txArrayPtr const other = embedded_host::makeObject(vm.context().classes().find("Other"));
  setProperty(*other, "StreamID", *txGetProperty(*make("mrg32k3a"), "StreamID"));
  EXPECT_EQ(identifierOf([&] { run("RandStream.global", args(txShare(*other)), 0); }),
            "TALVOR:RandStream:InvalidHandle");
}

TEST_F(RandStreamClass, CallsGiveOneOutputAtLeast) {
  for (auto const& [nlhs, outputs] : {std::pair(0, 1U), {1, 1U}})
    EXPECT_EQ(vm.call("rand", std::span<txArray const* const>(), nlhs).size(), outputs);
}

TEST_F(RandStreamClass, UnknownFunctionIsAnIdentifiedError) {
  EXPECT_EQ(identifierOf([&] { run("ramd"); }), "TALVOR:UndefinedFunction");
  EXPECT_EQ(identifierOf([&] { run("RandStream.ramd"); }), "TALVOR:UndefinedFunction");
}

TEST(VmEnd, LeavesNothingAliveAndObjectsHarmless) {
  auto const before = liveBlocks();
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
  EXPECT_GT(liveBlocks(), before);
  survivor.reset();
  EXPECT_EQ(liveBlocks(), before);
}

TEST(VirtualMachines, HaveStreamsOfTheirOwn) {
  auto const sequence = [](std::vector<double>* drawn) {
    runtime::Vm vm;
    vm.context().useSettingsFile("no-such-file.toml");
    for (int i = 0; i < 1000; ++i) drawn->push_back(vm.call("rand")->scalarAsDouble());
  };
  std::vector<double> first, second;
  std::thread one(sequence, &first), two(sequence, &second);
  one.join();
  two.join();
  EXPECT_EQ(first[0], kFirst);
  EXPECT_EQ(first, second);
}

TEST_F(VmTest, TwoMachinesHaveLegacyModesOfTheirOwn) {
  auto const state = [](runtime::Vm& machine) {
    return numbers(*machine.evaluate("rand('state')"));
  };
  runtime::Vm other;
  for (runtime::Vm* machine : {&vm, &other})
    machine->context().setWarningSink([](auto const&, std::string const&) {});
  vm.evaluate("rand('state',1)");
  std::vector<double> const before = state(vm);
  EXPECT_FALSE(txToLogical(*other.call("inLegacyMode")));
  EXPECT_NE(state(other), before);
  other.evaluate("rand('state',2); rand(10);");
  EXPECT_TRUE(txToLogical(*other.call("inLegacyMode")));
  EXPECT_EQ(state(vm), before);
}

}  // namespace
