// The calls on files that the library makes of its system, under the system's own names.
//
// Unless a call says otherwise, it gives 1 on success and 0 on failure, and the number of a failure
// comes from `GetLastError`, or from `errno_` for `rename`, `remove` and `unlink`. A success leaves
// both numbers alone. In every path `\` and `/` both separate; paths that are handed out are
// native.
//
// Handles are opaque. Null and `InvalidHandle` are refused with error 6 everywhere; a handle that
// was closed must not be used again. Share modes and locks bind all users of these calls, in this
// process and in others, on the same file; they end with the handle, also if its process is killed,
// but not before a child ends that was forked meanwhile. On a volume without locks they bind
// nobody.
#pragma once

#include <cstdint>

namespace orzcore::platform {

/// The handle that stands for none.
inline void* InvalidHandle() {
  return reinterpret_cast<void*>(std::intptr_t{-1});  // NOLINT(performance-no-int-to-ptr)
}

// Access that `CreateFileA` is asked for.
inline constexpr std::uint32_t kGenericRead = 0x80000000;
inline constexpr std::uint32_t kGenericWrite = 0x40000000;

// What `CreateFileA` lets others do. Only both together share anything.
inline constexpr std::uint32_t kFileShareRead = 1;
inline constexpr std::uint32_t kFileShareWrite = 2;

// What `CreateFileA` does about a file that exists, and about one that does not.
inline constexpr std::uint32_t kCreateNew = 1;         // refuses, creates
inline constexpr std::uint32_t kCreateAlways = 2;      // empties, creates
inline constexpr std::uint32_t kOpenExisting = 3;      // opens, refuses
inline constexpr std::uint32_t kOpenAlways = 4;        // opens, creates
inline constexpr std::uint32_t kTruncateExisting = 5;  // empties, refuses

// Where `SetFilePointer` counts from.
inline constexpr std::uint32_t kFileBegin = 0;
inline constexpr std::uint32_t kFileCurrent = 1;
inline constexpr std::uint32_t kFileEnd = 2;

/// What `SetFilePointer` gives on failure.
inline constexpr std::uint32_t kInvalidFilePosition = 0xFFFFFFFF;

/// Bytes that callers keep for a path that is handed out.
inline constexpr std::uint32_t kFullPathSize = 516;

/// Opens or creates a regular file. Waits for nobody, but for less than a millisecond where two
/// users collide.
///
/// An existing file keeps its content unless the open succeeds. An open handle is always on the
/// file that `path` names, and stays so: nobody renames or deletes it before the handle is closed.
/// Its directories may be renamed. It never stands for a standard stream that is closed. A new file
/// belongs to its maker before others can see it, but on volumes that must name a file to make it.
///
/// @param access         `kGenericRead`, `kGenericWrite` or both
/// @param share          both bits: others may open the file in the same manner. Else nobody may,
///                       and it must not be open yet
/// @param security       not used
/// @param disposition    `kCreateNew` to `kTruncateExisting`
/// @param flags          not used
/// @param template_file  not used
/// @return the handle, which the caller closes; `InvalidHandle()` on failure, with error 2 (no such
///         file), 3 (empty path, or a directory in it is none), 4 (too many open files), 5 (no
///         permission, a file that nobody may write, a directory or another thing that is not a
///         file), 8 (no memory), 19 (write-protected medium), 32 (open elsewhere, and one of the
///         two does not share), 80 (it exists, to `kCreateNew` even if it is open elsewhere), 87
///         (not a disposition), 112 (disk full), 206 (path too long), or 31 for all else
void* CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, void* security,
                  std::uint32_t disposition, std::uint32_t flags, void* template_file);

/// Closes a handle and gives up its locks. What was written through it is then on the disk.
///
/// @return 0 if the data could not be forced out, with error 29 or 112; the handle is closed then
/// too
int CloseHandle(void* handle);

/// Reads from the handle's position on, and moves it past what was read.
///
/// @param done        receives the bytes read, fewer than `count` only at the end of the file;
///                    0 on failure, which leaves the position alone
/// @param overlapped  not used
/// @return 0 on failure, with error 5 (handle without read access), 30 (device fault) or 33
///         (another handle has locked some of the `count` bytes)
int ReadFile(void* handle, void* buffer, std::uint32_t count, std::uint32_t* done,
             void* overlapped);

