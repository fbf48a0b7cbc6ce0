// Comparing texts without regard to case.
#include "orzcore/foundation.h"
#include "platform/system.h"

namespace platform = orzcore::platform;

namespace {

int Order(unsigned char a, unsigned char b) { return a < b ? -1 : a > b ? 1 : 0; }

int AnsiOrder(char a, char b) {
  if (a == b) return 0;
  return Order(static_cast<unsigned char>(platform::CharLowerA(a)),
               static_cast<unsigned char>(platform::CharLowerA(b)));
}

// The runtime's `toupper` in its own locale, which knows the letters a to z only.
unsigned char ToUpper(char c) {
  return static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
}

}  // namespace

int Ansiicmp(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int order = AnsiOrder(*a, *b);
    if (order != 0) return order;
    if (*a == '\0') return 0;
  }
}

int Ansinicmp(const char* a, const char* b, unsigned short count) {
  for (; count > 0; --count, ++a, ++b) {
    const int order = AnsiOrder(*a, *b);
    if (order != 0) return order;
    if (*a == '\0') break;
  }
  return 0;
}

int stricmp(const char* a, const char* b) {
  for (;; ++a, ++b) {
    const int order = Order(ToUpper(*a), ToUpper(*b));
    if (order != 0) return order;
    if (*a == '\0') return 0;
  }
}

int strnicmp(const char* a, const char* b, std::uint32_t count) {
  for (; count > 0; --count, ++a, ++b) {
    const int order = Order(ToUpper(*a), ToUpper(*b));
    if (order != 0) return order;
    if (*a == '\0') break;
  }
  return 0;
}
