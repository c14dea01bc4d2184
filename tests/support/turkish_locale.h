#pragma once

// A process whose locale has other rules for capitals: in Turkish, "I" is none of "i".

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace testing_support {

class TurkishLocale : public testing::Test {
 protected:
  // Installed on few machines, so that it is made from its source, once for each test program.
  void SetUp() override {
    std::string const program = testing::internal::GetArgvs().front();
    std::string const folder =
        testing::TempDir() + "locales_of_" + program.substr(program.rfind('/') + 1);
    std::string const locale = folder + "/" + kLocale;
    std::string const make =
        "mkdir -p '" + folder + "' && localedef -i tr_TR -f UTF-8 '" + locale + "' >/dev/null 2>&1";
    bool const isMade = std::filesystem::exists(locale) || std::system(make.c_str()) == 0;
    setenv("LOCPATH", folder.c_str(), 1);
    if (!isMade || !std::setlocale(LC_ALL, kLocale))
      GTEST_SKIP() << "no Turkish locale can be made: the package 'locales' is missing";
  }
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }

 private:
  static constexpr char kLocale[] = "tr_TR.UTF-8";
};

}  // namespace testing_support
