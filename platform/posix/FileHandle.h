// What a file handle stands for.
#pragma once

#include <cstdint>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/RangeTable.h"

namespace platform {

struct FileHandle {
  Descriptor descriptor;
  bool is_writable = false;  // the descriptor, which may be so for the sake of its locks alone
  bool may_read = false;     // as the open asked
  bool may_write = false;
  bool is_dirty = false;  // written or sized since the open: a close must force it out
  // Here and not in the descriptor, so that most moves cost no host call.
  std::int64_t position = 0;
  RangeTable locks;
};

/// The record behind a handle; null for a handle that stands for none.
inline FileHandle* FileOf(void* handle) {
  return handle == InvalidHandle() ? nullptr : static_cast<FileHandle*>(handle);
}

}  // namespace platform
