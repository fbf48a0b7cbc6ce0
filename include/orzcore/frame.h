/// @file
/// The frame of the library: error codes, the record that carries an alert, the manager that shows
/// alerts or defers them, and the library's entry function.
#pragma once

#include <cstdint>

#include "orzcore/export.h"

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

/// A text, or the id of a string resource; `OZErrorInfo::mTextKind` tells which.
union OZErrorText {
  const char* text;  ///< the text; not owned
  short id;          ///< the id of a string resource
};

/// How the texts of an `OZErrorInfo` are to be read. With any other number there are none.
enum OZTextKind : std::int32_t {
  eTextOfCaller = 2,  ///< `mText` and `mCaption` are texts of the caller, or null
  eTextOfQueue = 3,   ///< the same, in a slot of `OZErrorMgr` that owns the copies
  eTextResource = 4,  ///< both are ids of string resources of `mInstance`
};

/// The record that carries one alert from the place of an error to `OZErrorMgr`. It owns nothing;
/// whoever makes it fills it.
struct ORZCORE_API OZErrorInfo {
  /// Asks a constructor for a record of zeros.
  enum Zero { kZero };

  /// Sets `mInstance` to null, and leaves all else as the memory held it.
  OZErrorInfo() : mInstance(nullptr) {}

  /// A record of zeros.
  explicit constexpr OZErrorInfo(Zero /*zero*/)
      : mError(eErrNone),
        mFile(nullptr),
        mLine(0),
        mTextKind(0),
        mText{nullptr},
        mCaption{nullptr},
        mBoxFlags(0),
        mMajorVersion(0),
        mMinorVersion(0),
        mRelease(0),
        mModule(nullptr),
        mInstance(nullptr) {}

  /// Looks up a string resource of the module `mInstance`.
  ///
  /// @param id      the string
  /// @param buffer  receives the string, cut to `size` - 1 characters and terminated; untouched if
  ///                there is no such string
  /// @param size    bytes in `buffer`
  /// @return 0, or -1 if nothing was copied: there is no such string, or it is empty
  int LoadStringA(short id, char* buffer, unsigned int size) const;

  OZError mError;                ///< the error, 0 for none
  const char* mFile;             ///< source file that reports it, or null; not owned
  std::int32_t mLine;            ///< line in that file
  std::int32_t mTextKind;        ///< an `OZTextKind`
  OZErrorText mText;             ///< the message; a null text counts as an empty one
  OZErrorText mCaption;          ///< the caption of the box; null or id 0 for the library's own
  unsigned short mBoxFlags;      ///< style bits of the box, written by the alert operations
  unsigned short mMajorVersion;  ///< version of the reporting module
  unsigned short mMinorVersion;  ///< version of the reporting module
  unsigned short mRelease;       ///< version of the reporting module, shown in friendly messages
  const char* mModule;           ///< name of the reporting module; not owned
  void* mInstance;               ///< handle of the module whose strings `LoadStringA` reads
};

class OZFile;

/// Shows alerts, or holds them back while the application is inside a bracket of `MutexBegin` and
/// `MutexEnd`. The bracket has nothing to do with threads: a manager belongs to one thread.
///
/// The application makes the managers that it needs. What needs no object is static, and is never
/// deferred. Pointers to a record must not be null.
class ORZCORE_API OZErrorMgr {
 public:
  static constexpr unsigned short kWarning = 0x30;  ///< a warning icon with a single OK button
  static constexpr int kQueueLength = 5;            ///< alerts that a bracket holds

  /// What the alert operations return for the user's answer.
  enum Answer : std::int32_t {
    eAnswerYes = 0,     ///< OK, Yes, Retry, Abort or Ignore, or no box could be shown
    eAnswerNo = 1,      ///< No
    eAnswerCancel = 2,  ///< Cancel
  };

  OZErrorMgr();

  /// Alerts that are still held back are lost without being shown.
  ~OZErrorMgr();

