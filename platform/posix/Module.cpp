// The loader's call of the entry function. The loader of this system knows no entry functions, but
// it runs constructors.
#include "orzcore/frame.h"
#include "platform/system.h"

namespace orzcore::platform {
namespace {

// Its address is the handle of the library's module. In a static program the library has no module
// of its own, and under the program's handle its strings would mix with those of the program.
constinit char gModule = 0;

// With this priority it comes before the static objects of the program.
[[gnu::constructor(101)]] void OnLoad() { CallEntryFunction(); }

}  // namespace

void CallEntryFunction() { OZLibraryEntry(&gModule, kProcessAttach, nullptr); }

}  // namespace orzcore::platform
