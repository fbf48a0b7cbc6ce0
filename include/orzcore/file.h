/// @file
/// Shared files: opening, reading and writing, byte-range locks between users, renaming, deleting.
/// A *user* of a file is an open `OZFile`: two objects are two users, also within one process.
#pragma once

#include <cstdint>

#include "orzcore/export.h"
#include "orzcore/filespec.h"
#include "orzcore/foundation.h"
#include "orzcore/frame.h"

// Open flags. Other bits are stored and have no effect.

/// With one of these bits, the file is opened for reading and writing, without them for reading
/// only.
inline constexpr unsigned int OZ_OPEN_WRITE_MASK = 0x0003;
/// A file that does not exist is created. A file that exists is emptied.
inline constexpr unsigned int OZ_OPEN_CREATE = 0x0100;
/// Has no effect of its own: `OZ_OPEN_CREATE` already empties a file that exists.
inline constexpr unsigned int OZ_OPEN_TRUNCATE = 0x0200;
/// With `OZ_OPEN_CREATE`: the open fails if the file exists.
inline constexpr unsigned int OZ_OPEN_EXCLUSIVE = 0x0400;
/// After the open, the position is at the end of the file.
inline constexpr unsigned int OZ_OPEN_APPEND = 0x0800;

/// A share mode: nobody else may have the file open. Every mode with the bit 0x10 or 0x20 means the
/// same. All other modes let everybody read and write.
inline constexpr unsigned int OZ_SHARE_EXCLUSIVE = 0x10;

// Origins, for `OZFile::Seek`.
inline constexpr short OZ_SEEK_START = 0;    ///< the start of the file
inline constexpr short OZ_SEEK_CURRENT = 1;  ///< the position
inline constexpr short OZ_SEEK_END = 2;      ///< the end of the file

// Operations, for `OZFile::LockBytes` and `OZFile::locking`.
inline constexpr short OZ_BYTES_LOCK = 0;    ///< locks the bytes
inline constexpr short OZ_BYTES_UNLOCK = 1;  ///< unlocks the bytes

// Lock modes: flags for `OZFile::VirtualLock` and `OZFile::SetLockMode`.
inline constexpr unsigned int OZ_LOCK_RETRY = 1;        ///< up to 6 tries within the first attempt
inline constexpr unsigned int OZ_LOCK_NOWAIT = 2;       ///< fails instead of waiting
inline constexpr unsigned int OZ_LOCK_RELEASE = 4;      ///< releases the lock
inline constexpr unsigned int OZ_LOCK_STORED = 0x8000;  ///< set in a stored mode
inline constexpr unsigned int OZ_LOCK_NONE = 0xFFFF7FFF;  ///< no mode is stored

/// The kinds of virtual lock. All users of a range pass the same base position.
enum eLockModes : std::int32_t {
  eLockSharedByte = 1,    ///< shared: one byte of the range, which depends on the object
  eLockFixedByte = 2,     ///< exclusive: the byte at the position
  eLockWholeRange = 3,    ///< exclusive: all bytes of the range
  eLockFixedByteAlt = 4,  ///< as `eLockFixedByte`
  eLockSharedProbe = 5,   ///< checks whether ten bytes of the range are free; keeps no lock
};

/// The functor that the library calls while an application waits for a lock, on the thread that
/// waits.
class ORZCORE_API OZLockFailureCallbacks {
 public:
  /// A lock was refused, and the call will try again. To end the wait, call `SetLockMode` with
  /// `OZ_LOCK_NOWAIT` on the object, or close it. The object must not be destroyed here.
  ///
  /// @param attempt  1 at the first refusal, 2 at the second, and so on
  virtual void NotifyLockBlocked(std::int32_t attempt) = 0;

  /// The wait is over: the call that waited returns, with the lock or without it. Only the functor
  /// that is set at that moment is called.
  virtual void NotifyLockWaitOver() = 0;

 protected:
  virtual ~OZLockFailureCallbacks();
};

