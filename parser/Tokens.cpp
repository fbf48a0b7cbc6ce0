// Splitting a text into tokens, and checking the separators between them.
#include "parser/Tokens.h"

#include <algorithm>
#include <cstring>

#include "orzcore/foundation.h"

namespace orzcore::parser {
namespace {

enum class CharClass : unsigned char { kEnd, kSeparator, kDigit, kLetter, kOther };

struct CharInfo {
  CharClass char_class;
  char upper;
};

constexpr std::array<CharInfo, 256> MakeCharTable() {
  std::array<CharInfo, 256> table = {};
  for (unsigned c = 0; c < table.size(); ++c) table[c] = {CharClass::kOther, static_cast<char>(c)};
  table[0].char_class = CharClass::kEnd;
  for (const char c : std::string_view("-,.:;'/ ")) {
    table[static_cast<unsigned char>(c)].char_class = CharClass::kSeparator;
  }
  for (unsigned c = '0'; c <= '9'; ++c) table[c].char_class = CharClass::kDigit;
  for (unsigned c = 'A'; c <= 'Z'; ++c) {
    table[c].char_class = CharClass::kLetter;
    table[c - 'A' + 'a'] = {CharClass::kLetter, static_cast<char>(c)};
  }
  return table;
}

constexpr std::array<CharInfo, 256> kCharTable = MakeCharTable();

const CharInfo& InfoOf(char c) { return kCharTable[static_cast<unsigned char>(c)]; }
CharClass ClassOf(char c) { return InfoOf(c).char_class; }

bool IsDigitOrLetter(CharClass c) { return c == CharClass::kDigit || c == CharClass::kLetter; }

// Returns the first digit or letter from a position on, or the end of the text.
const char* SkipToDigitOrLetter(const char* position) {
  while (*position != '\0' && !IsDigitOrLetter(ClassOf(*position))) ++position;
  return position;
}

// The two sets overlap: both have the three separators in the middle.
constexpr char kSeparatorSets[] = {',', '-', '/', '\0', '.', ' ', ':', ';', '\''};
constexpr std::string_view kDateSet(kSeparatorSets, 6);
constexpr std::string_view kTimeSet(kSeparatorSets + 3, 6);

// Returns a set with one bit for each character: the bit whose number is the character's code.
constexpr std::uint64_t BitsOf(std::string_view set) {
  std::uint64_t bits = 0;
  for (const char c : set) bits |= std::uint64_t{1} << c;
  return bits;
}

// Returns true if the separators of the tokens from 0 to `last_index` belong to a set.
bool AreInSet(const Separators& separators, int last_index, SeparatorSet set) {
  const std::uint64_t bits = set == SeparatorSet::kDate ? BitsOf(kDateSet) : BitsOf(kTimeSet);
  for (int i = 0; i <= last_index; ++i) {
    if ((bits >> separators[static_cast<std::size_t>(i)] & 1) == 0) return false;
  }
  return true;
}

// Returns the last separator before the first digit or letter, or NUL. The characters before the
// first digit or letter make a token of their own, which gets this separator.
char LeadingSeparator(const char* text) {
  char last = '\0';
  for (; *text != '\0' && !IsDigitOrLetter(ClassOf(*text)); ++text) {
    if (ClassOf(*text) == CharClass::kSeparator) last = *text;
  }
  return last;
}

// `seperateText` writes it, and `divchk` reads it.
constinit Separators gRecordedSeparators = {};

}  // namespace

Tokens::Tokens(const char* text) {
  separators_[0] = LeadingSeparator(text);
  for (;; ++last_index_) {
    text = Store(text);
    const CharClass next = ClassOf(*text);
    if (next == CharClass::kEnd) return;
    if (next == CharClass::kSeparator) {
      separators_[static_cast<std::size_t>(last_index_)] = *text;
      text = SkipToDigitOrLetter(text);
    }
    if (last_index_ == OZParser::kTokens - 1) return;
  }
}

// Stores the token that begins at a position, as the last one so far, and returns where it ends.
//
// A token is a run of digits or of letters. Any other character that is no separator belongs to the
// token before it. Before the first digit or letter, such characters and separators make one token.
const char* Tokens::Store(const char* position) {
  const CharClass first = ClassOf(*position);
  const CharClass run = IsDigitOrLetter(first) ? first : CharClass::kSeparator;
  char* const entry = table_[last_index_];
  char* const limit = entry + OZParser::kTokenSize - 1;
  char* stored = entry;
  for (;; ++position) {
    const CharInfo& info = InfoOf(*position);
    if (info.char_class != run && info.char_class != CharClass::kOther) break;
    if (stored != limit) {
      *stored++ = info.upper;
    } else {
      cut_ |= 1U << last_index_;
    }
  }
  length_[last_index_] = static_cast<unsigned char>(stored - entry);
  return position;
}

bool Tokens::HaveOnly(SeparatorSet set) const { return AreInSet(separators_, last_index_, set); }

void Tokens::DropFirst() {
  std::memmove(table_[0], table_[1], sizeof(table_) - sizeof(table_[0]));
  std::memmove(length_, length_ + 1, sizeof(length_) - sizeof(length_[0]));
  std::shift_left(separators_.begin(), separators_.end(), 1);
  length_[OZParser::kTokens - 1] = 0;
  separators_.back() = '\0';
  cut_ >>= 1;
  --last_index_;
}

std::string_view SkipSpaceAndPlus(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  return text;
}

bool IsNoneWord(std::string_view text) {
  constexpr std::string_view kNone = "None";
  const bool has_length = text.size() == kNone.size() || text.size() == 2;
  return has_length && strnicmp(text.data(), kNone.data(), text.size()) == 0;
}

}  // namespace orzcore::parser

namespace parser = orzcore::parser;

short OZParser::seperateText(const char* text, char (*tokens)[kTokenSize]) {
  const parser::Tokens split(text);
  for (int i = 0; i < kTokens; ++i) tokens[i][split[i].copy(tokens[i], kTokenSize - 1)] = '\0';
  parser::gRecordedSeparators = split.AllSeparators();
  return split.LastIndex();
}

int OZParser::divchk(short mode, short last) {
  constexpr short kDateMode = 2;  // any other mode checks a time
  const auto set = mode == kDateMode ? parser::SeparatorSet::kDate : parser::SeparatorSet::kTime;
  const int last_index = std::min<int>(last, kTokens - 1);
  return parser::AreInSet(parser::gRecordedSeparators, last_index, set) ? 0 : 1;
}
