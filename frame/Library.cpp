// The entry function, and the library's own record.
#include "frame/Library.h"

#include "platform/system.h"

namespace platform = orzcore::platform;

namespace {

constexpr unsigned short kMajorVersion = 3;
constexpr unsigned short kMinorVersion = 0;
constexpr unsigned short kRelease = 1;

// The loader calls the entry function through `CallEntryFunction`, which nothing calls by name. A
// static program contains only the files that others refer to. This reference brings in the file of
// `CallEntryFunction` wherever the library's record is used.
[[gnu::used]] void (*const kCaller)() = &platform::CallEntryFunction;

}  // namespace

constinit OZErrorInfo gLibraryErrorInfo(OZErrorInfo::kZero);

int OZLibraryEntry(void* instance, unsigned int reason, void* /*reserved*/) {
  if (reason != platform::kProcessAttach) return 1;
  gLibraryErrorInfo = OZErrorInfo(OZErrorInfo::kZero);
  gLibraryErrorInfo.mText.id = 0;
  gLibraryErrorInfo.mCaption.id = kStringCompany;
  gLibraryErrorInfo.mMajorVersion = kMajorVersion;
  gLibraryErrorInfo.mMinorVersion = kMinorVersion;
  gLibraryErrorInfo.mRelease = kRelease;
  gLibraryErrorInfo.mModule = "ORZCDLL";
  gLibraryErrorInfo.mInstance = instance;
  RegisterLibraryStrings(instance);
  return 1;
}
