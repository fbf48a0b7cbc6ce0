// What the system's loader does for a module: it calls the entry function, and finds string
// resources.
//
// The two are in one file so that a program that the library is a part of always has the first when
// it uses the second.
#include <algorithm>
#include <cstring>

#include "orzcore/frame.h"
#include "orzcore/platform.h"
#include "platform/system.h"

namespace {

constexpr unsigned int kProcessAttach = 1;

// Its address is the handle of the library's module. The library may be a part of the program, so
// the program's own handle would not do.
constinit char gModule = 0;

// The priority puts it before the static objects of a program that the library is a part of.
[[gnu::constructor(101)]] void Attach() { OZLibraryEntry(&gModule, kProcessAttach, nullptr); }

}  // namespace

namespace orzcore::platform {

int LoadStringA(const void* instance, unsigned int id, char* buffer, unsigned int size) {
  const char* const text = OZStringTable::Find(instance, id);
  if (text == nullptr || size == 0) return 0;
  const std::size_t count = std::min(std::strlen(text), std::size_t{size} - 1);
  std::memcpy(buffer, text, count);
  buffer[count] = '\0';
  return static_cast<int>(count);
}

}  // namespace orzcore::platform
