#include "embedded_host/settings.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>

#include "embedded_host/messages.h"
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
  // The settings that a file of this text gives.
  std::shared_ptr<settings::core::Settings> read(std::string const& text) {
    return readSettings(UserSettingsFile{write(text)});
  }

  std::filesystem::path folder_;
};

// A process of root's has no rights but those of everybody until the end of the scope.
class Unprivileged {
 public:
  Unprivileged() : lowered_(geteuid() == 0 && seteuid(65534) == 0) {}
  ~Unprivileged() {
    if (lowered_ && seteuid(0) != 0) ADD_FAILURE() << "root stays without rights";
  }
  bool holds() const { return geteuid() != 0; }

 private:
  bool lowered_;
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
       {readSettings(std::nullopt), readSettings(UserSettingsFile{file()}), read(""),
        readSettings(UserSettingsFile{""}), readSettings(UserSettingsFile{"/dev/null", true})}) {
    auto const group = root->getSettingsByFullName(kGroup);
    ASSERT_TRUE(group);
    EXPECT_EQ(group->get<std::u16string>("DefaultAlgorithm", ""), u"twister");
    EXPECT_EQ(group->get<double>("DefaultSeed", ""), 0);
  }
}

TEST_F(Settings, UserValueHidesTheFactoryValueKeyByKey) {
  auto const group = read("[talvor.general.randomnumbers]\nDefaultAlgorithm = \"philox\"\n")
                         ->getSettingsByFullName(kGroup);
  EXPECT_EQ(group->get<std::u16string>("DefaultAlgorithm", ""), u"philox");
  EXPECT_EQ(group->get<std::u16string>("DefaultAlgorithm", "factory"), u"twister");
  EXPECT_EQ(group->get<double>("DefaultSeed", ""), 0);
}

TEST_F(Settings, GroupsAreReachedStepByStepOrByFullName) {
  auto const root = read("talvor.general.randomnumbers.DefaultSeed = 1.5\n");
  auto const general = root->getSettingsByFullName("talvor")->getSettingsByFullName("general");
  EXPECT_EQ(general->getSettingsByFullName("randomnumbers")->get<double>("DefaultSeed", ""), 1.5);
  EXPECT_FALSE(root->getSettingsByFullName("talvor.other"));
  EXPECT_FALSE(root->getSettingsByFullName(std::string(kGroup) + ".DefaultSeed"));
}

TEST_F(Settings, MissingKeysAndWrongTypesAreErrors) {
  for (char const* seed : {"\"7\"", "true", "[7]", "{}"}) {
    auto const group = read(
                           "[talvor.general.randomnumbers]\n"
                           "DefaultAlgorithm = 3\nDefaultSeed = " +
                           std::string(seed))
                           ->getSettingsByFullName(kGroup);
    EXPECT_EQ(identifierOf([&] { group->get<std::u16string>("DefaultAlgorithm", ""); }),
              "TALVOR:settings:WrongType");
    EXPECT_EQ(identifierOf([&] { group->get<double>("DefaultSeed", ""); }),
              "TALVOR:settings:WrongType");
    EXPECT_EQ(identifierOf([&] { group->get<double>("None", ""); }), "TALVOR:settings:UnknownKey");
    EXPECT_EQ(identifierOf([&] { group->get<double>("DefaultSeed", "user"); }),
              "TALVOR:settings:UnknownLevel");
  }
}

TEST_F(Settings, WhatIsWrongWithAFileIsToldWithItsPlace) {
  std::string const group = "[talvor.general.randomnumbers]\n", all = "the settings are talvor";
  struct Told {
    std::string text;
    char const* identifier;
    std::string place, hint = "";
  };
  constexpr char kMeant[] = "did you mean talvor.general.randomnumbers.DefaultSeed?";
  Told const rows[] = {
      {group + "DefaultSeed = = 1\n", "BrokenFile", "line 2, column 15"},
      {group + "\nDefaultSed = 7", "UnknownSetting", "line 3, column 14", kMeant},
      {group + "defaultseed = 7", "UnknownSetting", "line 2, column 15", kMeant},
      {"DefaultSeed = 7", "UnknownSetting", "line 1, column 15", kMeant},
      {"talvor.general.randomnumber.DefaultSeed = 7", "UnknownSetting", "randomnumber\"", all},
      {"[talvor.general]\nrandomnumbers = 7", "UnknownSetting", "general.randomnumbers\"", all},
      {group + "Generator = 7", "UnknownSetting", "randomnumbers.Generator\"", all},
      {"[own]", "UnknownSetting", "\"own\"", all},
      {"x = \"\"\"\n\n\"\"\"\ny = " + std::string(40, '['), "TooDeep", "line 4"},
  };
  for (Told const& row : rows) {
    SCOPED_TRACE(row.text);
    try {
      read(row.text);
      ADD_FAILURE() << "accepted";
    } catch (foundation::core::except::AnyException const& error) {
      EXPECT_EQ(error.GetID(), std::string("TALVOR:settings:") + row.identifier);
      EXPECT_THAT(error.text(), HasSubstr(file().string()));
      EXPECT_THAT(error.text(), HasSubstr(row.place));
      EXPECT_THAT(renderHint(error.GetBaseMsgIDObj()), HasSubstr(row.hint));
    }
  }
}

