// The file object: construction, opening and closing, and single byte-range locks.
#include <cstring>
#include <limits>

#include "file/SpecPath.h"
#include "orzcore/file.h"
#include "platform/files.h"
#include "platform/system.h"

namespace orzcore::file {
namespace {

constexpr char kSourceName[] = "OZOFILE";
constexpr std::int32_t kTag = 1010;
constexpr std::uint32_t kLockOffsets = 768;

// The flags of the calls without a parameter for flags. Both read and write.
constexpr unsigned int kExistingFileFlags = 0x8002;
constexpr unsigned int kNewFileFlags = 0x8502;

constexpr unsigned int kShareBits = 0x30;
constexpr unsigned int kShareNoWrite = 0x20;

constexpr std::size_t kPathBufferSize = 776;
constexpr std::uint32_t kFileAttributes = 0x10000080;  // random access, normal

std::uint32_t AccessOf(unsigned int open_flags) {
  const bool writes = (open_flags & OZ_OPEN_WRITE_MASK) != 0;
  return writes ? platform::kGenericRead | platform::kGenericWrite : platform::kGenericRead;
}

// A mode that denies others reading or writing denies them both.
std::uint32_t SharingOf(unsigned int share_mode) {
  std::uint32_t sharing = platform::kFileShareRead | platform::kFileShareWrite;
  if ((share_mode & OZ_SHARE_EXCLUSIVE) != 0) sharing = 0;
  if ((share_mode & kShareBits) != 0) sharing &= ~platform::kFileShareRead;
  if ((share_mode & kShareNoWrite) != 0) sharing &= ~platform::kFileShareWrite;
  return sharing;
}

std::uint32_t DispositionOf(const char* path, unsigned int open_flags) {
  if ((open_flags & OZ_OPEN_CREATE) == 0) return platform::kOpenExisting;
  if ((open_flags & OZ_OPEN_EXCLUSIVE) != 0) return platform::kCreateNew;
  if ((open_flags & OZ_OPEN_TRUNCATE) == 0) return platform::kCreateAlways;
  const bool exists = platform::access(path, 0) == 0;
  return exists ? platform::kTruncateExisting : platform::kCreateAlways;
}

}  // namespace
}  // namespace orzcore::file

namespace file = orzcore::file;
namespace platform = orzcore::platform;

constinit IRLinkedList OZFile::mInstanceList(IRLinkedList::kEmpty);

OZFile::OZFile()
    : mTag(file::kTag),
      mLockOffset(platform::Clock() % file::kLockOffsets),
      mHandle(platform::InvalidHandle()) {
  mInstanceList.AddToHead(this);
}

OZFile::~OZFile() {
  CloseFile();
  // This unlinks the object directly, because `RemoveItem` would search the whole list. `IsLinked`
  // is false only if the program has taken the object off the list: a removal at an end of the list
  // clears its links, and `RemoveItem` links its neighbours to each other.
  mInstanceList.Rewind();
  if (IsLinked()) {
    Unlink();
  } else {
    OZErrorMgr::Trace(eErrFileState, file::kSourceName, __LINE__, 1);
  }
}

OZError OZFile::OpenFile(const char* path, unsigned int share_mode) {
  return openCreateFile(path, file::kExistingFileFlags, share_mode);
}

OZError OZFile::OpenFile(const char* path, unsigned int open_flags, unsigned int share_mode) {
  return openCreateFile(path, open_flags, share_mode);
}

OZError OZFile::OpenFile(const OZFileSpec& spec, unsigned int open_flags, unsigned int share_mode) {
  return openCreateFile(file::SpecPath(spec).Get(), open_flags, share_mode);
}

OZError OZFile::CreateFileA(const char* path, unsigned int share_mode) {
  return openCreateFile(path, file::kNewFileFlags, share_mode);
}

OZError OZFile::CreateFileA(const OZFileSpec& spec, unsigned int share_mode) {
  return openCreateFile(file::SpecPath(spec).Get(), file::kNewFileFlags, share_mode);
}

