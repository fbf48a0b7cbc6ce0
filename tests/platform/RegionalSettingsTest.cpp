#include <gtest/gtest.h>
#include <langinfo.h>
#include <locale.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "orzcore/platform.h"
#include "support/PageTables.h"

namespace {
std::string gFormat;  // of dates and times in all locales; empty: each has its own
}  // namespace

// The program's own call: the library calls this one instead of that of the C library.
extern "C" char* nl_langinfo_l(nl_item item, locale_t locale) {
  if (!gFormat.empty()) return gFormat.data();
  const locale_t before = uselocale(locale);
  char* const text = nl_langinfo(item);
  uselocale(before);
  return text;
}

namespace {

constexpr char kPage[] = "guide/platform.md";
constexpr const char* kVariables[] = {"LC_ALL", "LC_TIME", "LANG"};

// The user's locale is German, from those that the build has made for the tests.
class RegionalSettings : public testing::Test {
 protected:
  ~RegionalSettings() override {
    gFormat.clear();
    for (const char* const variable : {"LC_ALL", "LC_TIME", "LANG", "LOCPATH"}) unsetenv(variable);
  }
  void SetUp() override {
    setenv("LOCPATH", LOCALE_DIRECTORY, 1);
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    if (Clock() != "1") GTEST_SKIP() << "the locales could not be made on this machine";
  }

  // The entries of the settings in force, as the page has them.
  std::string ShortDate() {
    char text[60];
    OZHost::Install(nullptr);  // a change counts at once
    host_.GetProfileStringA("Intl", "sShortDate", "M/d/yy", text, sizeof(text));
    return '`' + std::string(text) + '`';
  }
  std::string Clock() {
    OZHost::Install(nullptr);
    const int is_24hour = host_.GetProfileIntA("Intl", "iTime", -7);
    return is_24hour == -7 ? "-" : std::to_string(is_24hour);
  }

  OZHost host_;
};

TEST_F(RegionalSettings, ComeFromTheLocaleThatTheEnvironmentNames) {
  for (const PageRow& row :
       RowsUnder(kPage, {"`LC_ALL`", "`LC_TIME`", "`LANG`", "`sShortDate`", "`iTime`"})) {
    for (std::size_t i = 0; i < std::size(kVariables); ++i) {
      const std::vector<std::string> names = CodeIn(row.cells[i]);
      setenv(kVariables[i], names.empty() ? "" : names[0].c_str(), 1);
      if (row.cells[i] == "not set") unsetenv(kVariables[i]);
    }
    EXPECT_EQ(ShortDate(), row.cells[3]) << row.place;
    EXPECT_EQ(Clock(), row.cells[4]) << row.place;
  }
  EXPECT_STREQ(setlocale(LC_TIME, nullptr), "C");  // the process keeps its own
}

TEST_F(RegionalSettings, FollowTheFormatsOfTheLocale) {
  for (const PageRow& row : RowsUnder(kPage, {"Format", "`sShortDate`", "`iTime`"})) {
    // What comes after the null character must not be read.
    gFormat = CodeIn(row.cells[0])[0] + '\0' + "%d%p";
    EXPECT_TRUE(row.cells[1] == "-" || ShortDate() == row.cells[1]) << row.place << ShortDate();
    EXPECT_TRUE(row.cells[2] == "-" || Clock() == row.cells[2]) << row.place << Clock();
  }
}

TEST_F(RegionalSettings, HaveTwoEntriesAndAreCutToTheBuffer) {
  const struct {
    const char *section, *key;
    int size;
    const char* text;
  } kRows[] = {{"Intl", "sLongDate", 5, "fall"}, {"Extra", "sShortDate", 9, "fallback"},
               {"intl", "SSHORTDATE", 4, "dd."}, {"Intl", "sShortDate", 1, ""},
               {"Intl", "sShortDate", 0, "#"},   {"Intl", "iTime", 9, "fallback"}};
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
