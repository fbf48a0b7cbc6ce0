#include <gtest/gtest.h>
#include <langinfo.h>
#include <locale.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "orzcore/platform.h"

namespace {

// The formats of a locale, and the settings that they give. What comes after a null character must
// not be read.
struct Format {
  const char* date;
  const char* time;
  const char* pattern;
  int is_24hour;
};
constexpr Format kFormats[] = {
    {"%m/%d/%Y", "%r", "MM/dd/yyyy", 0},
    {"%-d.%Om.%Yr.", "%k p,%M", "dd.MM.yyyy.", 1},
    {"%e %h, %y%\0%d", "%H%\0%p", "d MMM, yy", 1},
    {"%a%A%C%x%D-%F", "%EI", "MM/dd/yy-yyyy-MM-dd", 0},
    {"%B%B%B%B%B%B%B%B%B%B%B%B%F", "", "MMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMy", 1},
};
const Format* gFormat = nullptr;  // of all locales; null: each has its own

}  // namespace

// The program's own call: the library calls this one instead of that of the C library.
extern "C" char* nl_langinfo_l(nl_item item, locale_t locale) {
  if (gFormat != nullptr) return const_cast<char*>(item == D_FMT ? gFormat->date : gFormat->time);
  const locale_t before = uselocale(locale);
  char* const text = nl_langinfo(item);
  uselocale(before);
  return text;
}

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
    Set("LANG", "de_DE.UTF-8");
    if (Clock() != 1) GTEST_SKIP() << "the locale could not be made on this machine";
    EXPECT_EQ(ShortDate(), "dd.MM.yyyy");
    Set("LANG", none);
    EXPECT_EQ(ShortDate(), "M/d/yy") << none;
    EXPECT_EQ(Clock(), -7) << none;
  }
  for (const Format& format : kFormats) {
    gFormat = &format;
    Set("LANG", "de_DE.UTF-8");
    EXPECT_EQ(ShortDate(), format.pattern) << format.date;
    EXPECT_EQ(Clock(), format.is_24hour) << format.time;
  }
  gFormat = nullptr;
}

TEST_F(RegionalSettings, AreReadFromTheStrongestVariable) {
  Set("LANG", "en_US.UTF-8");
  if (Clock() != 0) GTEST_SKIP() << "the locales could not be made on this machine";
  const std::pair<const char*, const char*> kSteps[] = {
      {"LC_TIME", "sv_SE.UTF-8"}, {"LC_ALL", "de_DE.UTF-8"}, {"LC_ALL", ""}};  // empty: not set
  for (const auto& [variable, locale] : kSteps) {
    Set(variable, locale);
    EXPECT_EQ(ShortDate(), *locale == 'd' ? "dd.MM.yyyy" : "yyyy-MM-dd");
  }
  EXPECT_STREQ(setlocale(LC_TIME, nullptr), "C");  // the process keeps its own
}

TEST_F(RegionalSettings, HaveTwoEntriesAndAreCutToTheBuffer) {
  const struct {
    const char *section, *key;
    int size;
    const char* text;
  } kRows[] = {{"Intl", "sLongDate", 5, "fall"}, {"Extra", "sShortDate", 9, "fallback"},
               {"intl", "SSHORTDATE", 4, "dd."}, {"Intl", "sShortDate", 1, ""},
               {"Intl", "sShortDate", 0, "#"},   {"Intl", "iTime", 9, "fallback"}};
  Set("LANG", "de_DE.UTF-8");
  if (Clock() != 1) GTEST_SKIP() << "the locales could not be made on this machine";
  for (const auto& row : kRows) {
    char buffer[10] = "#";
    const int count = host_.GetProfileStringA(row.section, row.key, "fallback", buffer, row.size);
    EXPECT_STREQ(buffer, row.text) << row.key << ' ' << row.size;
    EXPECT_EQ(count, row.size == 0 ? 0 : static_cast<int>(std::strlen(row.text))) << row.key;
  }
  EXPECT_EQ(host_.GetProfileIntA("Extra", "iTime", 5), 5);
  EXPECT_EQ(host_.GetProfileIntA("Intl", "sShortDate", 5), 5);
}

}  // namespace