/// A file that several users may have open at the same time.
///
/// An object is open or closed. It remembers how it was opened, so that `flushFile` and the
/// operations that rename and delete can close it and open it again. Every object is on
/// `mInstanceList`. Objects and the list belong to one thread.
///
/// Operations return an `OZError`, 0 for success, unless their comment says otherwise. Pointers
/// must not be null unless the comment allows it. Paths have at most 775 characters, and on Windows
/// at most 259.
class ORZCORE_API OZFile : public IRNode {
 public:
  static constexpr int kLockRange = 767;  ///< bytes of a lock range
  static constexpr int kPathSize = 516;   ///< size of the buffers that callers pass for a full path

  /// Every `OZFile` of the process, the newest first. A program may walk this list, but must not
  /// take an object off it.
  static IRLinkedList mInstanceList;

  /// Makes a closed object.
  OZFile();

  /// Closes the file.
  ~OZFile();

  OZFile(const OZFile&) = delete;
  OZFile& operator=(const OZFile&) = delete;

  /// Opens an existing file for reading and writing.
  ///
  /// If the call fails, the object is closed, and keeps the flags and the share mode of the open
  /// before. If the last close could not write all data of this file to the disk, the call fails
  /// once, with `eErrWrite` (108) or `eErrDiskFull` (101); see `CloseFile`.
  ///
  /// @return 0; `eErrFileState` (206) if the object is already open, which then stays as it is;
  ///         `eErrOutOfMemory` (111); or why the file cannot be opened, such as `eErrNotFound`
  ///         (103), `eErrAccessDenied` (102), `eErrTooManyOpenFiles` (219), or `eErrSharing` (200)
  ///         if it is open elsewhere and one of the two users does not share
  OZError OpenFile(const char* path, unsigned int share_mode);

  /// Opens or creates a file.
  ///
  /// @param open_flags  `OZ_OPEN_` flags
  /// @param share_mode  `OZ_SHARE_EXCLUSIVE`, or 0
  /// @return as above; `eErrCannotCreate` (106) if the file exists and the flags have
  ///         `OZ_OPEN_EXCLUSIVE`
  OZError OpenFile(const char* path, unsigned int open_flags, unsigned int share_mode);

  /// The same for the path of a spec.
  OZError OpenFile(const OZFileSpec& spec, unsigned int open_flags, unsigned int share_mode);

  /// Creates a new file for reading and writing.
  ///
  /// @return as `OpenFile`; `eErrCannotCreate` (106) if the file exists
  OZError CreateFileA(const char* path, unsigned int share_mode);

  /// The same for the path of a spec.
  OZError CreateFileA(const OZFileSpec& spec, unsigned int share_mode);

  /// Closes the file and releases its locks. The written data, and the name of a file that the
  /// object created, are then on the disk.
  ///
  /// If the disk does not take them, the result of this call does not report it, but the next open
  /// does: if it opens the same file without emptying it, it fails once with `eErrWrite` (108) or
  /// `eErrDiskFull` (101). After an open that fails or opens another file, a rename or a deletion,
  /// the library no longer reports it.
  ///
  /// @return 0, also for a closed object; `eErrInvalidArgument` (215) if the file was closed with
  ///         locks held
  OZError CloseFile();

  /// Opens the file as `OpenFile` does.
  OZError openCreateFile(const char* path, unsigned int open_flags, unsigned int share_mode);

  /// Opens the file, but remembers neither its path nor its modes. The object can then not be
  /// flushed, renamed or deleted: these calls return `eErrFileState` (206). `GetFileName` and
  /// `GetFileSpec` return `eErrNotOpen` (105).
  OZError openFile(const char* path, unsigned int open_flags, unsigned int share_mode);

  int IsOpen() const;                 ///< 1 if the object is open, else 0
  unsigned int GetOpenFlags() const;  ///< the flags of the last open
  unsigned int GetShareMode() const;  ///< the share mode of the last open

  /// Copies the path that the file was opened with.
  ///
  /// @param size  bytes in `buffer`
  /// @return 0; `eErrNotOpen` (105) if the object is closed; `eErrSeek` (109) if the path does not
  ///         fit, and nothing is written
  OZError GetFileName(char* buffer, short size) const;

