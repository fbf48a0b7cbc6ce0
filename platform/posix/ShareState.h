// The share state: who may have a file open at the same time.
//
// It is made of locks on two reserved bytes of the file itself, far beyond any byte that programs
// lock. docs/internals.md, "Sharing a file", explains why there are two bytes, and which race each
// step prevents.
#pragma once

#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {

/// Takes the share state of an open file, and sets `file.has_locks`. On a volume without locks it
/// always succeeds.
///
/// @return 0; `kInUse` if it is refused; `kNameMoved` if a network volume has lost the file; or the
///         host's error. On failure the caller closes the file, which releases its locks.
int TakeShareState(OwnedFile& file, bool shares);

}  // namespace orzcore::platform
