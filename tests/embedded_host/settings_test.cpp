#include "embedded_host/settings.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <optional>

#include "embedded_host/vm_context.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::HasSubstr;

using testing_support::identifierOf;

namespace {

constexpr char kGroup[] = "talvor.general.randomnumbers";

class Settings : public testing::Test {
 protected:
  Settings()
      : folder_(std::filesystem::path(testing::TempDir()) /
                testing::UnitTest::GetInstance()->current_test_info()->name()) {
    std::filesystem::create_directories(folder_);
  }
  ~Settings() override { std::filesystem::remove_all(folder_); }

  std::filesystem::path write(std::string const& text) {
    std::ofstream(file(), std::ios::binary) << text;
    return file();
  }
  std::filesystem::path file() const { return folder_ / "settings.toml"; }

  std::filesystem::path folder_;
};

// Sets or clears a variable of the environment until the end of the scope.
class Variable {
 public:
  Variable(char const* name, std::optional<std::string> const& value) : name_(name) {
    if (char const* old = std::getenv(name)) old_ = old;
    set(value);
  }
  ~Variable() { set(old_); }

 private:
  void set(std::optional<std::string> const& value) {
    value ? setenv(name_, value->c_str(), 1) : unsetenv(name_);
  }
  char const* name_;
  std::optional<std::string> old_;
};

TEST_F(Settings, FactoryValuesHoldWithoutAUserFile) {
  for (auto const& root :
       {readSettings(std::nullopt), readSettings(file()), readSettings(write(""))}) {
    auto const group = root->getSettingsByFullName(kGroup);
    ASSERT_TRUE(group);
    EXPECT_EQ(group->get<std::u16string>("DefaultAlgorithm", ""), u"twister");
    EXPECT_EQ(group->get<double>("DefaultSeed", ""), 0);
  }
}

TEST_F(Settings, UserValueHidesTheFactoryValueKeyByKey) {
  auto const group = readSettings(write("[talvor.general.randomnumbers]\n"
                                        "DefaultAlgorithm = \"philox\"\n"))
                         ->getSettingsByFullName(kGroup);
  EXPECT_EQ(group->get<std::u16string>("DefaultAlgorithm", ""), u"philox");
  EXPECT_EQ(group->get<std::u16string>("DefaultAlgorithm", "factory"), u"twister");
  EXPECT_EQ(group->get<double>("DefaultSeed", ""), 0);
}

TEST_F(Settings, GroupsAreReachedStepByStepOrByFullName) {
  auto const root = readSettings(write("[own.group]\nx = 1.5\n"));
  EXPECT_EQ(
      root->getSettingsByFullName("own")->getSettingsByFullName("group")->get<double>("x", ""),
      1.5);
  EXPECT_FALSE(root->getSettingsByFullName("own.other"));
  EXPECT_FALSE(root->getSettingsByFullName("own.group.x"));
}

TEST_F(Settings, MissingKeysAndWrongTypesAreErrors) {
  auto const group = readSettings(write("[talvor.general.randomnumbers]\n"
                                        "DefaultAlgorithm = 3\nDefaultSeed = \"7\"\n"
                                        "Extra = true\n"))
                         ->getSettingsByFullName(kGroup);
  EXPECT_EQ(identifierOf([&] { group->get<std::u16string>("DefaultAlgorithm", ""); }),
            "TALVOR:settings:WrongType");
  EXPECT_EQ(identifierOf([&] { group->get<double>("DefaultSeed", ""); }),
            "TALVOR:settings:WrongType");
  EXPECT_EQ(identifierOf([&] { group->get<double>("Extra", ""); }), "TALVOR:settings:WrongType");
  EXPECT_EQ(identifierOf([&] { group->get<double>("None", ""); }), "TALVOR:settings:UnknownKey");
  EXPECT_EQ(identifierOf([&] { group->get<double>("Extra", "factory"); }),
            "TALVOR:settings:UnknownKey");
  EXPECT_EQ(identifierOf([&] { group->get<double>("DefaultSeed", "user"); }),
            "TALVOR:settings:UnknownLevel");
}

TEST_F(Settings, BrokenFileIsNamedWithItsLine) {
  try {
    readSettings(write("[talvor.general.randomnumbers]\nDefaultSeed = = 1\n"));
    FAIL();
  } catch (foundation::core::except::AnyException const& error) {
    EXPECT_EQ(error.GetID(), "TALVOR:settings:BrokenFile");
    EXPECT_THAT(error.text(), HasSubstr(file().string()));
    EXPECT_THAT(error.text(), HasSubstr("line 2, column 15"));
  }
}

TEST_F(Settings, FolderIsNoSettingsFileAndAnEmptyFileIsOne) {
  auto const read = [&] { readSettings(folder_); };
  EXPECT_EQ(identifierOf(read), "TALVOR:settings:UnreadableFile");
  write("");
  EXPECT_EQ(identifierOf(read), "TALVOR:settings:UnreadableFile");
  EXPECT_NO_THROW(readSettings(file()));
}

TEST_F(Settings, FileIsFoundThroughTheEnvironment) {
  Variable const own("TVRNG_SETTINGS", std::nullopt);
  Variable const config("XDG_CONFIG_HOME", std::nullopt);
  Variable const home("HOME", std::nullopt);
  EXPECT_EQ(userSettingsFile(), std::nullopt);
  Variable const home2("HOME", "/home/me");
  EXPECT_EQ(userSettingsFile(), "/home/me/.config/tvrng/settings.toml");
  Variable const config2("XDG_CONFIG_HOME", "/etc/me");
  EXPECT_EQ(userSettingsFile(), "/etc/me/tvrng/settings.toml");
  Variable const empty("TVRNG_SETTINGS", "");
  EXPECT_EQ(userSettingsFile(), "/etc/me/tvrng/settings.toml");
  Variable const own2("TVRNG_SETTINGS", "my.toml");
  EXPECT_EQ(userSettingsFile(), "my.toml");
}

TEST_F(Settings, VmReadsAtFirstUseAndAgainWhenAsked) {
  auto const seed = [] {
    return settings::standalone::getSettingsRoot()->getSettingsByFullName(kGroup)->get<double>(
        "DefaultSeed", "");
  };
  VmContext vm;
  EnterVm const inside(vm);
  vm.useSettingsFile(write("talvor.general.randomnumbers.DefaultSeed = 5.9\n"));
  EXPECT_EQ(seed(), 5.9);
  write("talvor.general.randomnumbers.DefaultSeed = -1\n");
  EXPECT_EQ(seed(), 5.9);
  vm.reloadSettings();
  EXPECT_EQ(seed(), -1);
  write("talvor.general.randomnumbers.DefaultSeed =\n");
  vm.reloadSettings();
  EXPECT_EQ(identifierOf(seed), "TALVOR:settings:BrokenFile");
  write("talvor.general.randomnumbers.DefaultSeed = 2\n");
  EXPECT_EQ(seed(), 2);
}

}  // namespace
