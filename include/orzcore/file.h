/// @file
/// Shared files: opening, transfers, byte-range locks between users, renaming and deleting.
#pragma once

#include <cstdint>

#include "orzcore/export.h"
#include "orzcore/filespec.h"
#include "orzcore/foundation.h"
#include "orzcore/frame.h"

// Open flags. Other bits are stored and have no effect.
inline constexpr unsigned int OZ_OPEN_WRITE_MASK = 0x0003;  ///< a bit of it: reading and writing
inline constexpr unsigned int OZ_OPEN_CREATE = 0x0100;      ///< the file may be created; one that
                                                            ///< exists is emptied
inline constexpr unsigned int OZ_OPEN_TRUNCATE = 0x0200;    ///< with CREATE: emptied in place
inline constexpr unsigned int OZ_OPEN_EXCLUSIVE = 0x0400;   ///< with CREATE: fails if it exists
inline constexpr unsigned int OZ_OPEN_APPEND = 0x0800;      ///< begins at the end of the file

/// A share mode: nobody else may have the file open. So does any other mode with a bit of 0x30; all
/// others let everybody read and write.
inline constexpr unsigned int OZ_SHARE_EXCLUSIVE = 0x10;

// Origins, for `OZFile::Seek`.
inline constexpr short OZ_SEEK_START = 0;    ///< the start of the file
inline constexpr short OZ_SEEK_CURRENT = 1;  ///< the position
inline constexpr short OZ_SEEK_END = 2;      ///< the end of the file

// Operations, for `OZFile::LockBytes` and `OZFile::locking`.
inline constexpr short OZ_BYTES_LOCK = 0;
inline constexpr short OZ_BYTES_UNLOCK = 1;

// Lock modes: flags for `OZFile::VirtualLock` and `OZFile::SetLockMode`.
inline constexpr unsigned int OZ_LOCK_RETRY = 1;        ///< up to 6 tries within the first attempt
inline constexpr unsigned int OZ_LOCK_NOWAIT = 2;       ///< gives up where it would wait
inline constexpr unsigned int OZ_LOCK_RELEASE = 4;      ///< gives the lock back
inline constexpr unsigned int OZ_LOCK_STORED = 0x8000;  ///< set in a stored mode
inline constexpr unsigned int OZ_LOCK_NONE = 0xFFFF7FFF;  ///< no mode is stored

/// The kinds of virtual lock. All users of a range give the same base position.
enum eLockModes : std::int32_t {
  eLockSharedByte = 1,    ///< shared: one byte of the range, which depends on the object
  eLockFixedByte = 2,     ///< exclusive: the byte at the position
  eLockWholeRange = 3,    ///< exclusive: all bytes of the range
  eLockFixedByteAlt = 4,  ///< as `eLockFixedByte`
  eLockSharedProbe = 5,   ///< tells whether ten bytes of the range can be had, and keeps none
};

/// Through which an application hears of locks that it has to wait for. The calls come on the
/// thread that waits.
class ORZCORE_API OZLockFailureCallbacks {
 public:
  /// A lock was refused, and the call will try again. To end the wait, call `SetLockMode` with
  /// `OZ_LOCK_NOWAIT` on the object, or close it. The object must not be destroyed here.
  ///
  /// @param attempt  1 at the first refusal, then one more at each
  virtual void NotifyLockBlocked(std::int32_t attempt) = 0;

  /// The call that made `NotifyLockBlocked` calls ends, with the lock or without it. Only who is
  /// set as the functor at that moment hears of it.
  virtual void NotifyLockWaitOver() = 0;

 protected:
  ~OZLockFailureCallbacks() = default;
};

/// A file that several users may have open at the same time.
///
/// An object is open or closed. It remembers how it was opened, so that it can close and reopen
/// itself: `flushFile` and the operations that rename and delete do so. Every object stands on
/// `mInstanceList`. Objects and the list belong to one thread.
///
/// Operations return an `OZError`, 0 for success, unless told otherwise. Pointers must not be null
/// unless told otherwise. Paths have at most 775 characters.
class ORZCORE_API OZFile : public IRNode {
 public:
  static constexpr int kLockRange = 767;  ///< bytes of a lock range
  static constexpr int kPathSize = 516;   ///< room that callers give for a full path

