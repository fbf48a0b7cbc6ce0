// What a file handle points to.
#pragma once

#include <cstdint>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {

struct FileHandle {
  Descriptor descriptor;
  bool is_writable = false;  // the descriptor; it may be so only because exclusive locks need it
  bool has_locks = false;    // the volume
  bool may_read = false;     // as the open asked
  bool may_write = false;
  bool is_dirty = false;  // written to or resized since the open, so a close must force data out
  std::int64_t position = 0;  // kept here, so that most moves need no call of the host
  RangeTable locks;
};

/// The record of a handle; null for a handle that is not open.
inline FileHandle* FileOf(void* handle) {
  return handle == InvalidHandle() ? nullptr : static_cast<FileHandle*>(handle);
}

}  // namespace orzcore::platform
