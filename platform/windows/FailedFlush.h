// The note about a close that could not write its data to the disk.
//
// `OZFile` ignores the result of a close, but a flush checks the result of the open that follows.
// So a close that fails leaves a note, and the next open of the same file fails once.
#pragma once

#include "platform/windows/Native.h"

namespace orzcore::platform {

/// What tells one file of the machine from another.
struct FileIdentity {
  explicit FileIdentity(HANDLE file);
  FileIdentity() = default;
  bool operator==(const FileIdentity&) const = default;

  DWORD volume = 0;
  DWORD index_high = 0;
  DWORD index_low = 0;
};

struct FailedFlush {
  DWORD error = 0;  // 0: there is no note
  FileIdentity file;
};

/// Leaves a note. It replaces the earlier one: there is only one.
void NoteFailedFlush(const FailedFlush& note);

/// Removes the note and returns it. Every open, rename and deletion calls this, also for other
/// files.
FailedFlush TakeFailedFlush();

}  // namespace orzcore::platform
