// The VM's global and default streams.

#include <gmock/gmock.h>

#include <fstream>
#include <thread>

#include "builtins/builtins.h"
#include "embedded_host/allocator.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"
#include "tests/support/streams.h"
#include "vmstate/global_stream.h"

namespace {

using namespace testing_support;

constexpr double kFirst = 0.81472368639317894;  // of mt19937ar with seed 0
constexpr double kSecond = 0.90579193707561922;

double draw() { return numbers(*call(mathrngRandFcn)).front(); }

class GlobalStreamTest : public VmTest {
 protected:
  // Writes a user settings file and lets the VM read it.
  void useSettings(std::string const& text) {
    std::string const file = testing::TempDir() + "tvmathrng_settings.toml";
    std::ofstream(file) << text;
    vm.context().useSettingsFile(file);
    call(clearGlobalRandStream, {}, 0);
  }
};

TEST_F(GlobalStreamTest, GetFormDescribesStreamAndMakesNoMoreThanAsked) {
  auto const parts = callAll(getsetGlobalRandStream, {}, 5);
  Handle const handle(txShare(*parts[0]));
  EXPECT_EQ(shapeOf(*parts[0]), "1x1 uint64");
  EXPECT_EQ(textOf(*parts[1]), "mt19937ar");
  EXPECT_EQ(shapeOf(*parts[2]) + " " + shapeOf(*parts[3]) + " " + shapeOf(*parts[4]),
            "1x1 uint32 1x1 uint64 1x1 uint64");
  EXPECT_EQ(numbers(*parts[2]), std::vector{0.0});
  EXPECT_EQ(numbers(*parts[3]), std::vector{1.0});
  EXPECT_EQ(numbers(*parts[4]), std::vector{1.0});

  txArrayPtr slots[5];
  getsetGlobalRandStream(2, slots, 0, nullptr);
  Handle const second(std::move(slots[0]));
  EXPECT_TRUE(slots[1]);
  EXPECT_FALSE(slots[2]);
}

TEST_F(GlobalStreamTest, SettingsChooseGeneratorAndSeed) {
  useSettings(
      "[talvor.general.randomnumbers]\nDefaultAlgorithm = \"simdTwister\"\n"
      "DefaultSeed = -1.5\n");
  auto const parts = callAll(getsetGlobalRandStream, {}, 3);
  Handle const handle(txShare(*parts[0]));
  EXPECT_EQ(textOf(*parts[1]), "dsfmt19937");
  EXPECT_EQ(numbers(*parts[2]), std::vector{4294967295.0});
  // What the user chose is not what the host was shipped with.
  EXPECT_EQ(textOf(*call(getFactoryDefaultRandStreamType)), "mt19937ar");
}

TEST_F(GlobalStreamTest, BadSettingsFailTheDrawAndMakeNoStream) {
  std::string const group = "[talvor.general.randomnumbers]\n";
  useSettings(group + "DefaultAlgorithm = \"Twister\"\n");
  EXPECT_EQ(identifierOf(draw), "TALVOR:RandStream:create:UnknownRNGType");
  useSettings(group + "DefaultSeed = \"many\"\n");
  EXPECT_EQ(identifierOf(draw), "TALVOR:settings:WrongType");
  useSettings(group + "DefaultSeed = 4294967296\n");
  EXPECT_EQ(draw(), kFirst);
}

TEST_F(GlobalStreamTest, SetFormSharesStreamUntilCleared) {
  {
    Handle const handle = createStream("mt19937ar", 0);
    call(getsetGlobalRandStream, args(handle.share()), 0);
  }
  EXPECT_EQ(draw(), kFirst);  // the global stream is its last owner now
  EXPECT_EQ(draw(), kSecond);
  call(clearGlobalRandStream, {}, 0);
  EXPECT_EQ(draw(), kFirst);
}

TEST_F(GlobalStreamTest, ClearsOnlyTheStreamThatMatches) {
  draw();
  Handle const other = createStream("mt19937ar", 0);
  auto const clearIf = [](txArrayPtr handle) {
    call(clearGlobalRandStreamIfMatches, args(std::move(handle)), 0);
  };
  clearIf(other.share());
  clearIf(typed<std::uint64_t>(0));
  clearIf(toArgument("no handle"));
  EXPECT_EQ(draw(), kSecond);
  Handle const same(call(getsetGlobalRandStream));
  clearIf(same.share());
  EXPECT_EQ(draw(), kFirst);
}

TEST_F(GlobalStreamTest, CloneContinuesWhereDefaultStands) {
  Handle const handle = createStream("mrg32k3a", 7, 4, 2);
  txArrayPtr const object = objectOf(handle);
  auto const set = [&](char const* name, txArrayPtr value) {
    call(RandStream::getset, args(name, txShare(*object), std::move(value)), 0);
  };
  auto const drawFromObject = [&] {
    return numbers(*call(RandStream::randn, args(txShare(*object), 1, 5)));
  };
  set("antithetic", typed<bool>(true));
  set("fullprecision", typed<bool>(false));
  set("randnalg", toArgument("inversion"));
  drawFromObject();
  call(setDefaultRandStream, args(txShare(*object)), 0);
  std::vector<double> const cloned = numbers(*call(mathrngRandnFcn, args(1, 5)));
  EXPECT_EQ(drawFromObject(), cloned);

  auto const parts = callAll(getsetGlobalRandStream, {}, 5);
  Handle const global(txShare(*parts[0]));
  EXPECT_EQ(textOf(*parts[1]), "mrg32k3a");
  EXPECT_EQ(numbers(*parts[2]), std::vector{7.0});
  EXPECT_EQ(numbers(*parts[3]), std::vector{4.0});
  EXPECT_EQ(numbers(*parts[4]), std::vector{2.0});

  // Without a default the next global stream comes from the settings again.
  call(setDefaultRandStream, args(emptyMatrix()), 0);
  call(clearGlobalRandStream, {}, 0);
  EXPECT_EQ(draw(), kFirst);
}

TEST_F(GlobalStreamTest, CloneOutOfMemoryIsNotKept) {
  Handle const handle = createStream("mrg32k3a", 7);
  call(setDefaultRandStream, args(objectOf(handle)), 0);
  for (std::uint64_t k = 1;; ++k) {
    ASSERT_LT(k, 100U);
    auto const blocks = embedded_host::allocationCounts().liveBlocks;
    embedded_host::FailingAllocation const failing(k);
    std::string const error = identifierOf([] { call(mathrngRandFcn); });
    EXPECT_EQ(error, failing.happened() ? "TALVOR:nomem" : "no error");
    if (!failing.happened()) break;
    // The result is asked for before the stream, so that nothing of either stays.
    EXPECT_EQ(embedded_host::allocationCounts().liveBlocks, blocks) << "request " << k;
  }
}

TEST_F(GlobalStreamTest, RefusesWrongCountsAndHandles) {
  struct Row {
    txBuiltin builtin;
    Args arguments;
    int nlhs;
    char const* identifier;
  };
  constexpr char const* kShape = "TALVOR:RandStream:set:WrongNumberArgs";
  constexpr char const* kHandle = "TALVOR:RandStream:InvalidHandle";
  Row rows[] = {
      {getsetGlobalRandStream, args(typed<std::uint64_t>(0)), 1, kShape},
      {getsetGlobalRandStream, {}, 6, kShape},
      {getsetGlobalRandStream, args(1, 2), 0, kShape},
      {getsetGlobalRandStream, args(typed<std::uint64_t>(0)), 0, kHandle},
      {getsetGlobalRandStream, args(1), 0, kHandle},
      {setDefaultRandStream, args(1), 0, kHandle},
      {setDefaultRandStream, {}, 0, "TALVOR:minrhs"},
      {setDefaultRandStream, args(1), 1, "TALVOR:maxlhs"},
      {clearGlobalRandStream, args(1), 1, "TALVOR:maxlhs"},
      {clearGlobalRandStream, args(1), 0, "TALVOR:maxrhs"},
      {clearGlobalRandStreamIfMatches, {}, 0, "TALVOR:minrhs"},
      {getFactoryDefaultRandStreamType, {}, 2, "TALVOR:maxlhs"},
      {getFactoryDefaultRandStreamType, args(1), 1, "TALVOR:maxrhs"},
  };
  draw();
  for (Row const& row : rows) {
    SCOPED_TRACE(&row - rows);
    EXPECT_EQ(identifierOf([&] { callAll(row.builtin, row.arguments, row.nlhs); }), row.identifier);
  }
  EXPECT_EQ(draw(), kSecond);
}

TEST(VirtualMachines, HaveStreamsOfTheirOwn) {
  auto const sequence = [](std::vector<double>* drawn) {
    runtime::Vm vm;
    vm.context().useSettingsFile("no-such-file.toml");
    embedded_host::EnterVm const inside(vm.context());
    for (int i = 0; i < 1000; ++i) drawn->push_back(draw());
  };
  std::vector<double> first;
  std::vector<double> second;
  std::thread one(sequence, &first);
  std::thread two(sequence, &second);
  one.join();
  two.join();
  EXPECT_EQ(first[0], kFirst);
  EXPECT_EQ(first, second);
}

}  // namespace
