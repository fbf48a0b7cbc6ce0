// The entry function, and the library's own record.
#include "frame/Library.h"

namespace {

constexpr unsigned int kProcessAttach = 1;
constexpr unsigned short kMajorVersion = 3;
constexpr unsigned short kMinorVersion = 0;
constexpr unsigned short kRelease = 1;

}  // namespace

constinit OZErrorInfo gLibraryErrorInfo(OZErrorInfo::kZero);

int OZLibraryEntry(void* instance, unsigned int reason, void* /*reserved*/) {
  if (reason != kProcessAttach) return 1;
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