  /// Appends the path that the file was opened with to the directory of `spec`, which should be
  /// empty.
  ///
  /// @return as `GetFileName`
  OZError GetFileSpec(OZFileSpec& spec) const;

  /// Reads from the position on, and moves the position past the bytes read.
  ///
  /// The call first checks for locks of other users, and takes no lock itself. It does not see a
  /// lock that another user takes after the check: take a lock to read only complete changes. Also
  /// on a network volume, the call reads what other users wrote before it.
  ///
  /// @param bytes_read  receives the number of bytes read, fewer than `count` only at the end of
  ///                    the file; not written on failure
  /// @return 0; `eErrInvalidData` (208) if the object is closed; `eErrLocked` (203) if another user
  ///         has locked some of the bytes; `eErrOutOfMemory` (111) if the system has no memory;
  ///         `eErrRead` (107) for a fault of the device
  OZError Read(void* buffer, unsigned short count, unsigned short* bytes_read);

  /// Writes from the position on, moves the position past the bytes written, and marks the object
  /// for flushing.
  ///
  /// As soon as the call returns, other users read these bytes, also on a network volume. They are
  /// on the disk after a flush or a close. If the file grows above the limit of the process for the
  /// size of files (`RLIMIT_FSIZE`), the system sends SIGXFSZ, which ends the process: to get
  /// `eErrDiskFull` (101) instead, ignore this signal.
  ///
  /// @param bytes_written  receives the number of bytes written; not written on failure
  /// @return 0; `eErrInvalidData` (208) if the object is closed; `eErrAccessDenied` (102) if it was
  ///         opened for reading only, or the system does not allow the write; `eErrLocked` (203) if
  ///         another user has locked some of the bytes; `eErrDiskFull` (101); `eErrOutOfMemory`
  ///         (111) if the system has no memory; `eErrWrite` (108) for a fault of the device
  OZError Write(const void* buffer, unsigned short count, unsigned short* bytes_written);

  /// Moves the position, also past the end of the file.
  ///
  /// @param origin        `OZ_SEEK_START` (0), `OZ_SEEK_CURRENT` (1) or `OZ_SEEK_END` (2)
  /// @param new_position  receives the position, or -1 on failure; may be null
  /// @return 0; `eErrSeek` (109) if the object is closed or there is no such position
  OZError Seek(std::int32_t offset, short origin, std::int32_t* new_position);

  /// Cuts or extends the file, moves the position to its new end, and marks the object for
  /// flushing. The system may send SIGXFSZ, as for `Write`.
  ///
  /// @return 0; `eErrInvalidData` (208) if the object is closed; `eErrAccessDenied` (102) if it was
  ///         opened for reading only; `eErrSeek` (109) for a negative size; `eErrDiskFull` (101) if
  ///         the file cannot be that large; `eErrWrite` (108) for a fault of the device
  OZError ChangeSize(std::int32_t size);

  /// Returns the length in bytes, or -1 if the object is closed. A length of 2 GiB or more is a
  /// negative number: convert it to an unsigned one. Also on a network volume, the length includes
  /// what other users have written until now.
  std::int32_t FileLength();

  /// Copies all of this file over the start of another. What the other file has beyond the copied
  /// bytes stays. Afterwards both positions are at the end of the copied bytes. After an error, a
  /// part may have been copied. A copy of an object to itself changes no bytes.
  ///
  /// @return 0; -1 if the position of one of the two cannot be moved to the start;
  ///         `eErrOutOfMemory` (111); `eErrWrite` (108) for a short write; or the error of a
  ///         transfer
  OZError CopyFileTo(OZFile& target);

  /// Marks the object, so that the next flush writes its data to the disk.
  void SetNeedsFlushing();

  /// Forces the data of a marked object to the disk: closes the file and opens it again, at the
  /// same position. An object that holds locks is not flushed and stays marked; the call returns 0.
  ///
  /// @return 0; `eErrSeek` (109) if the position cannot be read, and the object is as before;
  ///         `eErrFileState` (206) if `openFile` opened the file; `eErrOutOfMemory` (111), and
  ///         `IsOpen` says whether the object is as before or closed; `eErrWrite` (108) or
  ///         `eErrDiskFull` (101) if the disk did not take the data, and the object is closed; or
  ///         why the file cannot be opened again, and the object is closed
  OZError flushFile();

