#include "rng/mr_functions.h"

#include <gmock/gmock.h>

#include "embedded_host/array.h"
#include "embedded_host/object_system.h"
#include "embedded_host/vm_context.h"
#include "tests/support/identifiers.h"

namespace {

using ::testing::ElementsAre;
using testing_support::identifierOf;

// The functions under test work on the global stream, which a twin of the same settings mirrors.
class PlainFunctions : public ::testing::Test {
 protected:
  PlainFunctions() { vm.useSettingsFile("/nonexistent/settings.toml"); }

  embedded_host::VmContext vm;
  embedded_host::EnterVm enter{vm};
  std::unique_ptr<randstream> twin{mrCreateRNGStream("mt19937ar", 1, 0, 0, nullptr, 0)};
  double a[20], b[20];
};

TEST_F(PlainFunctions, DrawFromTheGlobalStream) {
  mrRandu(a, 5);
  EXPECT_THAT(std::vector<double>(a, a + 5),
              ElementsAre(0.81472368639317894, 0.90579193707561922, 0.12698681629350606,
                          0.91337585613901939, 0.63235924622540951));
  twin->randuFcn(b, 5);
  const std::vector<std::pair<std::function<void()>, std::function<void()>>> pairs = {
      {[&] { mrRandn(a, 20); }, [&] { twin->randnFcn(b, 20, false); }},
      {[&] { mrRandi(a, 20, -3, 9); }, [&] { twin->randiFcn(-3, 9, b, 20); }},
      {[&] { mrRandperm(a, 20); }, [&] { twin->randpermFcn(b, 20); }},
      {[&] { mrRandkperm(a, 20, 30); }, [&] { twin->randkpermFcn(b, 20, 30); }},
  };
  for (auto const& [plain, method] : pairs) {
    plain();
    method();
    EXPECT_TRUE(std::equal(a, a + 20, b));
  }
  mrGetGlobalStream()->setAntithetic(true);
  twin->setAntithetic(true);
  mrRandu(a, 20);
  twin->randuFcn(b, 20);
  EXPECT_TRUE(std::equal(a, a + 20, b)) << "antithetic mode applies";
}

TEST_F(PlainFunctions, StreamOfAnEmptyArrayIsTheGlobalOneAndOfANumberNone) {
  constexpr std::uint64_t kEmpty[] = {0, 0};
  const txArrayPtr empty = txCreateUninitialized(kEmpty, txClassDouble);
  EXPECT_EQ(mrGetCPPRandStreamFromTxArray(empty.get()), mrGetGlobalStream());
  const txArrayPtr number = txCreateDouble(1);
  EXPECT_EQ(identifierOf([&] { mrGetCPPRandStreamFromTxArray(number.get()); }),
            "TALVOR:RandStream:InvalidHandle");
}

TEST_F(PlainFunctions, StreamOfAnObjectIsTheOneThatItHolds) {
  auto definition = std::make_shared<embedded_host::ClassDefinition>();
  definition->properties = {{.name = "StreamID"}};
  const txArrayPtr object = embedded_host::makeObject(definition);
  const auto streamWith = [&](auto word) {
    embedded_host::setStoredProperty(*object, "StreamID", embedded_host::makeScalar(word));
    return mrGetCPPRandStreamFromTxArray(object.get());
  };
  std::shared_ptr<randstream> held = std::move(twin);
  const auto address = reinterpret_cast<std::uint64_t>(&held);
  EXPECT_EQ(streamWith(address), held.get());
  held.reset();
  EXPECT_EQ(identifierOf([&] { streamWith(address); }), "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(identifierOf([&] { streamWith(std::uint64_t{0}); }), "TALVOR:RandStream:InvalidHandle");
  EXPECT_EQ(identifierOf([&] { streamWith(1.0); }), "TALVOR:RandStream:InvalidHandle");
}

TEST(LegacyStep, FollowsThePublishedSequence) {
  unsigned int state = 1;
  EXPECT_EQ(mrV4Urand(&state), 16807 * 4.656612875245797e-10);
  for (int i = 1; i < 10'000; ++i) mrV4Urand(&state);
  EXPECT_EQ(state, 1043618065U);
  state = 0;
  EXPECT_EQ(mrV4Urand(&state), 0);
  EXPECT_EQ(state, 0U);
}

}  // namespace