  static IRLinkedList mInstanceList;  ///< every `OZFile` of the process, the newest first

  /// A closed object.
  OZFile();

  /// Closes the file.
  ~OZFile();

  OZFile(const OZFile&) = delete;
  OZFile& operator=(const OZFile&) = delete;

  /// Opens an existing file for reading and writing.
  ///
  /// @return 0; 206 if the object is open, which stays as it is; 111 if there is no memory; or why
  ///         the file cannot be opened, such as 103 (no such file or path), 102 (no rights), 200
  ///         (open elsewhere, and one of the two does not share), 219 (too many open files). The
  ///         object is then closed, and shows the flags and the share mode of the last open.
  OZError OpenFile(const char* path, unsigned int share_mode);

  /// Opens or creates a file.
  ///
  /// @param open_flags  `OZ_OPEN_` flags; without a bit of `OZ_OPEN_WRITE_MASK` for reading only
  /// @param share_mode  `OZ_SHARE_EXCLUSIVE`, or 0
  /// @return as above; 106 if the file must be new and exists
  OZError OpenFile(const char* path, unsigned int open_flags, unsigned int share_mode);

  /// The same for the path of a spec.
  OZError OpenFile(const OZFileSpec& spec, unsigned int open_flags, unsigned int share_mode);

  /// Makes a new file for reading and writing.
  ///
  /// @return as `OpenFile`; 106 if the file exists
  OZError CreateFileA(const char* path, unsigned int share_mode);

  /// The same for the path of a spec.
  OZError CreateFileA(const OZFileSpec& spec, unsigned int share_mode);

  /// Closes the file and gives up its locks. What was written is then on the disk, if the disk
  /// takes it; a failure of that is not reported.
  ///
  /// @return 0, also for a closed object; 215 if the file was closed with locks held
  OZError CloseFile();

  /// Opens the file as `OpenFile` does.
  OZError openCreateFile(const char* path, unsigned int open_flags, unsigned int share_mode);

  /// Opens the file, but remembers neither its path nor its modes, so that the object cannot be
  /// flushed, renamed or deleted: that gives 206.
  OZError openFile(const char* path, unsigned int open_flags, unsigned int share_mode);

  int IsOpen() const;                 ///< 1 if the object is open, else 0
  unsigned int GetOpenFlags() const;  ///< the flags of the last open
  unsigned int GetShareMode() const;  ///< the share mode of the last open

  /// Copies the path that the file was opened with.
  ///
  /// @param size  bytes in `buffer`
  /// @return 0; 105 if the object is closed; 109 if the path does not fit, and nothing is written
  OZError GetFileName(char* buffer, short size) const;

  /// Appends the path that the file was opened with to the directory of `spec`, which is best
  /// empty.
  ///
  /// @return as `GetFileName`
  OZError GetFileSpec(OZFileSpec& spec) const;

  /// Reads from the position on, and moves it. A transfer neither takes nor tests a lock of its
  /// own.
  ///
  /// @param bytes_read  receives the bytes that arrived, fewer than `count` only at the end of the
  ///                    file; not written on failure
  /// @return 0; 208 if the object is closed; 203 if another user has locked some of the bytes; 111
  ///         if the system has no memory; 107 for a fault of the device
  OZError Read(void* buffer, unsigned short count, unsigned short* bytes_read);

  /// Writes from the position on, moves it, and marks the object for flushing. Other users read the
  /// bytes from now on; a flush or a close brings them to the disk.
  ///
  /// @param bytes_written  receives the bytes taken; not written on failure
  /// @return 0; 208 if the object is closed; 102 if it was opened for reading, or the system lets
  ///         nobody write; 203 if another user has locked some of the bytes; 101 if the disk is
  ///         full; 111 if the system has no memory; 108 for a fault of the device
  OZError Write(const void* buffer, unsigned short count, unsigned short* bytes_written);