  /// Flushes every object of the process, the newest first, and stops at the first error.
  ///
  /// @return 0, or the error
  static OZError FlushAllFiles();

  /// Locks or unlocks one range of bytes.
  ///
  /// @param operation  `OZ_BYTES_LOCK` (0) or `OZ_BYTES_UNLOCK` (1)
  /// @param position   where the range begins
  /// @param length     the number of bytes; pass the same range to unlock as to lock
  /// @return 0, also on a volume without locks; `eErrLocked` (203) if the lock is refused or the
  ///         object is closed; `eErrUnlock` (205) if the unlock is refused; `eErrInvalidArgument`
  ///         (215) for another operation
  OZError LockBytes(short operation, std::int32_t position, std::int32_t length);

  /// Locks or unlocks the range of a lock mode, with half a second between two tries.
  ///
  /// @param operation  `OZ_BYTES_UNLOCK` (1); any other number locks
  /// @param position   where the range begins. In mode `eLockSharedByte`, each try after a refusal
  ///                   is one byte further on, and the variable receives the byte of the last try
  /// @param retries    the number of tries; 0 and negative numbers make one
  /// @param mode       `eLockSharedByte` to `eLockFixedByteAlt`
  /// @return as `LockBytes`; `eErrInvalidArgument` (215) for another mode
  OZError locking(short operation, std::int32_t* position, short retries, eLockModes mode);

  /// Takes or releases a virtual lock: a shared or an exclusive lock on a range of 767 bytes that
  /// begins at a base position. The users agree on what the range protects.
  ///
  /// A call without `OZ_LOCK_NOWAIT` waits until it has the lock, or until the device fails.
  /// Meanwhile it uses a whole processor, unless `GetTickCount` of the `OZHost` sleeps. On a volume
  /// without locks, or if the object is closed, the call does nothing and returns 0.
  ///
  /// @param lock_mode  `OZ_LOCK_` flags; to release a lock, exactly `OZ_LOCK_RELEASE`. In a call
  ///                   that locks, a mode that `SetLockMode` has stored replaces it.
  /// @param position   the base of the range, or the byte for the fixed modes. As an unsigned
  ///                   number, a base is at most 2^32 - 767. Receives the first locked byte: pass
  ///                   this value to release the lock.
  /// @param mode       the kind of lock
  /// @return 0; `eErrLocked` (203) if the lock is refused; `eErrUnlock` (205) if the release is
  ///         refused; `eErrInvalidArgument` (215) for a mode that does not exist
  OZError VirtualLock(unsigned int lock_mode, std::int32_t* position, eLockModes mode);

  /// Returns a number other than 0 while byte-range locks work on the open file. After an open it
  /// is 1; the first lock or unlock on a volume without locks makes it 0. On some network volumes,
  /// locks work only between the users of one machine, and no call can detect that
  /// (docs/guide/network.md).
  int IsLockingSupported() const;

  OZError ClearLockingSupported();  ///< treats the file as one without locks; returns 0

  OZError SetLockMode(unsigned int mode);  ///< stores a lock mode; returns 0
  OZError ClearLockMode();                 ///< forgets the stored lock mode; returns 0

  /// Copies the stored mode with `OZ_LOCK_STORED` set, or `OZ_LOCK_NONE`. Returns 0.
  OZError GetLockMode(unsigned int* mode) const;

  /// Sets the functor that is called while a call waits for a lock; null for none. The caller owns
  /// the functor and keeps it alive as long as it is set.
  void SetLockFailureCallbackFunctor(OZLockFailureCallbacks* functor);

