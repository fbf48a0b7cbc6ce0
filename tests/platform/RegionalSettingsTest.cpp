#include <gtest/gtest.h>
#include <locale.h>

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "orzcore/platform.h"

namespace {

// The environment of one test, with the locales that the build made for the tests.
class RegionalSettings : public testing::Test {
 protected:
  RegionalSettings() {
    setenv("LOCPATH", LOCALE_DIRECTORY, 1);
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) unsetenv(variable);
  }
  ~RegionalSettings() override { unsetenv("LOCPATH"); }

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
    setenv("LANG", none, 1);
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
    setenv("LANG", name.c_str(), 1);
    EXPECT_EQ(ShortDate(), short_date);
    EXPECT_EQ(Clock(), clock);
  }
}

TEST_F(RegionalSettings, AreReadAtEachCallFromTheStrongestVariable) {
  setenv("LANG", "en_US.UTF-8", 1);
  if (Clock() != 0) GTEST_SKIP() << "the locales could not be made on this machine";
  setenv("LC_TIME", "sv_SE.UTF-8", 1);
  EXPECT_EQ(ShortDate(), "yyyy-MM-dd");
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  EXPECT_EQ(ShortDate(), "dd.MM.yyyy");
  setenv("LC_ALL", "", 1);  // set to nothing does not count
  EXPECT_EQ(ShortDate(), "yyyy-MM-dd");
  char entry[32] = "LC_ALL=";
  putenv(entry);
  EXPECT_EQ(ShortDate(), "yyyy-MM-dd");
  std::strcpy(entry, "LC_ALL=de_DE.UTF-8");  // the owner may change it in place
  EXPECT_EQ(ShortDate(), "dd.MM.yyyy");
  std::strcpy(entry, "X=");  // and what was behind the name is no value then
  EXPECT_EQ(ShortDate(), "yyyy-MM-dd");
  setenv("LC_ALL", std::string(500, 'x').c_str(), 1);
  EXPECT_EQ(ShortDate(), "M/d/yy");
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(Clock(), -7);
  EXPECT_STREQ(setlocale(LC_TIME, nullptr), "C");  // the process keeps its own
}

TEST_F(RegionalSettings, KnowTwoEntriesAndCutAtTheBuffer) {
  setenv("LANG", "de_DE.UTF-8", 1);
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
