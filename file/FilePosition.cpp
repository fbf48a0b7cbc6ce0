// Positions that a signed 32-bit offset cannot name in one step.
#include "file/FilePosition.h"

#include <algorithm>
#include <limits>

#include "platform/files.h"

namespace platform = orzcore::platform;

bool RestorePosition(void* handle, std::uint32_t position) {
  constexpr std::uint32_t kLongestStep = std::numeric_limits<std::int32_t>::max();
  std::uint32_t origin = platform::kFileBegin;
  std::uint32_t left = position;
  do {
    const std::uint32_t step = std::min(left, kLongestStep);
    const std::uint32_t reached =
        platform::SetFilePointer(handle, static_cast<std::int32_t>(step), nullptr, origin);
    if (reached == platform::kInvalidFilePosition && platform::GetLastError() != 0) return false;
    left -= step;
    origin = platform::kFileCurrent;
  } while (left > 0);
  return true;
}
