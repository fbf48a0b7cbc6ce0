// Forcing written data out. There is no call for it: the system writes everything out as a file is
// closed, and so a file is closed and opened again.
#include "file/FilePosition.h"
#include "file/Paths.h"
#include "orzcore/file.h"

namespace {

constexpr short kFromPosition = 1;
constexpr unsigned int kMakingFlags = OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE | OZ_OPEN_EXCLUSIVE;

}  // namespace

void OZFile::SetNeedsFlushing() { mNeedsFlushing = 1; }

// Opens a file that was open before, with its content intact whatever flags it was made with. The
// object goes on showing those flags.
OZError OZFile::ReopenFile(const char* path, unsigned int open_flags, unsigned int share_mode) {
  const OZError error = OpenFile(path, open_flags & ~kMakingFlags, share_mode);
  if (error == eErrNone) mOpenFlags = open_flags;
  return error;
}

OZError OZFile::flushFile() {
  if (mNeedsFlushing == 0) return eErrNone;
  if (mLockingSupported != 0 && mLockCount != 0) return eErrNone;  // a close would lose the locks
  std::int32_t position = 0;
  const OZError seek_error = Seek(0, kFromPosition, &position);
  if (seek_error != eErrNone) return seek_error;
  if (mFileName == nullptr) return eErrFileState;
  const auto path = CopyPath(mFileName);
  if (path == nullptr) return eErrOutOfMemory;
  CloseFile();
  const OZError open_error = ReopenFile(path.get(), mOpenFlags, mShareMode);
  if (open_error != eErrNone) return open_error;
  return RestorePosition(mHandle, static_cast<std::uint32_t>(position)) ? eErrNone : eErrSeek;
}

OZError OZFile::FlushAllFiles() {
  mInstanceList.Rewind();
  while (IRNode* const node = mInstanceList.Next()) {
    const OZError error = static_cast<OZFile*>(node)->flushFile();
    if (error != eErrNone) return error;
  }
  return eErrNone;
}