  /// Moves the position, also past the end of the file.
  ///
  /// @param origin        0 the start, 1 the position, 2 the end of the file
  /// @param new_position  receives the position, or -1 on failure; may be null
  /// @return 0; 109 if the object is closed or there is no such position
  OZError Seek(std::int32_t offset, short origin, std::int32_t* new_position);

  /// Cuts or extends the file, leaves the position at its new end, and marks the object for
  /// flushing.
  ///
  /// @return 0; 208 if the object is closed; 102 if it was opened for reading; 109 for a negative
  ///         size; 101 if the file cannot be that large; 108 for a fault of the device
  OZError ChangeSize(std::int32_t size);

  /// Returns the length in bytes, or -1 if the object is closed. From 2 GiB on, the length is to be
  /// read as an unsigned number.
  std::int32_t FileLength();

  /// Copies all of this file over the start of another, which keeps what it has beyond. Both
  /// positions end where the copy ended; an error leaves it half done. A copy to itself changes
  /// nothing.
  ///
  /// @return 0; -1 if one of the two cannot be rewound; 111 if there is no memory; 108 for a short
  ///         write; or the error of a transfer
  OZError CopyFileTo(OZFile& target);

  /// Marks the object, so that the next flush forces its data out.
  void SetNeedsFlushing();

  /// Forces the data of a marked object out: closes the file and opens it again, at the same
  /// position. An object that holds locks is passed over and stays marked.
  ///
  /// @return 0; 109 if the position cannot be read, and the object is as before; 111 if there is no
  ///         memory, and `IsOpen` tells whether the object is as before or closed; or why the file
  ///         cannot be reopened, and the object is closed
  OZError flushFile();

  /// Flushes every object of the process, the newest first, up to the first error.
  ///
  /// @return 0, or the error
  static OZError FlushAllFiles();

  /// Takes or gives back one range of bytes.
  ///
  /// @param operation  0 lock, 1 unlock
  /// @param position   where the range begins
  /// @param length     its bytes; an unlock gives the same range as the lock
  /// @return 0, also on a volume without locks; 203 if the lock is refused or the object is closed;
  ///         205 if the unlock is refused; 215 for another operation
  OZError LockBytes(short operation, std::int32_t position, std::int32_t length);

  /// Takes or gives back the range of a lock mode, with tries that are half a second apart.
  ///
  /// @param operation  1 unlock, any other number lock
  /// @param position   where the range begins; after a refusal in mode `eLockSharedByte` the next
  ///                   try is one byte further on, and the variable says where
  /// @param retries    tries in all; 0 and negative numbers make one
  /// @param mode       `eLockSharedByte` to `eLockFixedByteAlt`
  /// @return as `LockBytes`; 215 for another mode
  OZError locking(short operation, std::int32_t* position, short retries, eLockModes mode);

  /// Takes or gives back a virtual lock: a shared or an exclusive hold on a range of 767 bytes from
  /// a base position on, which stand for something that the users have agreed on. A call without
  /// `OZ_LOCK_NOWAIT` waits, for as long as it takes, and keeps a processor busy unless the host's
  /// `GetTickCount` sleeps. On a volume without locks, or if the object is closed, it does nothing and
  /// returns 0.
  ///
  /// @param lock_mode  `OZ_LOCK_` flags; to give a lock back, exactly `OZ_LOCK_RELEASE`. A mode
  ///                   stored by `SetLockMode` takes its place in a call that locks.
  /// @param position   the base of the range, or the byte for the fixed modes; a range does not run
  ///                   over the end of 32 bits. It receives the byte that was reached, which the
  ///                   release takes.
  /// @param mode       the kind of lock
  /// @return 0; 203 if the lock is refused; 205 if the release is; 215 for a mode that does not
  /// exist
  OZError VirtualLock(unsigned int lock_mode, std::int32_t* position, eLockModes mode);

  int IsLockingSupported() const;   ///< not 0 while byte-range locks work on the open file
  OZError ClearLockingSupported();  ///< has the file treated as one without locks; returns 0

  OZError SetLockMode(unsigned int mode);         ///< stores a lock mode; returns 0
  OZError ClearLockMode();                        ///< forgets the stored lock mode; returns 0
  OZError GetLockMode(unsigned int* mode) const;  ///< gives it with `OZ_LOCK_STORED` set, or
                                                  ///< `OZ_LOCK_NONE`; returns 0

