// Turns error numbers of the host into those that platform/files.h promises.
//
// In this folder, "the host" is the system that the program runs on, which reports `errno` numbers
// such as ENOENT. "The system" is the one that the library was made for, with the numbers of
// `SystemError`; `RuntimeError` has those of its C runtime. The class `OZHost` is something else.
#pragma once

#include "platform/files.h"

namespace orzcore::platform {

/// Results of functions in this folder. They are negative, so that the same function can also
/// return 0 and the host's error numbers.
enum HostResult : int {
  kNameMoved = -1,  // meanwhile the name leads to another file or to none: start over
  kInUse = -2,      // somebody has the file open, and one of the two users does not share
  kTaken = -3,      // another descriptor has a lock in the range
  kCollided = -4,   // another descriptor took a lock at the same moment; this one gave its lock up
  kNotReleased = -5,  // like kCollided, but this descriptor still has its lock
  kNoLocks = -6,      // the volume has no locks
};

/// Sets the number of `GetLastError`, and returns 0, the result of a call that fails.
int Fail(SystemError error);

/// Sets the number of `GetLastError` from a host's number, and returns 0.
///
/// @param fault  the number for a `host_error` that has no row in the table, such as EIO
int FailWithHost(int host_error, SystemError fault = kGeneralFailure);

/// Returns 0 if `host_error` is 0. Otherwise sets the number of `errno_` from it, and returns -1.
int RuntimeResult(int host_error);

}  // namespace orzcore::platform
