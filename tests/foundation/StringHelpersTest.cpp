#include <gtest/gtest.h>

#include <string>

#include "orzcore/foundation.h"

namespace {

int Order(int a, int b) { return a < b ? -1 : a > b ? 1 : 0; }

// The small letter of a capital in code page 1252, or the code itself.
int Lower(int code) {
  const bool is_capital = (code >= 'A' && code <= 'Z') || (code >= 0xC0 && code <= 0xDE);
  if (code == 0x8A || code == 0x8C || code == 0x8E) return code + 0x10;
  if (code == 0x9F) return 0xFF;
  return is_capital && code != 0xD7 ? code + 0x20 : code;
}

int Upper(int code) { return code >= 'a' && code <= 'z' ? code - 0x20 : code; }

TEST(CompareText, FollowsTheCaseRulesOfEachFunction) {
  for (int i = 0; i < 256; ++i) {
    for (int j = 0; j < 256; ++j) {
      SCOPED_TRACE(testing::Message() << "the characters " << i << " and " << j);
      const char a[] = {'x', static_cast<char>(i), 'p', '\0'};
      const char b[] = {'X', static_cast<char>(j), 'q', '\0'};
      const int ansi = Order(Lower(i), Lower(j)), ascii = Order(Upper(i), Upper(j));
      EXPECT_EQ(Ansinicmp(a, b, 2), ansi);
      EXPECT_EQ(strnicmp(a, b, 2), ascii);
      const int rest = i == 0 ? 0 : -1;  // equal texts end at a terminator
      EXPECT_EQ(Ansiicmp(a, b), ansi != 0 ? ansi : rest);
      EXPECT_EQ(stricmp(a, b), ascii != 0 ? ascii : rest);
      EXPECT_EQ(Ansinicmp(a, b, 9), Ansiicmp(a, b));
      EXPECT_EQ(strnicmp(a, b, 9), stricmp(a, b));
    }
  }
  EXPECT_EQ(Ansinicmp("a", "b", 0) + strnicmp("a", "b", 0), 0);
}

TEST(EditText, ChangesTextsInPlace) {
  const struct {
    const char* text;
    void (*edit)(char* text);
    const char* result;
  } kRows[] = {
      {"A09", IncrementAsciiNumber, "A10"},
      {"A99", IncrementAsciiNumber, "A00"},
      {"A-", IncrementAsciiNumber, "A."},
      {"A1z", IncrementAsciiNumber, "A20"},
      {"A1\xE9", IncrementAsciiNumber, "A1\xEA"},
      {"A9\xFF", IncrementAsciiNumber, "A9"},
      {" 1, 000 .5\t ", [](char* text) { Strip(text, 0); }, "1,000.5\t"},
      {" 1, 000 .5\t ", [](char* text) { Strip(text, 1); }, "1000.5\t"},
      {"0123456789", [](char* text) { Strextr(text + 2, text, 4); }, "010123"},
      {"0123456789", [](char* text) { Strextr(text, text + 2, 3); }, "234"},
      {"0123456789", [](char* text) { Strextr(text, "abc", 0); }, ""},
      {"0123456789", [](char* text) { Strextr(text, "abc", -1); }, "0123456789"},
      {"---------", [](char* text) { String_copy(text, "hello", 3, 1); }, "hel"},
      {"---------", [](char* text) { String_copy(text, "hello", 3, 0); }, "hel------"},
      {"---------", [](char* text) { String_copy(text, "hello", 9, 0); }, "hello----"},
      {"---------", [](char* text) { String_copy(text, "hello", -1, 1); }, ""},
  };
  for (const auto& row : kRows) {
    std::string text = row.text;
    row.edit(text.data());
    EXPECT_STREQ(text.c_str(), row.result) << row.text;
  }
}

TEST(Memchr_ne, FindsTheFirstDifferentByte) {
  constexpr unsigned char kBlock[] = {0, 0, 7};
  EXPECT_EQ(Memchr_ne(kBlock, 0x100, 3), kBlock + 2);  // only the low 8 bits count
  EXPECT_EQ(Memchr_ne(kBlock, 0, 2), nullptr);
  EXPECT_EQ(Memchr_ne(kBlock, 5, 0), nullptr);
  EXPECT_EQ(Memchr_ne(kBlock, 0, -1), kBlock);
}

}  // namespace
