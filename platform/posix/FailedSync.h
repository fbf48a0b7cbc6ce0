// The note about a close that could not write its data to the disk.
//
// `OZFile` ignores the result of a close, but a flush checks the result of the open that follows.
// So a close that fails leaves a note, and the next open of the same file fails once.
#pragma once

#include "platform/posix/FileIdentity.h"

namespace orzcore::platform {

struct FailedSync {
  int host_error;  // 0: there is no note
  FileIdentity file;
};

/// Leaves a note. It replaces the earlier one: there is only one.
void NoteFailedSync(const FileIdentity& file, int host_error);

/// Removes the note and returns it. Every open, rename and deletion calls this, also for other
/// files.
FailedSync TakeFailedSync();

}  // namespace orzcore::platform
