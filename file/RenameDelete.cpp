// Renaming and deleting open files and paths, and making temporary files.
#include "file/SpecPath.h"
#include "orzcore/file.h"
#include "platform/files.h"

namespace file = orzcore::file;
namespace platform = orzcore::platform;

OZError OZFile::RenameFile(const OZFileSpec& new_spec) {
  return renameDeleteFile(file::SpecPath(new_spec).Get());
}

OZError OZFile::DeleteFileA() { return renameDeleteFile(nullptr); }

OZError OZFile::renameDeleteFile(const char* new_path) {
  if (IsOpen() == 0 || mFileName == nullptr) return eErrFileState;
  const auto old_path = file::CopyPath(mFileName);
  if (old_path == nullptr) return eErrOutOfMemory;
  const unsigned int open_flags = mOpenFlags;
  const unsigned int share_mode = mShareMode;
  CloseFile();

  OZError error = eErrNone;
  if (share_mode != OZ_SHARE_EXCLUSIVE) {
    // This open fails if somebody else has the file open, or if the close could not write its data
    // to the disk.
    error = OpenFile(old_path.get(), OZ_SHARE_EXCLUSIVE);
    const bool lost_data = error == eErrWrite || error == eErrDiskFull;
    if (error == eErrNone) {
      CloseFile();
    } else if (!lost_data) {
      OZErrorMgr::Library::AlertFileInUse();
    }
  }
  if (error == eErrNone) {
    const bool done = new_path != nullptr ? platform::rename(old_path.get(), new_path) == 0
                                          : platform::remove(old_path.get()) == 0;
    if (!done) {
      const int reason = platform::errno_();
      error = MapErrnoToOZErr(reason);
      if (reason == platform::kRuntimeAccessDenied) OZErrorMgr::Library::AlertFileInUse();
    }
  }
  if (error != eErrNone) {
    Steps::ReopenFile(this, old_path.get(), open_flags, share_mode);
  } else if (new_path != nullptr) {
    Steps::ReopenFile(this, new_path, open_flags, share_mode);
  }
  return error;
}

OZError OZFile::RenameFile(const OZFileSpec& from, const OZFileSpec& to) {
  if (platform::rename(file::SpecPath(from).Get(), file::SpecPath(to).Get()) != -1) return eErrNone;
  switch (platform::errno_()) {
    case platform::kRuntimeAccessDenied:
      return eErrAccessDenied;
    case platform::kRuntimeOtherDevice:
      return eErrRenameAcrossDevices;
    default:
      return eErrNone;
  }
}

OZError OZFile::DeleteFileA(const OZFileSpec& spec) {
  if (platform::unlink(file::SpecPath(spec).Get()) != -1) return eErrNone;
  switch (platform::errno_()) {
    case platform::kRuntimeNoSuchFile:
      return eErrNotFound;
    case platform::kRuntimeAccessDenied:
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
  // Without memory the caller does not get the path, so nobody could delete the new file.
  if (spec.ResolveFullPath() != 0 && *path != '\0') platform::unlink(path);
}