  /// Gives the open file a new name, if nobody else has it open. Otherwise a message box reports
  /// that at once.
  ///
  /// The call closes the file and opens it again, by the new name, or by the old one after a
  /// failure. Its locks are released and its position is lost. If it cannot be opened again, the
  /// object is closed, and only `IsOpen` says so. Flush before a rename, and check the result:
  /// after a rename, the library no longer reports an earlier close that lost data.
  ///
  /// @return 0; `eErrFileState` (206) if the object is closed; `eErrOutOfMemory` (111); or why it
  ///         was not done, such as `eErrAccessDenied` (102), `eErrSharing` (200) if the file is
  ///         open elsewhere, `eErrCannotCreate` (106) if the new name exists, or `eErrWrite` (108)
  ///         if the disk did not take what was written before
  OZError RenameFile(const OZFileSpec& new_spec);

  /// Deletes the open file, if nobody else has it open. Otherwise a message box reports that at
  /// once. After a deletion the object is closed. If the file was not deleted, the object has it
  /// open again, without locks and at its start.
  ///
  /// @return as `RenameFile`
  OZError DeleteFileA();

  /// Renames the file, or deletes it if `new_path` is null.
  OZError renameDeleteFile(const char* new_path);

  /// Renames a file that no object has open.
  ///
  /// @return 0; `eErrAccessDenied` (102) if access is denied or the file is open;
  ///         `eErrRenameAcrossDevices` (114) if the new name is on another device. Any other
  ///         failure also returns 0: a file that does not exist, a new name that exists, or a path
  ///         of more than 514 characters.
  static OZError RenameFile(const OZFileSpec& from, const OZFileSpec& to);

  /// Deletes a file that no object has open.
  ///
  /// @return 0; `eErrNotFound` (103); `eErrAccessDenied` (102) if access is denied or the file is
  ///         open. Any other failure also returns 0.
  static OZError DeleteFileA(const OZFileSpec& spec);

  /// Creates an empty temporary file, and appends its path to the directory of `spec`, which should
  /// be empty. The caller deletes the file. On failure there is no file: `spec` then has only its
  /// directory, or is empty if there is no memory or the path does not fit.
  ///
  /// @param prefix  the name begins with its first three characters that are not separators
  static void MakeTempFileName(const char* prefix, OZFileSpec& spec);

  /// Turns an error number of the system into an `OZError`; `eErrUnknown` (231) if it is not known.
  static OZError MapWinErrorToOZErr(std::uint32_t win_error);

  /// Turns an error number of the runtime library into an `OZError`; `eErrUnknown` (231) if it is
  /// not known.
  ///
  /// @param errno_value  not a number of `<cerrno>`: 2 no such file, 5 access denied, 28 disk full,
  ///                     35 file exists
  static OZError MapErrnoToOZErr(std::int32_t errno_value);

  /// Turns a status number into an `OZError`; `eErrUnknown` (231) if it is not known. Numbers below
  /// 19 are those of the runtime.
  static OZError MapFinfoToOZErr(unsigned short finfo);

 protected:
  std::int32_t mTag;                      ///< 1010
  std::int32_t mReserved = 0;             ///< 0
  std::int32_t mLockingSupported = 0;     ///< not 0 while locks work on the open file
  std::int32_t mNeedsFlushing = 0;        ///< not 0 when data was written since the open
  std::int16_t mLockCount = 0;            ///< locks that the object holds
  unsigned int mOpenFlags = 0;            ///< of the last open
  unsigned int mShareMode = 0;            ///< of the last open
  unsigned int mLockOffset;               ///< where a shared lock of the object begins
  char* mFileName = nullptr;              ///< the path, owned; null if closed
  void* mHandle;                          ///< the system's handle
  unsigned int mLockMode = OZ_LOCK_NONE;  ///< the stored lock mode
  /// The functor of `SetLockFailureCallbackFunctor`; not owned.
  OZLockFailureCallbacks* mLockFailureCallbacks = nullptr;

 private:
  // A DLL exports all members of an exported class, so these operations are in a class of their
  // own.
  struct ORZCORE_LOCAL Steps {
    static OZError WaitForLock(OZFile* object, unsigned int lock_mode, std::int32_t* position,
                               eLockModes mode, std::int32_t first_byte);
    static bool RestorePosition(const OZFile* object, std::uint32_t position);
    static OZError ReopenFile(OZFile* object, const char* path, unsigned int open_flags,
                              unsigned int share_mode);
  };
};
