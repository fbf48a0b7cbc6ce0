#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "orzcore/foundation.h"

namespace {

TEST(CompareText, FollowsTheCaseRulesOfEachFunction) {
  constexpr struct {
    const char *a, *b;
    int ansi, ascii;
  } kCases[] = {
      {"abc", "ABD", -1, -1},
      {"ABC", "abc", 0, 0},
      {"abc", "ab", 1, 1},
      {"", "", 0, 0},
      {"b", "", 1, 1},
      {"a", "B", -1, -1},
      {"z", "\xE4", -1, -1},
      {"_", "a", -1, 1},  // between Z and a: below small letters, above capitals
      // The first and the last letter of each range, and the characters beside the range. Only
      // Ansiicmp ignores the case of accented letters.
      {"@", "`", -1, -1},
      {"A", "a", 0, 0},
      {"Z", "z", 0, 0},
      {"[", "{", -1, -1},
      {"\x89", "\x99", -1, -1},
      {"\x8A", "\x9A", 0, -1},
      {"\x8B", "\x9B", -1, -1},
      {"\x8C", "\x9C", 0, -1},
      {"\x8D", "\x9D", -1, -1},
      {"\x8E", "\x9E", 0, -1},
      {"\x8F", "\x9E", -1, -1},
      {"\x9E", "\xFE", -1, -1},
      {"\x9F", "\xFF", 0, -1},
      {"\xA0", "\x80", 1, 1},
      {"\xBF", "\xDF", -1, -1},
      {"\xC0rger", "\xE0rger", 0, -1},
      {"\xD6", "\xF6", 0, -1},
      {"\xD7", "\xF7", -1, -1},
      {"\xD8", "\xF8", 0, -1},
      {"\xDE", "\xFE", 0, -1},
      {"\xDF", "\xFF", -1, -1},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(std::string(c.a) + " against " + c.b);
    EXPECT_EQ(Ansiicmp(c.a, c.b), c.ansi);
    EXPECT_EQ(Ansiicmp(c.b, c.a), -c.ansi);
    EXPECT_EQ(stricmp(c.a, c.b), c.ascii);
    EXPECT_EQ(stricmp(c.b, c.a), -c.ascii);
    for (unsigned short count = 0; count < 9; ++count) {
      const std::string a = std::string(c.a).substr(0, count);
      const std::string b = std::string(c.b).substr(0, count);
      EXPECT_EQ(Ansinicmp(c.a, c.b, count), Ansiicmp(a.c_str(), b.c_str())) << count;
      EXPECT_EQ(strnicmp(c.a, c.b, count), stricmp(a.c_str(), b.c_str())) << count;
    }
  }
}

TEST(IncrementAsciiNumber, CarriesButNeverIntoTheFirstCharacter) {
  constexpr const char* kCases[][2] = {
      {"A09", "A10"}, {"A99", "A00"}, {"199", "100"},       {"9", "9"},     {"", ""},
      {"A-", "A."},   {"A1z", "A20"}, {"A1\xE9", "A1\xEA"}, {"ab9", "a00"}, {"A9\xFF", "A9"},
  };
  for (const auto& [text, next] : kCases) {
    std::string buffer = text;
    IncrementAsciiNumber(buffer.data());
    EXPECT_STREQ(buffer.c_str(), next) << text;
  }
}

TEST(Memchr_ne, FindsTheFirstDifferentByte) {
  constexpr unsigned char kBlock[] = {0, 0, 7};
  EXPECT_EQ(Memchr_ne(kBlock, 0x100, 3), kBlock + 2);  // only the low 8 bits count
  EXPECT_EQ(Memchr_ne(kBlock, 0, 2), nullptr);
  EXPECT_EQ(Memchr_ne(kBlock, 5, 0), nullptr);
  EXPECT_EQ(Memchr_ne(kBlock, 0, -1), kBlock);
}

TEST(Strextr, CopiesOverlappingTextAndTerminatesIt) {
  char buffer[] = "0123456789";
  Strextr(buffer + 2, buffer, 4);  // overlapping, to the right
  EXPECT_EQ(std::memcmp(buffer, "010123\000789", 11), 0);
  Strextr(buffer, buffer + 2, 3);
  Strextr(buffer, "abc", -1);
  EXPECT_STREQ(buffer, "012");
  Strextr(buffer, "abc", 0);
  EXPECT_STREQ(buffer, "");
  Strextr(buffer, "a\0b", 3);
  EXPECT_EQ(std::memcmp(buffer, "a\0b\0", 4), 0);
}

TEST(String_copy, TerminatesOnlyWhenAsked) {
  constexpr struct {
    short maximum;
    int terminate;
    const char* expected;  // the buffer, which contained nine dashes; 0 is the terminator
  } kCases[] = {{3, 1, "hel0-----"}, {3, 0, "hel------"}, {9, 0, "hello----"},
                {9, 1, "hello0---"}, {0, 0, "---------"}, {-1, 1, "0--------"}};
  for (const auto& c : kCases) {
    std::string buffer(9, '-');
    String_copy(buffer.data(), "hello", c.maximum, c.terminate);
    for (char& byte : buffer) byte = byte == '\0' ? '0' : byte;
    EXPECT_EQ(buffer, c.expected) << c.maximum << ' ' << c.terminate;
  }
}

TEST(Strip, RemovesBlanksAndOptionallyCommas) {
  char text[] = " 1, 000 .5\t ";
  Strip(text, 0);
  EXPECT_STREQ(text, "1,000.5\t");
  Strip(text, 1);
  EXPECT_STREQ(text, "1000.5\t");
}

}  // namespace
