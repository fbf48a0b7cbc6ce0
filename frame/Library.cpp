// The entry function, and the library's own record.
#include "frame/Library.h"

#include "platform/system.h"

namespace orzcore::frame {
namespace {

constexpr unsigned short kMajorVersion = 3;
constexpr unsigned short kMinorVersion = 0;
constexpr unsigned short kRelease = 1;

// The loader calls the entry function through `CallEntryFunction`. No code of the library calls
// this function, and from a static library the linker takes only the files that something refers
// to. This reference makes the linker take its file into every program that uses the library's
// record.
[[gnu::used]] void (*const kEntryCaller)() = &platform::CallEntryFunction;

}  // namespace

constinit OZErrorInfo gLibraryErrorInfo(OZErrorInfo::kZero);

}  // namespace orzcore::frame

namespace frame = orzcore::frame;
namespace platform = orzcore::platform;

int OZLibraryEntry(void* instance, unsigned int reason, void* /*reserved*/) {
  if (reason != platform::kProcessAttach) return 1;
  OZErrorInfo& info = frame::gLibraryErrorInfo;
  info = OZErrorInfo(OZErrorInfo::kZero);
  info.mText.id = 0;
  info.mCaption.id = frame::kStringCompany;
  info.mMajorVersion = frame::kMajorVersion;
  info.mMinorVersion = frame::kMinorVersion;
  info.mRelease = frame::kRelease;
  info.mModule = "ORZCDLL";
  info.mInstance = instance;
  frame::RegisterLibraryStrings(instance);
  return 1;
}
