// The host's locks on open files.
//
// A lock belongs to an open descriptor, binds every other descriptor in any process, and ends when
// its descriptor is closed. The functions return 0, a `HostResult`, or the host's error number for
// a fault, for example if a server is gone.
#pragma once

#include "platform/posix/ByteRange.h"
#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {

/// Takes a shared lock: other descriptors can have a shared lock on the same bytes.
///
/// @return 0; `kTaken`, `kNoLocks`, `kNameMoved` (a network volume has lost the file), or an error
int LockShared(const OwnedFile& file, ByteRange range);

/// Takes a lock if no other descriptor has a lock on any of the bytes, shared or exclusive.
///
/// A read-only descriptor can have shared locks only. For such a descriptor this function queries
/// the range, takes a shared lock, and queries again. The first query is there because a lock that
/// must be given up again would block other users meanwhile. The second one finds a user who has
/// locked the range at the same moment.
///
/// @return as `LockShared`; also `kCollided` or `kNotReleased`
int LockAlone(const OwnedFile& file, ByteRange range);

/// Releases the locks of the file in a range.
///
/// @return 0 or as `LockShared`
int Unlock(const OwnedFile& file, ByteRange range);

/// Releases all locks of the file.
void UnlockAll(const OwnedFile& file);

/// Finds out whether another descriptor has a lock in a range, shared or exclusive.
///
/// @return 0 if none has; else as `LockShared`
int QueryRange(const OwnedFile& file, ByteRange range);

}  // namespace orzcore::platform
