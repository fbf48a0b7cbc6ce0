// Which file a descriptor or a name leads to.
#pragma once

#include <sys/types.h>

#include <cstdint>

namespace orzcore::platform {

/// What an open needs to know of a file. The times are left out: after the host has reported them,
/// the next write changes them, and a flush has more to force out.
struct FileIdentity {
  mode_t mode;
  std::uint32_t link_count;
  std::uint64_t number;
  std::uint32_t device_major;
  std::uint32_t device_minor;

  bool IsSameFile(const FileIdentity& other) const {
    return number == other.number && device_major == other.device_major &&
           device_minor == other.device_minor;
  }
};

/// Identifies what a path in a directory leads to, or an open file if the path is empty.
///
/// @return 0 or the host's error
int Identify(int descriptor, const char* path, FileIdentity& identity);

}  // namespace orzcore::platform
