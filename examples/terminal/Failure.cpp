#include "terminal/Failure.h"

#include <cstring>

static constexpr unsigned short kRelease = 1;  // of the program

// The compiler names a source file with its directories, which say nothing to the user.
static const char* WithoutDirectories(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

// Two codes have a better message than their own, which tells of an internal error or just of a file
// that could not be created.
static OZError Plainer(OZError error) {
  if (error == eErrSharing) return eErrInUse;
  return error == eErrCannotCreate ? eErrNameTaken : error;
}

void ShowFailure(const Failure& failure) {
  OZErrorInfo info(OZErrorInfo::kZero);
  info.mError = Plainer(failure.error);
  info.mFile = WithoutDirectories(failure.file);
  info.mLine = failure.line;
  info.mRelease = kRelease;
  OZErrorMgr().FriendlyErrorMsg(&info, failure.subject.c_str());
}
