// Locks of open files, as the host keeps them.
//
// They belong to an open descriptor, bind every other descriptor in any process, and end when their
// descriptor is closed. Results are 0, a `HostResult`, or the host's error if it cannot answer,
// such as for a server that is gone.
#pragma once

#include "platform/posix/ByteRange.h"
#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {

/// Takes a lock that other descriptors may have, too.
///
/// @return 0; `kTaken`, `kNoLocks`, `kNameMoved` (a network volume has lost the file), or an error
int LockShared(const OwnedFile& file, ByteRange range);

/// Takes a lock that no other descriptor has, shared or exclusive.
///
/// The host gives a read-only descriptor shared locks only. So this asks for other locks before it
/// takes one, in order not to block others with an attempt that must fail, and once more
/// afterwards.
///
/// @return as `LockShared`; also `kCollided`, or `kNotReleased`
int LockAlone(const OwnedFile& file, ByteRange range);

/// Releases locks. @return 0 or as `LockShared`
int Unlock(const OwnedFile& file, ByteRange range);

/// Releases all locks of the file.
void UnlockAll(const OwnedFile& file);

/// Asks whether another descriptor has a lock in a range, shared or exclusive.
///
/// @return 0 if none has; else as `LockShared`
int QueryRange(const OwnedFile& file, ByteRange range);

}  // namespace orzcore::platform
