// Who may have a file open at the same time.
//
// Two reserved bytes of the file itself hold it, far beyond any byte that programs lock. Why two, and
// which race each step prevents, is told in docs/internals.md, "Sharing a file".
#pragma once

#include "platform/posix/HostLocks.h"

namespace orzcore::platform {

/// Takes the share state of an open file.
///
/// @return `kDone`; `kNoLocks` on a volume without locks, where nobody is kept out; else the state is
///         refused, and the caller closes the descriptor, which releases what was taken
LockResult TakeShareState(int descriptor, bool is_writable, bool shares);

}  // namespace orzcore::platform
