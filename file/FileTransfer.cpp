// Moving bytes, the position and the end of a file.
#include <memory>
#include <new>

#include "file/FilePosition.h"
#include "orzcore/file.h"
#include "platform/files.h"

namespace platform = orzcore::platform;

namespace {

constexpr unsigned short kCopyBlock = 1024;
constexpr short kFromStart = 0;
constexpr short kFromEnd = 2;
constexpr auto kCannotRewind = static_cast<OZError>(-1);

}  // namespace

OZError OZFile::Read(void* buffer, unsigned short count, unsigned short* bytes_read) {
  std::uint32_t done = 0;
  if (platform::ReadFile(mHandle, buffer, count, &done, nullptr) == 0) {
    return MapWinErrorToOZErr(platform::GetLastError());
  }
  *bytes_read = static_cast<unsigned short>(done);
  return eErrNone;
}

OZError OZFile::Write(const void* buffer, unsigned short count, unsigned short* bytes_written) {
  std::uint32_t done = 0;
  if (platform::WriteFile(mHandle, buffer, count, &done, nullptr) == 0) {
    return MapWinErrorToOZErr(platform::GetLastError());
  }
  *bytes_written = static_cast<unsigned short>(done);
  SetNeedsFlushing();
  return eErrNone;
}

OZError OZFile::Seek(std::int32_t offset, short origin, std::int32_t* new_position) {
  const std::uint32_t position = platform::SetFilePointer(
      mHandle, offset, nullptr, static_cast<std::uint32_t>(std::int32_t{origin}));
  if (new_position != nullptr) *new_position = static_cast<std::int32_t>(position);
  return position == platform::kInvalidFilePosition ? eErrSeek : eErrNone;
}

OZError OZFile::ChangeSize(std::int32_t size) {
  const bool moved = platform::SetFilePointer(mHandle, size, nullptr, platform::kFileBegin) !=
                     platform::kInvalidFilePosition;
  if (!moved || platform::SetEndOfFile(mHandle) == 0) {
    return MapWinErrorToOZErr(platform::GetLastError());
  }
  SetNeedsFlushing();
  return eErrNone;
}

std::int32_t OZFile::FileLength() {
  constexpr std::int32_t kNoLength = -1;
  if (IsOpen() == 0) return kNoLength;
  const std::uint32_t position =
      platform::SetFilePointer(mHandle, 0, nullptr, platform::kFileCurrent);
  if (position == platform::kInvalidFilePosition) return kNoLength;
  const std::uint32_t length = platform::SetFilePointer(mHandle, 0, nullptr, platform::kFileEnd);
  RestorePosition(mHandle, position);
  return static_cast<std::int32_t>(length);
}

OZError OZFile::CopyFileTo(OZFile& target) {
  if (Seek(0, kFromStart, nullptr) != eErrNone) return kCannotRewind;
  if (target.Seek(0, kFromStart, nullptr) != eErrNone) return kCannotRewind;
  if (&target == this) {
    // Reading and writing by turns at one position would overwrite every second block.
    return Seek(0, kFromEnd, nullptr) == eErrNone ? eErrNone : kCannotRewind;
  }
  const std::unique_ptr<char[]> block(new (std::nothrow) char[kCopyBlock]);
  if (block == nullptr) return eErrOutOfMemory;
  for (;;) {
    unsigned short bytes_read = 0;
    OZError error = Read(block.get(), kCopyBlock, &bytes_read);
    if (error != eErrNone || bytes_read == 0) return error;
    unsigned short bytes_written = 0;
    error = target.Write(block.get(), bytes_read, &bytes_written);
    if (error != eErrNone) return error;
    if (bytes_written < bytes_read) return eErrWrite;
  }
}
