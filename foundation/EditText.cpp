// Copying texts, editing them in place, and searching bytes.
#include <cstring>

#include "orzcore/foundation.h"

void IncrementAsciiNumber(char* text) {
  for (std::size_t i = std::strlen(text); i > 1; --i) {
    char& digit = text[i - 1];
    const auto next = static_cast<signed char>(digit + 1);
    if (next <= '9') {
      digit = static_cast<char>(next);
      return;
    }
    digit = '0';
  }
}

const unsigned char* Memchr_ne(const unsigned char* block, short value, short count) {
  if (count < 0) return block;
  const auto unwanted = static_cast<unsigned char>(value);
  for (const unsigned char* p = block; p != block + count; ++p) {
    if (*p != unwanted) return p;
  }
  return nullptr;
}

void Strextr(char* destination, const char* source, short count) {
  if (count < 0) return;
  std::memmove(destination, source, static_cast<std::size_t>(count));
  destination[count] = '\0';
}

void String_copy(char* destination, const char* source, short maximum, int terminate) {
  int copied = 0;
  for (; copied < maximum && source[copied] != '\0'; ++copied) {
    destination[copied] = source[copied];
  }
  if (terminate != 0) destination[copied] = '\0';
}

void Strip(char* text, int commas) {
  char* kept = text;
  for (const char* p = text; *p != '\0'; ++p) {
    const bool dropped = *p == ' ' || (commas != 0 && *p == ',');
    if (!dropped) *kept++ = *p;
  }
  *kept = '\0';
}
