// The frame of the library: the error codes that every operation reports with.
#pragma once

#include <cstdint>

/// The error codes of the library and of the application above it. Every operation that can fail
/// returns one of them; 0 is success. The enumeration is unscoped and its numbers are fixed, so
/// callers may compare a result with a plain number.
enum OZError : std::int32_t {
  eErrPlainText = -1,          ///< not an error: the record carries a plain text alert
  eErrNone = 0,                ///< success; in a record: nothing to report
  eErrNoSuchFile = 2,          ///< the specified file does not exist
  eErrNoSuchPath = 3,          ///< the specified path does not exist
  eErrNoFileHandles = 4,       ///< not enough file handles
  eErrNoRights = 5,            ///< no rights to the file or directory
  eErrHardware = 14,           ///< hardware problem
  eErrNoSuchDrive = 15,        ///< the specified drive does not exist
  eErrRootDirectoryFull = 18,  ///< the root directory is full
  eErrNameTaken = 35,          ///< a file of that name already exists
  eErrDiskFull = 101,          ///< the disk is full
  eErrAccessDenied = 102,      ///< access denied
  eErrNotFound = 103,          ///< the file or path does not exist
  eErrNotOpen = 105,           ///< the file is not open
  eErrCannotCreate = 106,      ///< the file cannot be created because it exists
  eErrRead = 107,              ///< read fault
  eErrWrite = 108,             ///< write fault or short write
  eErrSeek = 109,              ///< seek failure, or a result that does not fit the caller's buffer
  eErrDosTooOld = 110,         ///< the version of DOS is too old
  eErrOutOfMemory = 111,       ///< out of memory
  eErrWindowsTooOld = 112,     ///< the version of Windows is too old
  eErrFileVersion = 113,       ///< this version of the file cannot be read
  eErrRenameAcrossDevices = 114,  ///< a rename from one device to another
  eErrSharing = 200,              ///< sharing violation
  eErrSilent = 201,               ///< no message is shown for this value
  eErrInUse = 202,                ///< in use by another user
  eErrLocked = 203,               ///< a byte range cannot be locked
  eErrUnlock = 205,               ///< a lock cannot be released
  eErrFileState = 206,            ///< the file object is in the wrong state for the call
  eErrDatabaseFull = 207,         ///< the database is full
  eErrInvalidData = 208,          ///< invalid handle, invalid data or an unreadable medium
  eErrCorrupted1 = 209,           ///< the data of a file is corrupted
  eErrCorrupted2 = 210,           ///< the data of a file is corrupted
  eErrCorrupted3 = 211,           ///< the data of a file is corrupted
  eErrCorrupted4 = 212,           ///< the data of a file is corrupted
  eErrCorrupted5 = 214,           ///< the data of a file is corrupted
  eErrInvalidArgument = 215,      ///< invalid argument or inconsistent state
  eErrOutOfRange = 217,           ///< a number is out of range
  eErrNotSupported = 218,         ///< the operation is not supported
  eErrTooManyOpenFiles = 219,     ///< too many open files
  eErrWriteProtected = 220,       ///< the medium is write-protected
  eErrFileExists = 221,           ///< the file exists
  eErrWrongPassword = 227,        ///< wrong password
  eErrUnknown = 231,              ///< a code that no mapping knows
};
