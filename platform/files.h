// The file calls of the system that the library was made for, under the names that they have there,
// and the error numbers that they report. docs/internals.md explains how they work on POSIX.
//
// Unless a call says otherwise, it returns 1 on success and 0 on failure. `GetLastError` returns
// the number of the last failure. For `rename`, `remove` and `unlink`, `errno_` returns it instead.
// A success changes neither number, with one exception at `SetFilePointer`. In every path both `\`
// and `/` are separators; a path that a call returns has the separators of this system.
//
// Handles are opaque. Every call fails with `kBadHandle` for null and for `InvalidHandle`. A closed
// handle must not be used again.
//
// Share modes and locks bind everybody who uses these calls on the same file, in this process and
// in others. They end when the handle is closed or its process is killed. If the process has forked
// while the handle was open, they end only when the child has ended, too. On a volume without locks
// they bind nobody.
#pragma once

#include <cstdint>

namespace orzcore::platform {

/// The numbers of `GetLastError`.
enum SystemError : std::uint32_t {
  kNoError = 0,
  kInvalidFunction = 1,
  kFileNotFound = 2,
  kPathNotFound = 3,
  kTooManyOpenFiles = 4,
  kAccessDenied = 5,
  kBadHandle = 6,
  kNotEnoughMemory = 8,
  kInvalidAccess = 12,
  kInvalidData = 13,
  kOutOfMemory = 14,
  kInvalidDrive = 15,
  kNoMoreFiles = 18,
  kWriteProtected = 19,
  kSeekFault = 25,
  kUnknownMedium = 26,
  kSectorNotFound = 27,
  kWriteFault = 29,
  kReadFault = 30,
  kGeneralFailure = 31,
  kSharingViolation = 32,
  kLockViolation = 33,
  kSharingBufferExceeded = 36,
  kNotSupported = 50,
  kFileExists = 80,
  kInvalidPassword = 86,
  kBadParameter = 87,
  kNetworkWriteFault = 88,
  kDiskFull = 112,
  kNegativeSeek = 131,
  kNotLocked = 158,
  kPathTooLong = 206,
};

/// The numbers of `errno_`.
enum RuntimeError : std::int32_t {
  kRuntimeUnknown = -1,  // a reason that has no number here
  kRuntimeNone = 0,
  kRuntimeInvalidFunction = 1,
  kRuntimeNoSuchFile = 2,
  kRuntimeNoSuchPath = 3,
  kRuntimeTooManyOpenFiles = 4,
  kRuntimeAccessDenied = 5,
  kRuntimeMemoryDamaged = 7,
  kRuntimeNotEnoughMemory = 8,
  kRuntimeInvalidBlock = 9,
  kRuntimeOtherDevice = 17,
  kRuntimeInvalidArgument = 19,
  kRuntimeTooManyFilesInSystem = 23,
  kRuntimeDiskFull = 28,
  kRuntimeOutOfRange = 34,
  kRuntimeFileExists = 35,
  kRuntimeLocked = 36,
  kRuntimeNotPermitted = 37,
};

/// The value that no open handle has.
inline void* InvalidHandle() {
  return reinterpret_cast<void*>(std::intptr_t{-1});  // NOLINT(performance-no-int-to-ptr)
}

// Access, for `CreateFileA`.
inline constexpr std::uint32_t kGenericRead = 0x80000000;
inline constexpr std::uint32_t kGenericWrite = 0x40000000;

// Sharing, for `CreateFileA`. A file is shared only if both bits are set.
inline constexpr std::uint32_t kFileShareRead = 1;
inline constexpr std::uint32_t kFileShareWrite = 2;

// Dispositions: what `CreateFileA` does if the file exists; and if it does not.
inline constexpr std::uint32_t kCreateNew = 1;         // fails; creates it
inline constexpr std::uint32_t kCreateAlways = 2;      // empties it; creates it
inline constexpr std::uint32_t kOpenExisting = 3;      // opens it; fails
inline constexpr std::uint32_t kOpenAlways = 4;        // opens it; creates it
inline constexpr std::uint32_t kTruncateExisting = 5;  // empties it; fails

// Origins, for `SetFilePointer`.
inline constexpr std::uint32_t kFileBegin = 0;
inline constexpr std::uint32_t kFileCurrent = 1;
inline constexpr std::uint32_t kFileEnd = 2;

/// What `SetFilePointer` returns on failure.
inline constexpr std::uint32_t kInvalidFilePosition = 0xFFFFFFFF;

/// Size of the buffers that callers give for a path.
inline constexpr std::uint32_t kFullPathSize = 516;

/// Opens or creates a regular file. It does not wait for other users, except for less than a
/// millisecond if two of them open the file at the same moment.
///
/// A failed open does not change the content of the file. While the handle is open, nobody can
/// rename or delete its file, but the directories of the path can be renamed. The descriptor of the
/// handle is never 0, 1 or 2, even if the program has closed a standard stream. Nobody else can
/// open a new file before its creator has it open, except on volumes that cannot create a file
/// without a name.
///
/// @param access         `kGenericRead`, `kGenericWrite` or both
/// @param share          both bits: others who also share may have the file open. Otherwise nobody
///                       else may have it open while this handle is open
/// @param security       not used
/// @param disposition    `kCreateNew` to `kTruncateExisting`
/// @param flags          not used
/// @param template_file  not used
/// @return the handle, which the caller closes; `InvalidHandle()` on failure, with
///         - `kFileNotFound`
///         - `kPathNotFound`: the path is empty, or something in it is not a directory
///         - `kTooManyOpenFiles`
///         - `kAccessDenied`: no permission, a file that nobody may write, a directory, or another
///           thing that is not a file
///         - `kNotEnoughMemory`
///         - `kWriteProtected`
///         - `kSharingViolation`: somebody has it open, and one of the two users does not share
///         - `kFileExists`: for `kCreateNew`, also if the file is open elsewhere
///         - `kBadParameter`: not a disposition
///         - `kDiskFull`, `kPathTooLong`, or `kGeneralFailure` for anything else
///         - `kWriteFault` or `kDiskFull`: the last `CloseHandle` lost data of the same file, see
///           there
void* CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, void* security,
                  std::uint32_t disposition, std::uint32_t flags, void* template_file);

