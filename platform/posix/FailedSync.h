// The note of data that a close could not force out.
//
// The result of a close is not looked at, but a flush looks at the result of the open that follows
// it. So the close leaves a note, and the next open of the same file fails once.
#pragma once

#include "platform/posix/FileIdentity.h"

namespace orzcore::platform {

struct FailedSync {
  int host_error;  // 0: there is no note
  FileIdentity file;
};

/// Leaves a note. There is one place, so a new note replaces the one before.
void NoteFailedSync(const FileIdentity& file, int host_error);

/// Removes the note and returns it. Every open, rename and deletion does so, whatever file it is
/// for.
FailedSync TakeFailedSync();

}  // namespace orzcore::platform
