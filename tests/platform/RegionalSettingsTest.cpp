#include <gtest/gtest.h>
#include <locale.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "orzcore/platform.h"

namespace {

// Gives each test its own environment variables, and the locales that the build has made for the
// tests.
class RegionalSettings : public testing::Test {
 protected:
  RegionalSettings() {
    setenv("LOCPATH", LOCALE_DIRECTORY, 1);
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(variable);
  }
  ~RegionalSettings() override { unsetenv("LOCPATH"); }

  static void Set(const char* variable, const char* value) {
    setenv(variable, value, 1);
    OZHost::Install(nullptr);  // the change counts at once
  }

  std::string ShortDate(int size = 50) {
    std::string buffer(static_cast<std::size_t>(size), '#');
    const int count = host_.GetProfileStringA("Intl", "sShortDate", "M/d/yy", buffer.data(), size);
    EXPECT_EQ(std::string(buffer.c_str()).size(), static_cast<std::size_t>(count));
    return buffer.c_str();
  }
  int Clock() { return host_.GetProfileIntA("Intl", "iTime", -7); }

  OZHost host_;
};

TEST_F(RegionalSettings, ComeFromTheUsersLocale) {
  for (const char* none : {"C", "C.UTF-8", "POSIX", "xx_XX.UTF-8", ""}) {
    Set("LANG", none);
    EXPECT_EQ(ShortDate(), "M/d/yy") << none;
    EXPECT_EQ(Clock(), -7) << none;
  }
  std::istringstream rows(
      "en_US.UTF-8 MM/dd/yyyy 0  de_DE.UTF-8 dd.MM.yyyy 1  sv_SE.UTF-8 yyyy-MM-dd 1  "
      "bg_BG.UTF-8 d.MM.yyyy 1");
  int clock = 0;
  for (std::string name, short_date; rows >> name >> short_date >> clock;) {
    const locale_t locale = newlocale(LC_TIME_MASK, name.c_str(), nullptr);
    if (locale == nullptr) GTEST_SKIP() << name << " could not be made on this machine";
    freelocale(locale);
    Set("LANG", name.c_str());
    EXPECT_EQ(ShortDate(), short_date);
    EXPECT_EQ(Clock(), clock);
  }
}

TEST_F(RegionalSettings, AreReadFromTheStrongestVariable) {
  Set("LANG", "en_US.UTF-8");
  if (Clock() != 0) GTEST_SKIP() << "the locales could not be made on this machine";
  Set("LC_TIME", "sv_SE.UTF-8");
  EXPECT_EQ(ShortDate(), "yyyy-MM-dd");
  Set("LC_ALL", "de_DE.UTF-8");
  EXPECT_EQ(ShortDate(), "dd.MM.yyyy");
  Set("LC_ALL", "");  // an empty variable does not count
  EXPECT_EQ(ShortDate(), "yyyy-MM-dd");
  EXPECT_STREQ(setlocale(LC_TIME, nullptr), "C");  // the process keeps its own
}

TEST_F(RegionalSettings, HaveTwoEntriesAndAreCutToTheBuffer) {
  Set("LANG", "de_DE.UTF-8");
  char buffer[8] = "#######";
  EXPECT_EQ(host_.GetProfileStringA("Intl", "sLongDate", "fallback", buffer, 5), 4);
  EXPECT_STREQ(buffer, "fall");
  EXPECT_EQ(host_.GetProfileStringA("intl", "SSHORTDATE", "M", buffer, 0), 0);
  EXPECT_STREQ(buffer, "fall");
  EXPECT_EQ(host_.GetProfileIntA("Extra", "iTime", 5), 5);
  EXPECT_EQ(ShortDate(1), "");
  if (Clock() != 1) GTEST_SKIP() << "the locales could not be made on this machine";
  EXPECT_EQ(host_.GetProfileStringA("intl", "SSHORTDATE", "M", buffer, 4), 3);
  EXPECT_STREQ(buffer, "dd.");
}

}  // namespace
