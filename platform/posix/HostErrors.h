// How the host's error numbers become the system's and the runtime's.
#pragma once

#include "platform/files.h"

namespace orzcore::platform {

// Two results that the files of this folder return in the place of a host's error number. They are
// negative, so that no number of the host is equal to them.

/// The name went to another file during the call: start over.
inline constexpr int kNameMoved = -1;

/// Somebody has the file open, and one of the two does not share.
inline constexpr int kInUse = -2;

/// Sets the number of `GetLastError`, and returns 0, the result of a call that fails.
int Fail(SystemError error);

/// Sets the number of `GetLastError` from a host's number, and returns 0.
///
/// @param fault  the number for device faults, and for all host's numbers that have no other
int FailWithHost(int host_error, SystemError fault = kGeneralFailure);

/// Returns 0 if `host_error` is 0. Else sets the number of `errno_` from it, and returns -1.
int RuntimeResult(int host_error);

}  // namespace orzcore::platform
