// Calls the entry function when the library is loaded. Only a DLL of Windows has an entry that the
// loader knows, see windows/DllMain.cpp. Everywhere else a constructor does the same.
#include "orzcore/frame.h"
#include "platform/system.h"

namespace orzcore::platform {
namespace {

// The address of this object is the handle of the library's module. In a static program the library
// has no module of its own; with the handle of the program, the library's strings and those of the
// program would be mixed.
constinit char gModule = 0;

// This priority is the first that programs may use: it runs before the program's static objects are
// constructed.
[[gnu::constructor(101)]] void OnLoad() { CallEntryFunction(); }

}  // namespace

void CallEntryFunction() { OZLibraryEntry(&gModule, kProcessAttach, nullptr); }

}  // namespace orzcore::platform
