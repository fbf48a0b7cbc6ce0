// Comparing texts, with upper and lower case treated as equal.
#include "orzcore/foundation.h"
#include "platform/system.h"

namespace orzcore::foundation {
namespace {

int CompareBytes(unsigned char a, unsigned char b) { return a < b ? -1 : a > b ? 1 : 0; }

int CompareAsLower(char a, char b) {
  if (a == b) return 0;
  return CompareBytes(static_cast<unsigned char>(platform::CharLowerA(a)),
                      static_cast<unsigned char>(platform::CharLowerA(b)));
}

// Not `std::toupper`, whose result depends on the locale of the program.
unsigned char ToUpper(char c) {
  return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
}

int CompareAsUpper(char a, char b) { return CompareBytes(ToUpper(a), ToUpper(b)); }

}  // namespace
}  // namespace orzcore::foundation

namespace foundation = orzcore::foundation;

int Ansiicmp(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int result = foundation::CompareAsLower(*a, *b);
    if (result != 0) return result;
    if (*a == '\0') return 0;
  }
}

int Ansinicmp(const char* a, const char* b, unsigned short count) {
  for (; count > 0; --count, ++a, ++b) {
    const int result = foundation::CompareAsLower(*a, *b);
    if (result != 0) return result;
    if (*a == '\0') break;
  }
  return 0;
}

int stricmp(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int result = foundation::CompareAsUpper(*a, *b);
    if (result != 0) return result;
    if (*a == '\0') return 0;
  }
}

int strnicmp(const char* a, const char* b, std::size_t count) {
  for (; count > 0; --count, ++a, ++b) {
    const int result = foundation::CompareAsUpper(*a, *b);
    if (result != 0) return result;
    if (*a == '\0') break;
  }
  return 0;
}