/// Closes a handle and releases its locks. Data written through it is then on the disk, and so is
/// the name of a file that it created.
///
/// If the data or the name could not be written to the disk, the handle is closed all the same, and
/// the call leaves a note. The next `CreateFileA` removes the note. If it opens the same file and
/// does not empty it, it fails once with the same error. `rename`, `remove` and `unlink` only
/// remove the note.
///
/// @return 0 if the data or the name could not be written to the disk, with `kWriteFault` or
///         `kDiskFull`
int CloseHandle(void* handle);

/// Reads bytes at the handle's position, and moves the position past them.
///
/// @param done        receives the number of bytes read, fewer than `count` only at the end of the
///                    file; 0 on failure, and the position is not moved
/// @param overlapped  not used
/// @return 0 on failure, with `kAccessDenied` (handle without read access), `kReadFault` or
///         `kLockViolation` (another handle has locked some of the `count` bytes)
int ReadFile(void* handle, void* buffer, std::uint32_t count, std::uint32_t* done,
             void* overlapped);

/// Writes bytes at the handle's position, and moves the position past them.
///
/// @param done        receives the number of bytes written; 0 on failure, and the position is not
///                    moved, though some of the bytes may have reached the file
/// @param overlapped  not used
/// @return 0 on failure, with `kAccessDenied` (handle without write access), `kWriteFault`,
///         `kLockViolation` (another handle has locked some of the bytes) or `kDiskFull`
int WriteFile(void* handle, const void* buffer, std::uint32_t count, std::uint32_t* done,
              void* overlapped);

