// The host in force, and the calls that it answers.
#include "orzcore/platform.h"
#include "platform/platform.h"

namespace {

// Never destroyed, so that static objects of the application may use the library after `main`.
union Forever {
  OZHost host;
  constexpr Forever() : host() {}
  ~Forever() {}  // NOLINT(modernize-use-equals-default): the host's destructor must not run
};

// Ready before any constructor has run, so that such objects may use it before `main` as well.
constinit Forever gDefault;
constinit OZHost* gInstalled = &gDefault.host;

OZHost& Host() { return *gInstalled; }

}  // namespace

OZHost::~OZHost() = default;

OZHost* OZHost::Install(OZHost* host) {
  OZHost* const before = gInstalled;
  gInstalled = host != nullptr ? host : &gDefault.host;
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