  /// Sets who hears of locks that have to be waited for; null for nobody. The object stays the
  /// caller's and lives as long as it is set.
  void SetLockFailureCallbackFunctor(OZLockFailureCallbacks* functor);

  /// Gives the open file a new name, if nobody else has it open; else the user is told at once, by
  /// a message box. The object is then open on the file, under whichever name it has, with its
  /// locks and its position gone. It is closed if the file could not be opened again, of which
  /// nothing else tells.
  ///
  /// @return 0; 206 if the object is closed; 111 if there is no memory; or why it was not done,
  ///         such as 200 (open elsewhere), 102 (no rights), 106 (the new name exists)
  OZError RenameFile(const OZFileSpec& new_spec);

  /// Deletes the open file, if nobody else has it open; else the user is told at once, by a message
  /// box. The object is then closed; if the file was not deleted it is open on it, with its locks
  /// and its position gone.
  ///
  /// @return as `RenameFile`
  OZError DeleteFileA();

  /// Renames the file, or deletes it if `new_path` is null.
  OZError renameDeleteFile(const char* new_path);

  /// Gives a file a new name without opening it.
  ///
  /// @return 0; 102 if access is denied or the file is open; 114 if the new name is on another
  ///         device; 109 if a path has more than 514 characters. Any other failure returns 0 as
  ///         well, such as a file that does not exist or a new name that is taken.
  static OZError RenameFile(const OZFileSpec& from, const OZFileSpec& to);

  /// Deletes a file without opening it.
  ///
  /// @return 0; 103 if it does not exist; 102 if access is denied or the file is open. Any other
  ///         failure returns 0 as well.
  static OZError DeleteFileA(const OZFileSpec& spec);

  /// Makes an empty temporary file, and appends its path to the directory of `spec`, which is best
  /// empty. Nothing deletes the file. Without one, `spec` holds its directory alone; if its path
  /// finds no memory there, or does not fit, `spec` is left empty, and there is no file.
  ///
  /// @param prefix  its first three characters begin the name
  static void MakeTempFileName(const char* prefix, OZFileSpec& spec);

  /// Turns an error number of the system into an `OZError`; one that is not known becomes 231.
  static OZError MapWinErrorToOZErr(std::uint32_t win_error);

  /// Turns an error number of the runtime into an `OZError`; one that is not known becomes 231.
  ///
  /// @param errno_value  in the runtime numbering of the file operations: 2 no such file, 5 access
  ///                     denied, 28 disk full, 35 file exists
  static OZError MapErrnoToOZErr(std::int32_t errno_value);

  /// Turns a status number into an `OZError`; one that is not known becomes 231. Numbers below 19
  /// are those of the runtime.
  static OZError MapFinfoToOZErr(unsigned short finfo);

 protected:
  std::int32_t mTag;                      ///< 1010
  std::int32_t mReserved = 0;             ///< 0
  std::int32_t mLockingSupported = 0;     ///< not 0 while locks work on the open file
  std::int32_t mNeedsFlushing = 0;        ///< not 0 when data was written since the open
  std::int16_t mLockCount = 0;            ///< locks that the object holds
  unsigned int mOpenFlags = 0;            ///< of the last open
  unsigned int mShareMode = 0;            ///< of the last open
  unsigned int mLockOffset;               ///< where the object begins to look for a byte
  char* mFileName = nullptr;              ///< the path, owned; null when closed
  void* mHandle;                          ///< the system's handle
  unsigned int mLockMode = OZ_LOCK_NONE;  ///< the stored lock mode
  OZLockFailureCallbacks* mLockFailureCallbacks =
      nullptr;  ///< who hears of blocked locks; not owned

 private:
  ORZCORE_LOCAL OZError WaitForLock(unsigned int lock_mode, std::int32_t* position, eLockModes mode,
                                    std::int32_t first_byte);
  ORZCORE_LOCAL bool RestorePosition(std::uint32_t position);
  ORZCORE_LOCAL OZError ReopenFile(const char* path, unsigned int open_flags,
                                   unsigned int share_mode);
};