/// Writes from the handle's position on, and moves it past what was written.
///
/// @param done        receives the bytes written; 0 on failure, which leaves the position alone,
///                    though some of the bytes may have reached the file
/// @param overlapped  not used
/// @return 0 on failure, with error 5 (handle without write access), 29 (device fault), 33 (another
///         handle has locked some of the bytes) or 112 (disk full)
int WriteFile(void* handle, const void* buffer, std::uint32_t count, std::uint32_t* done,
              void* overlapped);

/// Moves the handle's position, also past the end of the file.
///
/// @param distance_high  null: positions have 32 bits. Else error 87
/// @param origin         `kFileBegin`, `kFileCurrent` or `kFileEnd`; else error 87
/// @return the new position; `kInvalidFilePosition` on failure, with error 87 (above 0xFFFFFFFF) or
///         131 (below 0), and the position stays. 0xFFFFFFFF is a position as well: then the error
///         number is 0
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin);

/// Makes the handle's position the end of the file. New bytes read as zeros, and take room on the
/// disk only once they are written.
///
/// @return 0 on failure, with error 5 (handle without write access), 29 (device fault) or 112 (file
/// too large)
int SetEndOfFile(void* handle);

/// Locks a range of bytes for this handle alone: no other handle locks, reads or writes any of
/// them. The range may lie beyond the end of the file.
///
/// @param offset_high  0, else error 87; so is `length_high`
/// @param length_low   a lock of 0 bytes keeps no other handle out
/// @return 0 on failure, at once, with error 8 (no memory), 33 (some of the range is locked, by
///         this handle or another) or 50 (no locks on this volume)
int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high);

/// Takes back one `LockFile` of this handle, with the same range.
///
/// @return 0 on failure, with error 50 (no locks on this volume) or 158 (no such lock)
int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high);

/// Returns the error number of the last call in this file that failed, as the calls list them.
std::uint32_t GetLastError();

/// Writes the directory for temporary files, with a separator at its end.
///
/// @return the length without the terminator; if that does not fit into `size`, the size it takes,
///         and the text in the buffer is empty
std::uint32_t GetTempPathA(std::uint32_t size, char* buffer);

/// Makes up the path of a temporary file: directory, three characters of `prefix`, four hexadecimal
/// digits and ".TMP".
///
/// @param unique  0: takes a number that is free, and creates the file, empty and for this user
///                alone. Else the low 16 bits are the number, and nothing is created
/// @param buffer  of `kFullPathSize` bytes; the text in it is empty on failure
/// @return the number; 0 on failure, with an error of `CreateFileA`
std::uint32_t GetTempFileNameA(const char* directory, const char* prefix, std::uint32_t unique,
                               char* buffer);

/// Returns 0 if the path exists (`mode` 0), else -1.
int access(const char* path, int mode);

/// Gives a file or a directory a new name, on the same volume. Never replaces anything.
///
/// @return 0, also if both paths are the same; else -1, with `errno_` 2 (no such file), 3 (no such
///         path), 4 or 23 (too many open files), 5 (no permission, the file is open anywhere, or a
///         directory into itself), 17 (another volume), 28 (disk full), 35 (`to` exists)
int rename(const char* from, const char* to);

/// Deletes a file.
///
/// @return 0; else -1, with `errno_` 2 (no such file), 3 (no such path), 4 or 23 (too many open
///         files), 5 (no permission, the file is open anywhere, nobody may write it, or it is a
///         directory)
int remove(const char* path);

/// Deletes a file, like `remove`.
int unlink(const char* path);

/// Returns the reason of the last failure of `rename`, `remove` or `unlink`, in the numbering that
/// they list; -1 for any reason that is not in it.
int errno_();

/// Converts a text from the character set of paths to that of the system: here they are the same.
///
/// @param target  as large as the text in `source`; may be `source`
/// @return 1
int OemToCharA(const char* source, char* target);

}  // namespace orzcore::platform
