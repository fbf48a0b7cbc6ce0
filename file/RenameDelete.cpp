// Renaming and deleting files, open or not, and names for temporary ones.
#include "file/Paths.h"
#include "orzcore/file.h"
#include "platform/files.h"

namespace platform = orzcore::platform;

namespace {

// Reasons in the runtime numbering.
constexpr int kNoSuchFile = 2;
constexpr int kAccessDenied = 5;
constexpr int kOtherDevice = 17;

}  // namespace

OZError OZFile::RenameFile(const OZFileSpec& new_spec) {
  return renameDeleteFile(SpecPath(new_spec).Get());
}

OZError OZFile::DeleteFileA() { return renameDeleteFile(nullptr); }

OZError OZFile::renameDeleteFile(const char* new_path) {
  if (IsOpen() == 0 || mFileName == nullptr) return eErrFileState;
  const auto old_path = CopyPath(mFileName);
  if (old_path == nullptr) return eErrOutOfMemory;
  const unsigned int open_flags = mOpenFlags;
  const unsigned int share_mode = mShareMode;
  CloseFile();

  OZError error = eErrNone;
  if (share_mode != OZ_SHARE_EXCLUSIVE) {
    // An open that shares nothing proves that nobody else has the file.
    error = OpenFile(old_path.get(), OZ_SHARE_EXCLUSIVE);
    if (error == eErrNone) {
      CloseFile();
    } else {
      OZErrorMgr::AlertFileInUse();
    }
  }
  if (error == eErrNone) {
    const bool done = new_path != nullptr ? platform::rename(old_path.get(), new_path) == 0
                                          : platform::remove(old_path.get()) == 0;
    if (!done) {
      const int reason = platform::errno_();
      error = MapErrnoToOZErr(reason);
      if (reason == kAccessDenied) OZErrorMgr::AlertFileInUse();
    }
  }
  if (error != eErrNone) {
    ReopenFile(old_path.get(), open_flags, share_mode);
  } else if (new_path != nullptr) {
    ReopenFile(new_path, open_flags, share_mode);
  }
  return error;
}

OZError OZFile::RenameFile(const OZFileSpec& from, const OZFileSpec& to) {
  const SpecPath from_path(from);
  const SpecPath to_path(to);
  if (!from_path.Fits() || !to_path.Fits()) return eErrSeek;
  if (platform::rename(from_path.Get(), to_path.Get()) != -1) return eErrNone;
  switch (platform::errno_()) {
    case kAccessDenied:
      return eErrAccessDenied;
    case kOtherDevice:
      return eErrRenameAcrossDevices;
    default:
      return eErrNone;
  }
}

OZError OZFile::DeleteFileA(const OZFileSpec& spec) {
  if (platform::unlink(SpecPath(spec).Get()) != -1) return eErrNone;
  switch (platform::errno_()) {
    case kNoSuchFile:
      return eErrNotFound;
    case kAccessDenied:
      return eErrAccessDenied;
    default:
      return eErrNone;
  }
}

void OZFile::MakeTempFileName(const char* prefix, OZFileSpec& spec) {
  char directory[kPathSize] = {};
  char path[kPathSize] = {};
  platform::GetTempPathA(kPathSize - 1, directory);
  platform::GetTempFileNameA(directory, prefix, 0, path);
  spec.SetFileName(path);
  if (spec.ResolveFullPath() != 0 && *path != '\0') platform::unlink(path);  // nobody knows of it
}
