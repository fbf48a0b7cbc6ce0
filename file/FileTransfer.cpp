// Reading, writing, copying, and moving the position and the end of a file.
#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "orzcore/file.h"
#include "platform/files.h"

namespace orzcore::file {
namespace {

constexpr unsigned short kCopyBlock = 1024;
constexpr auto kCannotRewind = static_cast<OZError>(-1);

}  // namespace
}  // namespace orzcore::file

namespace file = orzcore::file;
namespace platform = orzcore::platform;

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

// A position of 2 GiB or more takes several steps, since a step is a signed number.
bool OZFile::Steps::RestorePosition(const OZFile* object, std::uint32_t position) {
  constexpr std::uint32_t kLongestStep = std::numeric_limits<std::int32_t>::max();
  std::uint32_t origin = platform::kFileBegin;
  std::uint32_t left = position;
  do {
    const std::uint32_t step = std::min(left, kLongestStep);
    const std::uint32_t reached =
        platform::SetFilePointer(object->mHandle, static_cast<std::int32_t>(step), nullptr, origin);
    if (reached == platform::kInvalidFilePosition) return false;  // nobody restores this position
    left -= step;
    origin = platform::kFileCurrent;
  } while (left > 0);
  return true;
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
  Steps::RestorePosition(this, position);
  return static_cast<std::int32_t>(length);
}

OZError OZFile::CopyFileTo(OZFile& target) {
  if (Seek(0, OZ_SEEK_START, nullptr) != eErrNone) return file::kCannotRewind;
  if (target.Seek(0, OZ_SEEK_START, nullptr) != eErrNone) return file::kCannotRewind;
  if (&target == this) {
    // Reads and writes in turn at one position would overwrite every second block.
    return Seek(0, OZ_SEEK_END, nullptr) == eErrNone ? eErrNone : file::kCannotRewind;
  }
  const std::unique_ptr<char[]> block(new (std::nothrow) char[file::kCopyBlock]);
  if (block == nullptr) return eErrOutOfMemory;
  for (;;) {
    unsigned short bytes_read = 0;
    OZError error = Read(block.get(), file::kCopyBlock, &bytes_read);
    if (error != eErrNone || bytes_read == 0) return error;
    unsigned short bytes_written = 0;
    error = target.Write(block.get(), bytes_read, &bytes_written);
    if (error != eErrNone) return error;
    if (bytes_written < bytes_read) return eErrWrite;
  }
}