  OZErrorMgr(const OZErrorMgr&) = delete;
  OZErrorMgr& operator=(const OZErrorMgr&) = delete;

  /// Opens a bracket: alerts of this manager are held back from now on. Brackets nest, to a depth
  /// of 65535.
  void MutexBegin();

  /// Closes a bracket. At the outermost one, the alerts held back are shown, the newest first;
  /// their answers go nowhere. Without an open bracket it does nothing.
  void MutexEnd();

  /// Shows the alert of a record as `AlertUserNow` does, or holds it back inside a bracket: the
  /// record is copied, with its texts. The sixth alert of a bracket, and one whose texts find no
  /// memory, are dropped.
  ///
  /// @param info   the record; its `mBoxFlags` become `flags`
  /// @param flags  style bits of the box
  /// @return as `AlertUserNow`; 0 if the alert was held back or dropped
  int AlertUser(OZErrorInfo* info, unsigned short flags);

  /// Does the same for a text. The record keeps pointers to the texts, and `mError` -1.
  ///
  /// @param text     the message
  /// @param caption  the caption, or null for the library's own
  int AlertUser(OZErrorInfo* info, const char* text, const char* caption, unsigned short flags);

  /// Tells the user that an operation failed, why, and what to do, with the numbers for technical
  /// support below: `mError`, `mLine`, `mFile` and `mRelease` of the record. It is held back inside
  /// a bracket as by `AlertUser`. An error of 0 or 201 is not shown, and one without a text of its own
  /// is told as an internal error.
  ///
  /// @param info     the record; used up by the call, since its texts are gone afterwards
  /// @param subject  the words that begin the sentence ("Saving the file"), or null. What does not
  ///                 fit into the message of 399 characters is cut, and a box shows 255 of them.
  void FriendlyErrorMsg(OZErrorInfo* info, const char* subject);

  /// Shows the alert of a record at once, and waits for the user's answer.
  ///
  /// @param info   the record; its `mBoxFlags` become `flags`
  /// @param flags  style bits of the box
  /// @return an `Answer`
  static int AlertUserNow(OZErrorInfo* info, unsigned short flags);

  /// Does the same for string resources of the record's module. The record keeps the ids.
  ///
  /// @param text     id of the message; without such a string the box is empty
  /// @param caption  id of the caption; 0 or one without a string for the library's own
  static int AlertUserNow(OZErrorInfo* info, short text, short caption, unsigned short flags);

  /// Does the same for a text. The record keeps pointers to the texts.
  ///
  /// @param text     the message
  /// @param caption  the caption, or null for the library's own
  static int AlertUserNow(OZErrorInfo* info, const char* text, const char* caption,
                          unsigned short flags);

  /// Sounds the signal of a kind of message.
  static void BeepUserNow(unsigned short type);

  /// Where internal faults are reported. It does nothing, and leaves no record.
  static void Trace(OZError error, const char* source, int line, int last);

  /// The same with a text. It does nothing, and leaves no record.
  static void Tracef(OZError error, int level, const char* format, ...);

 protected:
  OZErrorInfo mQueue[kQueueLength];  ///< alerts held back, the oldest first
  short mQueueCount = 0;             ///< how many of them are in use
  unsigned short mMutexDepth = 0;    ///< how many brackets are open

 private:
  friend class OZFile;

  /// The one alert that the file layer raises by itself.
  ORZCORE_LOCAL static void AlertFileInUse();
};

extern "C" {

/// The entry function of the library. The loader calls it as the library is attached, before any
/// static object of the program is made, also when the library is linked statically. Programs do
/// not call it.
///
/// @param instance  handle of the library's module, by which its string resources are found
/// @param reason    1 when the library is attached; any other reason changes nothing
/// @param reserved  not read
/// @return 1
ORZCORE_API int OZLibraryEntry(void* instance, unsigned int reason, void* reserved);

}  // extern "C"
