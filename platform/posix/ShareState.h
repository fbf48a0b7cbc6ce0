// Who may have a file open at the same time.
//
// Two bytes of the file itself, far beyond any byte that programs lock, tell it. Everyone who
// shares has a shared lock on the first. Everyone who does not has both bytes alone; with a
// read-only descriptor that is a shared lock on both, and the second byte tells it from a user who
// shares.
#pragma once

#include "platform/posix/HostLocks.h"

namespace orzcore::platform {

/// Takes the share state of an open file.
///
/// @return `kGranted`; `kNoLocks` on a volume where nothing keeps anybody out; else it was refused,
///         and the caller closes the descriptor, which undoes the rest
LockAnswer TakeShareState(int descriptor, bool is_writable, bool shares);

}  // namespace orzcore::platform
