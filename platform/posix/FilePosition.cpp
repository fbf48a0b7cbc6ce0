// A handle's position, and the file's end.
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <limits>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"

namespace orzcore::platform {
namespace {

constexpr std::int64_t kLastPosition = std::numeric_limits<std::uint32_t>::max();

std::uint32_t Refuse(SystemError error) {
  Fail(error);
  return kInvalidFilePosition;
}

std::uint32_t RefuseWithHost(int host_error) {
  FailWithHost(host_error);
  return kInvalidFilePosition;
}

}  // namespace

// NOLINTNEXTLINE(readability-non-const-parameter): the shape is given
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Refuse(kBadHandle);
  if (distance_high != nullptr || origin > kFileEnd) return Refuse(kBadParameter);

  std::int64_t base = 0;
  if (origin == kFileCurrent) base = file->position;
  if (origin == kFileEnd) base = ::lseek(file->descriptor.Number(), 0, SEEK_END);
  if (base < 0) return RefuseWithHost(errno);
  const std::int64_t position = base + distance;
  if (position < 0) return Refuse(kNegativeSeek);
  if (position > kLastPosition) return Refuse(kBadParameter);

  file->position = position;
  if (position == kLastPosition) Fail(kNoError);  // tells it from a failure
  return static_cast<std::uint32_t>(position);
}

int SetEndOfFile(void* handle) {
  FileHandle* const file = FileOf(handle);
  if (file == nullptr) return Fail(kBadHandle);
  if (!file->may_write) return Fail(kAccessDenied);
  const int result =
      Uninterrupted([&] { return ::ftruncate(file->descriptor.Number(), file->position); });
  if (result != 0) return FailWithHost(errno, kWriteFault);
  file->is_dirty = true;
  return 1;
}

}  // namespace orzcore::platform
