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
  bool may_read = false;  // the access that the open asked for
  bool may_write = false;
  bool is_dirty = false;  // written to or resized, so the close must sync the file
  // Open if this handle has created the file. The close syncs this directory.
  Descriptor new_directory;
  std::int64_t position = 0;  // kept here, so that most moves need no call of the host
  RangeTable locks;
  ByteRange unreleased = {};  // a refused lock that is still to be released; empty if none
};

/// Returns the record of a handle, or null for `InvalidHandle` and null.
inline FileHandle* FileOf(void* handle) {
  return handle == InvalidHandle() ? nullptr : static_cast<FileHandle*>(handle);
}

}  // namespace orzcore::platform
