// The entry of the DLL.
#include "orzcore/frame.h"
#include "platform/system.h"
#include "platform/windows/Native.h"

namespace orzcore::platform {
namespace {

constinit HINSTANCE gModule = nullptr;

}  // namespace

void CallEntryFunction() { OZLibraryEntry(gModule, kProcessAttach, nullptr); }

}  // namespace orzcore::platform

namespace platform = orzcore::platform;

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    platform::gModule = module;
    platform::CallEntryFunction();
  }
  return TRUE;
}
