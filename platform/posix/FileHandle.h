// What a file handle stands for.
#pragma once

#include <cstdint>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/RangeTable.h"

namespace orzcore::platform {

struct FileHandle {
  Descriptor descriptor;
  bool is_writable = false;  // the descriptor, which may be so for the sake of its locks alone
  bool has_locks = false;    // the volume
  bool may_read = false;     // as the open asked
  bool may_write = false;
  bool is_dirty = false;  // written or sized since the open: a close must force it out
  // Here and not in the descriptor, so that most moves cost no host call.
  std::int64_t position = 0;
  RangeTable locks;

  /// What an answer about a lock means here. The host may lack the memory for a lock, and says then
  /// what it says of a volume without locks; but this one had them when the file was opened.
  LockAnswer Judge(LockAnswer answer) const {
    return answer == LockAnswer::kNoLocks && has_locks ? LockAnswer::kTaken : answer;
  }
};

/// The record behind a handle; null for a handle that stands for none.
inline FileHandle* FileOf(void* handle) {
  return handle == InvalidHandle() ? nullptr : static_cast<FileHandle*>(handle);
}

}  // namespace orzcore::platform
