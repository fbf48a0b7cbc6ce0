// The installed `OZHost`, and the calls that the library passes to it.
#include <new>

#include "orzcore/platform.h"
#include "platform/RefreshTimer.h"
#include "platform/system.h"

namespace orzcore::platform {
namespace {

constinit OZHost* gInstalled = nullptr;
alignas(OZHost) constinit char gDefaultHost[sizeof(OZHost)] = {};

// The default host is made when it is first needed, and never destroyed: static objects of the
// application may use the library before `main` and after it.
OZHost& InstalledHost() {
  if (gInstalled == nullptr) gInstalled = new (gDefaultHost) OZHost;
  return *gInstalled;
}

}  // namespace

constinit std::uint32_t gInstallCount = 0;

std::tm LocalTime() { return InstalledHost().LocalTime(); }

std::uint32_t GetTickCount() { return InstalledHost().GetTickCount(); }

std::uint32_t Clock() { return InstalledHost().Clock(); }

int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                      int size) {
  return InstalledHost().GetProfileStringA(section, key, fallback, buffer, size);
}

int GetProfileIntA(const char* section, const char* key, int fallback) {
  return InstalledHost().GetProfileIntA(section, key, fallback);
}

int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) {
  return InstalledHost().MessageBoxA(owner, text, caption, style);
}

void MessageBeep(unsigned int type) { InstalledHost().MessageBeep(type); }

void* GetActiveWindow() { return InstalledHost().GetActiveWindow(); }

}  // namespace orzcore::platform

namespace platform = orzcore::platform;

OZHost::~OZHost() = default;

OZHost* OZHost::Install(OZHost* host) {
  OZHost* const previous = &platform::InstalledHost();
  platform::gInstalled = host;
  ++platform::gInstallCount;
  return previous;
}
