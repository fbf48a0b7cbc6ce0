// Which file a descriptor or a name leads to.
#pragma once

#include <sys/types.h>

#include <cstdint>

namespace orzcore::platform {

/// What an open needs to know about a file.
///
/// It has no times, on purpose: once the host has reported a file's times, it must store new ones
/// at the next write, and the sync after that takes longer.
struct FileIdentity {
  mode_t mode;
  std::uint32_t link_count;
  std::uint64_t number;  // of the inode
  std::uint32_t device_major;
  std::uint32_t device_minor;

  bool IsSameFile(const FileIdentity& other) const {
    return number == other.number && device_major == other.device_major &&
           device_minor == other.device_minor;
  }
};

/// Identifies the file that a path in a directory leads to. If the path is empty, `descriptor` is
/// the file.
///
/// @return 0 or the host's error
int Identify(int descriptor, const char* path, FileIdentity& identity);

}  // namespace orzcore::platform
