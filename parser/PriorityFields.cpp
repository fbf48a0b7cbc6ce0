// Priorities: words, numbers, or a letter with a digit.
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "orzcore/frame.h"
#include "parser/Field.h"
#include "platform/system.h"

namespace orzcore::parser {
namespace {

constexpr short kHighest = 0;
constexpr short kLowest = 100;

struct PriorityWord {
  std::string_view start;
  short priority;
};

constexpr PriorityWord kWords[] = {
    {"hi", kHighest}, {"lo", kLowest}, {"no", OZParser::kNoPriority}};

// Keeps only the lower-case letters and the digits of a text, in place.
std::string_view KeepLettersAndDigits(char* text) {
  char* kept = text;
  for (const char* p = text; *p != '\0'; ++p) {
    if ((*p >= 'a' && *p <= 'z') || IsDigit(*p)) *kept++ = *p;
  }
  *kept = '\0';
  return {text, static_cast<std::size_t>(kept - text)};
}

bool ReadPriority(char* text, bool zero_digit, short* priority) {
  text += std::strspn(text, " \t");
  for (const PriorityWord& word : kWords) {
    if (!std::string_view(text).starts_with(word.start)) continue;
    *priority = word.priority;
    return true;
  }
  const std::string_view kept = KeepLettersAndDigits(text);
  if (kept.empty()) {
    *priority = OZParser::kNoPriority;
    return true;
  }
  if (kept.size() > 2) {
    *priority = kLowest;
    return kept == "100";
  }
  const char first = kept[0];
  const bool has_second = kept.size() == 2;
  const char second = has_second ? kept[1] : '0';
  if (!IsDigit(second)) return false;
  if (IsDigit(first)) {
    *priority = static_cast<short>(LeadingNumber(kept));
    return true;
  }
  if (first > 'i' || (has_second && second == '0' && !zero_digit)) return false;
  *priority = static_cast<short>((first - 'a' + 1) * 10 + (second - '0'));
  return true;
}

}  // namespace
}  // namespace orzcore::parser

namespace parser = orzcore::parser;
namespace platform = orzcore::platform;

int OZParser::ParsePriority(short* out, const char* text, int zero_digit) {
  const std::size_t size = std::strlen(text) + 1;
  const std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
  if (copy == nullptr) return eErrOutOfMemory;
  std::memcpy(copy.get(), text, size);
  short priority = kNoPriority;
  if (!parser::ReadPriority(platform::CharLowerA(copy.get()), zero_digit != 0, &priority)) {
    return parser::kRejected;
  }
  *out = priority;
  return parser::kAccepted;
}
