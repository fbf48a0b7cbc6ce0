// The system's error numbers, and how the host's numbers become them.
#pragma once

#include <cerrno>
#include <cstdint>

namespace orzcore::platform {

/// The numbers of `GetLastError`.
enum SystemError : std::uint32_t {
  kNoError = 0,
  kFileNotFound = 2,
  kPathNotFound = 3,
  kTooManyOpenFiles = 4,
  kAccessDenied = 5,
  kBadHandle = 6,
  kNotEnoughMemory = 8,
  kWriteProtected = 19,
  kWriteFault = 29,
  kReadFault = 30,
  kGeneralFailure = 31,
  kSharingViolation = 32,
  kLockViolation = 33,
  kNotSupported = 50,
  kFileExists = 80,
  kBadParameter = 87,
  kDiskFull = 112,
  kNegativeSeek = 131,
  kNotLocked = 158,
  kNameTooLong = 206,
};

/// Sets what `GetLastError` gives, and returns 0, the result of a call that fails.
int Fail(SystemError error);

/// Sets what `GetLastError` gives from a host's number; `fault` is what a device fault becomes.
int FailWithHost(int host_error, SystemError fault = kGeneralFailure);

/// Sets what `errno_` gives from a host's number, and returns -1; with 0 it does nothing and
/// returns 0.
int RuntimeResult(int host_error);

// Two of the host's numbers have a meaning of their own between the files in this folder.

/// The path went to another file than the one that was opened: start over. A network volume says so
/// for the very same reason.
inline constexpr int kNameMoved = ESTALE;

/// Somebody has the file open, and one of the two does not share. The host says so of a file that
/// another program has leased.
inline constexpr int kInUse = EAGAIN;

}  // namespace orzcore::platform