/// Moves the handle's position, also past the end of the file.
///
/// @param distance_high  must be null, since positions have 32 bits; otherwise `kBadParameter`
/// @param origin         `kFileBegin`, `kFileCurrent` or `kFileEnd`; otherwise `kBadParameter`
/// @return the new position; `kInvalidFilePosition` on failure, with `kBadParameter` (above
///         0xFFFFFFFF) or `kNegativeSeek`, and the position is not moved. The valid position
///         0xFFFFFFFF is the same number; for it, `GetLastError` returns `kNoError`
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin);

/// Cuts or extends the file so that it ends at the handle's position. New bytes read as zeros, and
/// take space on the disk only when they are written.
///
/// @return 0 on failure, with `kAccessDenied` (handle without write access), `kWriteFault` or
///         `kDiskFull` (file too large)
int SetEndOfFile(void* handle);

/// Locks a range of bytes for this handle alone: no other handle can lock, read or write any of
/// them. The range may lie beyond the end of the file. The call does not wait.
///
/// @param offset_high  must be 0, otherwise `kBadParameter`; the same for `length_high`
/// @param length_low   a lock of 0 bytes keeps no other handle out
/// @return 0 on failure, with `kNotEnoughMemory`, `kLockViolation` (some of the range is locked, by
///         this handle or another) or `kNotSupported` (the volume has no locks)
int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high);

/// Releases one lock of this handle. The range must be the one that was locked.
///
/// @return 0 on failure, with `kNotSupported` (the volume has no locks) or `kNotLocked`
int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high);

/// Returns the `SystemError` of the last call that failed, as the calls list them.
std::uint32_t GetLastError();

/// Writes the path of the directory for temporary files into a buffer, with a separator at its end.
///
/// @return the length without the terminator. If the path needs more than `size` bytes, the buffer
///         holds the empty text, and the result is the size that the path needs.
std::uint32_t GetTempPathA(std::uint32_t size, char* buffer);

/// Makes the path of a temporary file: the directory, the first three characters of `prefix`, four
/// hexadecimal digits and ".TMP".
///
/// @param unique  0: finds a number that is free, and creates the file, empty and accessible to
///                this user alone. Otherwise the low 16 bits are the number, and no file is created
/// @param buffer  of `kFullPathSize` bytes; holds the empty text on failure
/// @return the number; 0 on failure, with an error of `CreateFileA`
std::uint32_t GetTempFileNameA(const char* directory, const char* prefix, std::uint32_t unique,
                               char* buffer);

/// Returns 0 if the path exists, else -1. `mode` must be 0.
int access(const char* path, int mode);

/// Renames a file or a directory on its volume. It never replaces anything.
///
/// @return 0, also if both paths are the same; else -1, with `errno_`
///         - `kRuntimeNoSuchFile`, also if a directory of a path is missing or is a file
///         - `kRuntimeTooManyOpenFiles`, `kRuntimeTooManyFilesInSystem`
///         - `kRuntimeAccessDenied`: no permission, no connection to the volume, somebody has the
///           file open, or a directory would move into itself
///         - `kRuntimeOtherDevice`, `kRuntimeDiskFull`
///         - `kRuntimeFileExists`: `to` exists
int rename(const char* from, const char* to);

/// Deletes a file.
///
/// @return 0; else -1, with `errno_`
///         - `kRuntimeNoSuchFile`, also if a directory of a path is missing or is a file
///         - `kRuntimeTooManyOpenFiles`, `kRuntimeTooManyFilesInSystem`
///         - `kRuntimeAccessDenied`: no permission, no connection to the volume, somebody has the
///           file open, nobody may write it, or it is a directory
int remove(const char* path);

/// Deletes a file, like `remove`.
int unlink(const char* path);

/// Returns the `RuntimeError` of the last failure of `rename`, `remove` or `unlink`.
int errno_();

/// Converts a text from the character set of paths to that of the system. Here they are the same.
///
/// @param target  has room for the text in `source`; may be `source` itself
/// @return 1
int OemToCharA(const char* source, char* target);

}  // namespace orzcore::platform
