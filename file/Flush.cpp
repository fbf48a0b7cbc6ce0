// Flushing: writing all data to the disk. A close does this, so a flush closes the file and opens
// it again.
#include "file/SpecPath.h"
#include "orzcore/file.h"

namespace file = orzcore::file;

void OZFile::SetNeedsFlushing() { mNeedsFlushing = 1; }

// Opens the file without the flags that create or empty it, so that it keeps its content.
// `GetOpenFlags` still returns all flags.
OZError OZFile::Steps::ReopenFile(OZFile* object, const char* path, unsigned int open_flags,
                                  unsigned int share_mode) {
  constexpr unsigned int kCreationFlags = OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE | OZ_OPEN_EXCLUSIVE;
  const OZError error = object->OpenFile(path, open_flags & ~kCreationFlags, share_mode);
  if (error == eErrNone) object->mOpenFlags = open_flags;
  return error;
}

OZError OZFile::flushFile() {
  if (mNeedsFlushing == 0) return eErrNone;
  // A close would release the locks.
  if (mLockingSupported != 0 && mLockCount != 0) return eErrNone;
  std::int32_t position = 0;
  const OZError seek_error = Seek(0, OZ_SEEK_CURRENT, &position);
  if (seek_error != eErrNone) return seek_error;
  if (mFileName == nullptr) return eErrFileState;
  const auto path = file::CopyPath(mFileName);
  if (path == nullptr) return eErrOutOfMemory;
  CloseFile();
  const OZError open_error = Steps::ReopenFile(this, path.get(), mOpenFlags, mShareMode);
  if (open_error != eErrNone) return open_error;
  return Steps::RestorePosition(this, static_cast<std::uint32_t>(position)) ? eErrNone : eErrSeek;
}

OZError OZFile::FlushAllFiles() {
  mInstanceList.Rewind();
  while (IRNode* const node = mInstanceList.Next()) {
    const OZError error = static_cast<OZFile*>(node)->flushFile();
    if (error != eErrNone) return error;
  }
  return eErrNone;
}