OZError OZFile::openCreateFile(const char* path, unsigned int open_flags, unsigned int share_mode) {
  if (IsOpen() != 0) return eErrFileState;
  // The copy is made first: if there is no memory, nothing has been created or emptied.
  auto name = file::CopyPath(path);
  if (name == nullptr) return eErrOutOfMemory;
  const OZError error = openFile(path, open_flags, share_mode);
  if (error != eErrNone) return error;
  mFileName = name.release();
  mShareMode = share_mode;
  mOpenFlags = open_flags;
  return eErrNone;
}

OZError OZFile::openFile(const char* path, unsigned int open_flags, unsigned int share_mode) {
  if (IsOpen() != 0) return eErrFileState;
  if (std::strlen(path) >= file::kPathBufferSize) return MapWinErrorToOZErr(platform::kPathTooLong);
  char system_path[file::kPathBufferSize] = {};
  platform::OemToCharA(path, system_path);
  mHandle = platform::CreateFileA(
      system_path, file::AccessOf(open_flags), file::SharingOf(share_mode), nullptr,
      file::DispositionOf(system_path, open_flags), file::kFileAttributes, nullptr);
  if (mHandle == platform::InvalidHandle()) return MapWinErrorToOZErr(platform::GetLastError());
  mLockingSupported = 1;
  mNeedsFlushing = 0;
  mLockCount = 0;
  if ((open_flags & OZ_OPEN_APPEND) != 0) {
    platform::SetFilePointer(mHandle, 0, nullptr, platform::kFileEnd);
  }
  return eErrNone;
}

OZError OZFile::CloseFile() {
  if (IsOpen() == 0) return eErrNone;
  platform::CloseHandle(mHandle);
  mHandle = platform::InvalidHandle();
  delete[] mFileName;
  mFileName = nullptr;
  const bool was_locked = mLockCount != 0;
  mLockingSupported = 0;
  mNeedsFlushing = 0;
  mLockCount = 0;
  return was_locked ? eErrInvalidArgument : eErrNone;
}

int OZFile::IsOpen() const { return mHandle != platform::InvalidHandle() ? 1 : 0; }

unsigned int OZFile::GetOpenFlags() const { return mOpenFlags; }

unsigned int OZFile::GetShareMode() const { return mShareMode; }

OZError OZFile::GetFileName(char* buffer, short size) const {
  if (IsOpen() == 0 || mFileName == nullptr) return eErrNotOpen;
  const std::size_t needed = std::strlen(mFileName) + 1;
  if (static_cast<std::int64_t>(needed) > size) return eErrSeek;
  std::memcpy(buffer, mFileName, needed);
  return eErrNone;
}

OZError OZFile::GetFileSpec(OZFileSpec& spec) const {
  char path[kPathSize] = {};
  const OZError error = GetFileName(path, kPathSize - 1);
  if (error != eErrNone) return error;
  spec.SetFileName(path);
  return eErrNone;
}

OZError OZFile::LockBytes(short operation, std::int32_t position, std::int32_t length) {
  if (IsOpen() == 0) {
    OZErrorMgr::Trace(eErrLocked, file::kSourceName, __LINE__, 1);
    return eErrLocked;
  }
  if (operation != OZ_BYTES_LOCK && operation != OZ_BYTES_UNLOCK) return eErrInvalidArgument;
  const auto first = static_cast<std::uint32_t>(position);
  const auto bytes = static_cast<std::uint32_t>(length);
  const bool locks = operation == OZ_BYTES_LOCK;
  // The count must not overflow: if it is 0, a flush closes the file, which releases its locks.
  if (locks && mLockCount == std::numeric_limits<std::int16_t>::max()) return eErrLocked;
  const int done = locks ? platform::LockFile(mHandle, first, 0, bytes, 0)
                         : platform::UnlockFile(mHandle, first, 0, bytes, 0);
  if (done != 0) {
    mLockCount = static_cast<std::int16_t>(mLockCount + (locks ? 1 : -1));
    return eErrNone;
  }
  // On a volume without locks, the call succeeds but locks nothing.
  if (MapWinErrorToOZErr(platform::GetLastError()) == eErrNotSupported) {
    return ClearLockingSupported();
  }
  return locks ? eErrLocked : eErrUnlock;
}

int OZFile::IsLockingSupported() const { return mLockingSupported; }

OZError OZFile::ClearLockingSupported() {
  mLockingSupported = 0;
  return eErrNone;
}
