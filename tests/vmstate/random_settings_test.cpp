// The settings of a new global stream, read from another host's store: this program has a
// getSettingsRoot of its own, which the library finds before the embedded host's.

#include "host/settings.h"

#include <gmock/gmock.h>

#include "embedded_host/messages.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"
#include "vmstate/global_stream.h"

namespace {

using namespace testing_support;
using testing::ElementsAre;

// A store with one group, or none.
struct Store {
  bool hasGroup = true;
  std::u16string algorithm = u"twister", factoryAlgorithm = u"twister";
  double seed = 0;
  std::vector<std::string> asked = {};  // of the values: key and level
} store;

class Node final : public settings::core::Settings {
 public:
  explicit Node(bool isGroup) : isGroup_(isGroup) {}

  std::shared_ptr<Settings> getSettingsByFullName(std::string_view name) const override {
    bool const found = store.hasGroup && name == "talvor.general.randomnumbers";
    return found ? std::make_shared<Node>(true) : nullptr;
  }

 protected:
  std::u16string getText(std::string_view key, std::string_view level) const override {
    note(key, level);
    return level == "factory" ? store.factoryAlgorithm : store.algorithm;
  }
  double getNumber(std::string_view key, std::string_view level) const override {
    note(key, level);
    return store.seed;
  }

 private:
  void note(std::string_view key, std::string_view level) const {
    if (!isGroup_) embedded_host::raiseHostError("TALVOR:settings:UnknownKey", "", key);
    store.asked.push_back(std::string(key) + "/" + std::string(level));
  }
  bool isGroup_;
};

class GlobalStreamSettings : public VmTest {
 protected:
  GlobalStreamSettings() { store = {}; }
};

TEST_F(GlobalStreamSettings, NameGeneratorAndSeedOfANewGlobalStream) {
  struct Row {
    char16_t const* algorithm;
    double seed;
    char const* type;
    std::uint32_t word;
  };
  constexpr double kInf = std::numeric_limits<double>::infinity();
  Row const rows[] = {
      {u"twister", 5.9, "mt19937ar", 5},
      {u"simdTwister", -1, "dsfmt19937", 4294967295},
      {u"combRecursive", -1.5, "mrg32k3a", 4294967295},
      {u"multFibonacci", 0x1p32, "mlfg6331_64", 0},
      {u"philox", 0x1p32 + 7, "philox4x32_10", 7},
      {u"threefry", kInf, "threefry4x64_20", 0},
      {u"shr3cong", 42, "shr3cong", 42},
  };
  store.factoryAlgorithm = u"mcg16807";
  for (Row const& row : rows) {
    store.algorithm = row.algorithm;
    store.seed = row.seed;
    call(clearGlobalRandStream, {}, 0);
    EXPECT_STREQ(mrGetGlobalStream()->generatorType(), row.type);
    EXPECT_EQ(mrGetGlobalStream()->seed(), row.word);
  }
}

TEST_F(GlobalStreamSettings, AreReadAtTheLevelInEffectAndThoseOfTheFactoryAtTheirOwn) {
  store.algorithm = u"shr3cong";
  store.factoryAlgorithm = u"philox";
  mrGetGlobalStream();
  EXPECT_THAT(std::exchange(store.asked, {}), ElementsAre("DefaultAlgorithm/", "DefaultSeed/"));
  EXPECT_EQ(call(getFactoryDefaultRandStreamType)->scalarText(), u"philox4x32_10");
  EXPECT_THAT(store.asked, ElementsAre("DefaultAlgorithm/factory"));
}

// What the factory's generator is, only the store knows.
TEST_F(GlobalStreamSettings, WithoutTheGroupAreTheLibrarysOwn) {
  store.hasGroup = false;
  EXPECT_STREQ(mrGetGlobalStream()->generatorType(), "mt19937ar");
  EXPECT_EQ(mrGetGlobalStream()->seed(), 0U);
  EXPECT_EQ(identifierOf([] { call(getFactoryDefaultRandStreamType); }),
            "TALVOR:settings:UnknownKey");
}

}  // namespace

std::shared_ptr<settings::core::Settings> settings::standalone::getSettingsRoot() {
  return std::make_shared<Node>(false);
}
