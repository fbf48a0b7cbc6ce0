// The calls on files that the library makes of its system, under the system's own names, and the
// error numbers that they report.
//
// Unless a call says otherwise, it returns 1 on success and 0 on failure. `GetLastError` returns
// the number of the last failure, and `errno_` that of `rename`, `remove` and `unlink`. A success
// changes neither number. In every path both `\` and `/` are separators; paths that a call returns
// have the system's own.
//
// Handles are opaque. Every call refuses null and `InvalidHandle` with `kBadHandle`. A closed
// handle must not be used again. Share modes and locks bind all users of these calls on the same
// file, in this process and in others. They end with the handle, also if its process is killed. If
// the process has forked meanwhile, they end when the child ends, too. On a volume without locks
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

// Sharing, for `CreateFileA`. Only both bits together share anything.
inline constexpr std::uint32_t kFileShareRead = 1;
inline constexpr std::uint32_t kFileShareWrite = 2;

// Dispositions: what `CreateFileA` does with a file that exists, and with one that does not.
inline constexpr std::uint32_t kCreateNew = 1;         // refuses, creates
inline constexpr std::uint32_t kCreateAlways = 2;      // empties, creates
inline constexpr std::uint32_t kOpenExisting = 3;      // opens, refuses
inline constexpr std::uint32_t kOpenAlways = 4;        // opens, creates
inline constexpr std::uint32_t kTruncateExisting = 5;  // empties, refuses

// Origins, for `SetFilePointer`.
inline constexpr std::uint32_t kFileBegin = 0;
inline constexpr std::uint32_t kFileCurrent = 1;
inline constexpr std::uint32_t kFileEnd = 2;

/// What `SetFilePointer` returns on failure.
inline constexpr std::uint32_t kInvalidFilePosition = 0xFFFFFFFF;

/// Size of the buffers that callers give for a path.
inline constexpr std::uint32_t kFullPathSize = 516;

/// Opens or creates a regular file. It does not wait for other users, except for less than a
/// millisecond when two of them open the file at the same moment.
///
/// An existing file keeps its content unless the open succeeds. An open handle is always on the
/// file that `path` names, and stays so: nobody can rename or delete the file before the handle is
/// closed. The directories of the path may be renamed. The handle never takes the number of a
/// closed standard stream. No other user can open a new file before its maker has it, except on
/// volumes that cannot create a file without a name.
///
/// @param access         `kGenericRead`, `kGenericWrite` or both
/// @param share          both bits: others may open the file in the same way. Else nobody else may
///                       have it open, now or later
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
///         - `kSharingViolation`: open elsewhere, and one of the two does not share
///         - `kFileExists`: for `kCreateNew`, also if the file is open elsewhere
///         - `kBadParameter`: not a disposition
///         - `kDiskFull`, `kPathTooLong`, or `kGeneralFailure` for anything else
///         - `kWriteFault` or `kDiskFull` of the last `CloseHandle`, if that was of the same file
void* CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, void* security,
                  std::uint32_t disposition, std::uint32_t flags, void* template_file);

/// Closes a handle and releases its locks. Data written through it is then on the disk, and so is
/// the name of a file that it created.
///
/// @return 0 if they could not be forced out, with `kWriteFault` or `kDiskFull`. The handle is
/// closed
///         in this case, too, and the very next `CreateFileA` fails with the same error if it opens
///         this file without emptying it. `rename`, `remove`, `unlink` and opens of other files
///         drop this note.
int CloseHandle(void* handle);

/// Reads from the handle's position on, and moves the position past the bytes read.
///
/// @param done        receives the number of bytes read, fewer than `count` only at the end of the
///                    file; 0 on failure, and the position is not moved
/// @param overlapped  not used
/// @return 0 on failure, with `kAccessDenied` (handle without read access), `kReadFault` or
///         `kLockViolation` (another handle has locked some of the `count` bytes)
int ReadFile(void* handle, void* buffer, std::uint32_t count, std::uint32_t* done,
             void* overlapped);

