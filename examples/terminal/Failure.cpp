#include "terminal/Failure.h"

#include <cstring>

#include "terminal/Text.h"

static constexpr unsigned short kRelease = 1;  // of the program

// The compiler gives the source file with its directories, which do not help the user.
static const char* WithoutDirectories(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

// The messages of other codes are better here. That of `eErrSharing` is about an internal error,
// and that of `eErrCannotCreate` does not say that the name is taken.
static OZError Plainer(OZError error) {
  if (error == eErrSharing) return eErrInUse;
  return error == eErrCannotCreate ? eErrNameTaken : error;
}

void ShowFailure(const Failure& failure) {
  const std::string subject =
      failure.about.empty()
          ? failure.subject
          : failure.subject + ' ' + Shown(WithoutDirectories(failure.about.c_str()));
  OZErrorInfo info(OZErrorInfo::kZero);
  info.mError = Plainer(failure.error);
  info.mFile = WithoutDirectories(failure.file);
  info.mLine = failure.line;
  info.mRelease = kRelease;
  OZErrorMgr().FriendlyErrorMsg(&info, subject.c_str());
}
