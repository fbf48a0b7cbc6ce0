// Splitting a text into tokens, and checking the separators between them.
#include "parser/Tokens.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "orzcore/foundation.h"

namespace {

enum class CharClass : unsigned char { kSeparator, kDigit, kLetter, kOther };

constexpr std::array<CharClass, 256> MakeClasses() {
  std::array<CharClass, 256> classes = {};
  classes.fill(CharClass::kOther);
  for (const char c : std::string_view("-,.:;'/ ")) {
    classes[static_cast<unsigned char>(c)] = CharClass::kSeparator;
  }
  for (unsigned c = '0'; c <= '9'; ++c) classes[c] = CharClass::kDigit;
  for (unsigned c = 'A'; c <= 'Z'; ++c) {
    classes[c] = CharClass::kLetter;
    classes[c - 'A' + 'a'] = CharClass::kLetter;
  }
  return classes;
}

constexpr std::array<CharClass, 256> kClasses = MakeClasses();

CharClass ClassOf(char c) { return kClasses[static_cast<unsigned char>(c)]; }

// The first digit or letter from a position on, or the end of the text.
const char* SkipToDigitOrLetter(const char* position) {
  while (*position != '\0' && ClassOf(*position) != CharClass::kDigit &&
         ClassOf(*position) != CharClass::kLetter) {
    ++position;
  }
  return position;
}

// The separators between the tokens of the text that was split last.
constinit char gSeparators[OZParser::kTokens] = {};

// What `divchk` accepts: a date's separators and a time's overlap in the middle.
constexpr char kSeparatorSets[] = {',', '-', '/', '\0', '.', ' ', ':', ';', '\''};
constexpr std::string_view kDateSet(kSeparatorSets, 6);
constexpr std::string_view kTimeSet(kSeparatorSets + 3, 6);

// A set as bits, by the code of the character.
constexpr std::uint64_t BitsOf(std::string_view set) {
  std::uint64_t bits = 0;
  for (const char c : set) bits |= std::uint64_t{1} << c;
  return bits;
}

// Copies a token in upper case, as much of it as its entry holds. Returns whether all of it does.
bool StoreToken(char (&entry)[OZParser::kTokenSize], const char* begin, const char* end) {
  const std::ptrdiff_t room = OZParser::kTokenSize - 1;
  const bool fits = end - begin <= room;
  if (!fits) end = begin + room;
  char* stored = entry;
  for (const char* p = begin; p != end; ++p) {
    *stored++ = static_cast<char>(*p >= 'a' && *p <= 'z' ? *p - 'a' + 'A' : *p);
  }
  *stored = '\0';
  return fits;
}

}  // namespace

namespace parser {

void Tokens::Split(const char* text) {
  std::memset(gSeparators, 0, sizeof(gSeparators));
  for (auto& entry : table_) entry[0] = '\0';
  cut_ = 0;

  const auto store = [this](int index, const char* begin, const char* end) {
    if (!StoreToken(table_[index], begin, end)) cut_ |= 1U << index;
  };
  CharClass current = CharClass::kSeparator;
  CharClass previous = CharClass::kSeparator;
  const char* start = text;
  const char* position = text;
  short index = 0;
  while (*position != '\0' && index < OZParser::kTokens) {
    const CharClass char_class = ClassOf(*position);
    if (char_class != CharClass::kOther) current = char_class;  // others join the run they stand in
    if (char_class == CharClass::kSeparator) gSeparators[index] = *position;
    if (current != previous && position != text) {
      store(index, start, position);
      if (current == CharClass::kSeparator) {
        position = SkipToDigitOrLetter(position);
        if (*position != '\0') current = ClassOf(*position);
      }
      start = position;
      ++index;
    }
    previous = current;
    if (*position != '\0') ++position;
  }
  if (index < OZParser::kTokens) {
    store(index, start, position);
    last_ = index;
  } else {
    last_ = OZParser::kTokens - 1;
  }
}

void Tokens::DropFirst() {
  std::memmove(table_[0], table_[1], sizeof(table_) - sizeof(table_[0]));
  table_[OZParser::kTokens - 1][0] = '\0';
  cut_ >>= 1;
  --last_;
}

char FirstSeparator() { return gSeparators[0]; }

std::int64_t Value(std::string_view token) {
  std::int64_t value = 0;
  for (const char c : token) {
    if (!IsDigit(c)) break;
    value = value * 10 + (c - '0');
    if (value >= kTooLarge) return kTooLarge;
  }
  return value;
}

bool IsNoneWord(const char* text) { return stricmp(text, "No") == 0 || stricmp(text, "None") == 0; }

}  // namespace parser

short OZParser::seperateText(const char* text, char (*tokens)[kTokenSize]) {
  parser::Tokens split;
  split.Split(text);
  for (int i = 0; i < kTokens; ++i) String_copy(tokens[i], split[i], kTokenSize - 1, 1);
  return split.last();
}

int OZParser::divchk(short mode, short last) {
  const std::uint64_t set = mode == parser::kDateSeparators ? BitsOf(kDateSet) : BitsOf(kTimeSet);
  const int slots = std::min(last + 1, kTokens);
  for (int slot = 0; slot < slots; ++slot) {
    if ((set >> gSeparators[slot] & 1) == 0) return 1;
  }
  return 0;
}