/// Writes from the handle's position on, and moves the position past the bytes written.
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
/// @param distance_high  null: positions have 32 bits. Else the call fails with `kBadParameter`
/// @param origin         `kFileBegin`, `kFileCurrent` or `kFileEnd`; else `kBadParameter`
/// @return the new position; `kInvalidFilePosition` on failure, with `kBadParameter` (above
///         0xFFFFFFFF) or `kNegativeSeek`, and the position is not moved. 0xFFFFFFFF is a valid
///         position, too: `GetLastError` then returns `kNoError`
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin);

/// Makes the handle's position the end of the file. New bytes read as zeros, and take space on the
/// disk only when they are written.
///
/// @return 0 on failure, with `kAccessDenied` (handle without write access), `kWriteFault` or
///         `kDiskFull` (file too large)
int SetEndOfFile(void* handle);

/// Locks a range of bytes for this handle alone: no other handle can lock, read or write any of
/// them. The range may lie beyond the end of the file. The call does not wait.
///
/// @param offset_high  0, else the call fails with `kBadParameter`; likewise `length_high`
/// @param length_low   a lock of 0 bytes keeps no other handle out
/// @return 0 on failure, with `kNotEnoughMemory`, `kLockViolation` (some of the range is locked, by
///         this handle or another) or `kNotSupported` (the volume has no locks)
int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high);

/// Undoes one `LockFile` of this handle, with the same range.
///
/// @return 0 on failure, with `kNotSupported` (the volume has no locks) or `kNotLocked`
int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high);

/// Returns the `SystemError` of the last call that failed, as the calls list them.
std::uint32_t GetLastError();

/// Writes the directory for temporary files, with a separator at its end.
///
/// @return the length without the terminator. If the text does not fit into `size`, the buffer
///         holds the empty text, and the result is the size that the text needs.
std::uint32_t GetTempPathA(std::uint32_t size, char* buffer);

/// Makes up the path of a temporary file: directory, the first three characters of `prefix`, four
/// hexadecimal digits and ".TMP".
///
/// @param unique  0: finds a number that is free, and creates the file, empty and accessible to
///                this user alone. Else the low 16 bits are the number, and nothing is created
/// @param buffer  of `kFullPathSize` bytes; holds the empty text on failure
/// @return the number; 0 on failure, with an error of `CreateFileA`
std::uint32_t GetTempFileNameA(const char* directory, const char* prefix, std::uint32_t unique,
                               char* buffer);

/// Returns 0 if the path exists (`mode` 0), else -1.
int access(const char* path, int mode);

/// Renames a file or a directory on its volume. It never replaces anything.
///
/// @return 0, also if both paths are the same; else -1, with `errno_`
///         - `kRuntimeNoSuchFile`, also if a directory of a path is missing or is a file
///         - `kRuntimeTooManyOpenFiles`, `kRuntimeTooManyFilesInSystem`
///         - `kRuntimeAccessDenied`: no permission, no connection to the volume, somebody has the
///         file
///           open, or a directory would move into itself
///         - `kRuntimeOtherDevice`, `kRuntimeDiskFull`
///         - `kRuntimeFileExists`: `to` exists
int rename(const char* from, const char* to);

/// Deletes a file.
///
/// @return 0; else -1, with `errno_`
///         - `kRuntimeNoSuchFile`, also if a directory of a path is missing or is a file
///         - `kRuntimeTooManyOpenFiles`, `kRuntimeTooManyFilesInSystem`
///         - `kRuntimeAccessDenied`: no permission, no connection to the volume, somebody has the
///         file
///           open, nobody may write it, or it is a directory
int remove(const char* path);

/// Deletes a file, like `remove`.
int unlink(const char* path);

/// Returns the `RuntimeError` of the last failure of `rename`, `remove` or `unlink`.
int errno_();

/// Converts a text from the character set of paths to that of the system. Here they are the same.
///
/// @param target  as large as the text in `source`; may be `source`
/// @return 1
int OemToCharA(const char* source, char* target);

}  // namespace orzcore::platform
