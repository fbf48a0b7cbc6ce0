// What a file handle points to.
#pragma once

#include <cstdint>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/OwnedFile.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {

struct FileHandle {
  OwnedFile file;
  bool shares = false;    // others may have the file open, too
  bool may_read = false;  // as the open asked
  bool may_write = false;
  bool is_dirty = false;      // written to or resized, so a close must force data out
  Descriptor new_directory;   // of a file that this handle created: a close forces its name out
  std::int64_t position = 0;  // kept here, so that most moves need no call of the host
  RangeTable locks;
  ByteRange unreleased = {};  // a lock that could not be released; empty if there is none
};

/// The record of a handle; null for a handle that is not open.
inline FileHandle* FileOf(void* handle) {
  return handle == InvalidHandle() ? nullptr : static_cast<FileHandle*>(handle);
}

}  // namespace orzcore::platform
