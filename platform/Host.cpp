// The host in force, and the calls that it answers.
#include <new>

#include "orzcore/platform.h"
#include "platform/platform.h"

namespace {

constinit OZHost* gInstalled = nullptr;

// Made in place at first use and never destroyed, so that static objects of the application may use
// the library before `main` and after it.
OZHost& DefaultHost() {
  alignas(OZHost) static char storage[sizeof(OZHost)];
  static auto* const host = new (storage) OZHost;
  return *host;
}

OZHost& Host() { return gInstalled != nullptr ? *gInstalled : DefaultHost(); }

}  // namespace

OZHost::~OZHost() = default;

OZHost* OZHost::Install(OZHost* host) {
  OZHost* const before = &Host();
  gInstalled = host;
  return before;
}

namespace platform {

std::tm LocalTime() { return Host().LocalTime(); }

std::uint32_t GetTickCount() { return Host().GetTickCount(); }

std::uint32_t Clock() { return Host().Clock(); }

int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                      int size) {
  return Host().GetProfileStringA(section, key, fallback, buffer, size);
}

int GetProfileIntA(const char* section, const char* key, int fallback) {
  return Host().GetProfileIntA(section, key, fallback);
}

int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) {
  return Host().MessageBoxA(owner, text, caption, style);
}

void MessageBeep(unsigned int type) { Host().MessageBeep(type); }

void* GetActiveWindow() { return Host().GetActiveWindow(); }

}  // namespace platform
