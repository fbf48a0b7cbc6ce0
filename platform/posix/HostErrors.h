// How the host's error numbers become the system's and the runtime's.
#pragma once

#include "platform/files.h"

namespace orzcore::platform {

/// Results that functions of this folder return beside 0 and the host's error numbers, which are
/// all positive.
enum HostResult : int {
  kNameMoved = -1,    // the name went to another file during the call: start over
  kInUse = -2,        // somebody has the file open, and one of the two does not share
  kTaken = -3,        // another descriptor has a lock in the range
  kCollided = -4,     // another descriptor took a lock at the same moment, and both were released
  kNotReleased = -5,  // the same, but the own lock could not be released
  kNoLocks = -6,      // the volume has no locks
};

/// Sets the number of `GetLastError`, and returns 0, the result of a call that fails.
int Fail(SystemError error);

/// Sets the number of `GetLastError` from a host's number, and returns 0.
///
/// @param fault  the number for device faults, and for all host's numbers that have no other
int FailWithHost(int host_error, SystemError fault = kGeneralFailure);

/// Returns 0 if `host_error` is 0. Else sets the number of `errno_` from it, and returns -1.
int RuntimeResult(int host_error);

}  // namespace orzcore::platform
