// Who may have a file open at the same time.
//
// Two reserved bytes of the file itself hold it, far beyond any byte that programs lock. Why two,
// and which race each step prevents, is told in docs/internals.md, "Sharing a file".
#pragma once

#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {

/// Takes the share state of an open file, and notes in `file` whether its volume has locks. A
/// volume without locks refuses it to nobody.
///
/// @return 0; `kInUse` if it is refused; `kNameMoved` if a network volume has lost the file; or the
///         host's error. On failure the caller closes the file, which releases what was taken.
int TakeShareState(OwnedFile& file, bool shares);

}  // namespace orzcore::platform
