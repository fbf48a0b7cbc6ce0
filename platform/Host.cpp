// The host in force, and the calls that it answers.
#include <new>

#include "orzcore/platform.h"
#include "platform/system.h"

namespace {

constinit OZHost* gInstalled = nullptr;
alignas(OZHost) constinit char gDefaultHost[sizeof(OZHost)] = {};

// The default is made at its first use and never destroyed: static objects of the application may
// use the library before `main` and after it, and nothing of it runs at load or at exit.
OZHost& Host() {
  if (gInstalled == nullptr) gInstalled = new (gDefaultHost) OZHost;
  return *gInstalled;
}

}  // namespace

OZHost::~OZHost() = default;

OZHost* OZHost::Install(OZHost* host) {
  OZHost* const before = &Host();
  gInstalled = host;
  return before;
}

namespace orzcore::platform {

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

}  // namespace orzcore::platform