std::string times(std::size_t count, std::string const& part) {
  std::string text;
  while (count-- > 0) text += part;
  return text;
}

// The parser and its tables take a call for each level: deep files once ended the program.
TEST_F(Settings, SizeAndDepthOfAFileAreBounded) {
  auto const told = [&](std::string const& text) { return identifierOf([&] { read(text); }); };
  constexpr std::size_t kMany = 40'000, kFits = 30'000, kLevels = 32;
  std::string const comment = "#" + times(65534, ".");
  EXPECT_EQ(told(times(kMany, "a.") + "a = 1"), "TALVOR:settings:TooLarge");
  EXPECT_EQ(told(comment + "\n"), "no error");
  EXPECT_EQ(told(comment + "\n\n"), "TALVOR:settings:TooLarge");
  for (std::string const& deep : {
           times(kFits, "a.") + "a = 1",
           "[" + times(kFits, "a.") + "a]",
           "x = " + times(kFits, "["),
           "x = " + times(kFits / 10, "{a.a.a.a ="),
           "x = [\n" + times(kFits / 10, "[\n"),
           times(kLevels + 1, "a.") + "a = 1",
           times(kFits / 2, "\"a\".") + "a = 1",
           // What looks like the end of a text or comment, and is none.
           "x = \"\\\"\" # \"\ny = [\"\"\"\"\"\"\"\", {" + times(kFits, "a.") + "a = 1",
           "x = ['''a''''', {" + times(kFits, "a.") + "a = 1",
           "x = ['\\', {" + times(kFits, "a.") + "a = 1",
       })
    EXPECT_EQ(told(deep), "TALVOR:settings:TooDeep") << deep.substr(0, 40);
  // Points within texts and comments, in other statements, and no more than the bound.
  for (std::string const& flat : {
           "x = \"" + times(kFits, ".") + "\"",
           "x = \"\\\"" + times(kFits, ".") + "\"",
           "x = '\\' # " + times(kFits, "."),
           "x = \"\"\"\n" + times(kFits, ".") + "\\\"\"\"\"",
           "x = '''\n" + times(kFits, "[") + "'''''",
           times(1000, "[a]\nb.c.d = [1]\n\n"),
           times(kLevels, "a.") + "a = 1",
           "[" + times(kLevels - 1, "a.") + "a]\n" + times(kLevels, "b.") + "b = 1",
       }) {
    std::string const identifier = told(flat);
    EXPECT_TRUE(identifier == "TALVOR:settings:UnknownSetting" ||
                identifier == "TALVOR:settings:BrokenFile")
        << identifier << " " << flat.substr(0, 40);
  }
}

TEST_F(Settings, WhatCannotBeReachedIsNoMissingFile) {
  namespace fs = std::filesystem;
  auto const told = [](fs::path const& path, bool mustExist = false) {
    return identifierOf([&] { readSettings(UserSettingsFile{path, mustExist}); });
  };
  constexpr char kUnreadable[] = "TALVOR:settings:UnreadableFile";
  EXPECT_EQ(told(folder_), kUnreadable);
  EXPECT_EQ(told(folder_ / "none.toml"), "no error");
  EXPECT_EQ(told(folder_ / "none.toml", true), kUnreadable);
  EXPECT_EQ(told(folder_ / std::string(5000, 'a')), kUnreadable);
  fs::create_symlink("loop", folder_ / "loop");
  fs::create_symlink("none.toml", folder_ / "dangling");
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  for (char const* name : {"loop", "loop/settings.toml", "dangling", "pipe"})
    EXPECT_EQ(told(folder_ / name), kUnreadable) << name;

  write("");
  EXPECT_EQ(told(file()), "no error");
  EXPECT_EQ(told(file() / "settings.toml"), "no error");  // below a file there is none
  fs::create_directory(folder_ / "closed");
  fs::permissions(folder_ / "closed", fs::perms::none);
  fs::permissions(file(), fs::perms::none);
  Unprivileged const now;
  if (!now.holds()) GTEST_SKIP() << "root may read everything";
  EXPECT_EQ(told(folder_ / "closed/settings.toml"), kUnreadable);
  EXPECT_EQ(told(file()), kUnreadable);
}

TEST_F(Settings, FileIsFoundThroughTheEnvironment) {
  Variable const own("TVRNG_SETTINGS", std::nullopt);
  Variable const config("XDG_CONFIG_HOME", std::nullopt);
  Variable const home("HOME", std::nullopt);
  EXPECT_FALSE(userSettingsFile());
  auto const expectFile = [](char const* path, bool mustExist) {
    auto const found = userSettingsFile();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->path, path);
    EXPECT_EQ(found->mustExist, mustExist);
  };
  Variable const home2("HOME", "/home/me");
  expectFile("/home/me/.config/tvrng/settings.toml", false);
  Variable const config2("XDG_CONFIG_HOME", "/etc/me");
  expectFile("/etc/me/tvrng/settings.toml", false);
  Variable const empty("TVRNG_SETTINGS", "");
  expectFile("/etc/me/tvrng/settings.toml", false);
  Variable const own2("TVRNG_SETTINGS", "my.toml");
  expectFile("my.toml", true);
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
