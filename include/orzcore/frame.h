/// @file
/// Errors and alerts: the error codes, the record of an alert, the manager that shows alerts or
/// holds them back, and the entry function of the library. An *alert* is a message box.
#pragma once

#include <cstdint>

#include "orzcore/export.h"

/// The error codes of the library and of the application above it. An operation that returns one
/// returns `eErrNone` (0) if it succeeds. The enumeration is unscoped and its numbers are fixed, so
/// callers may compare a result with a plain number.
enum OZError : std::int32_t {
  eErrPlainText = -1,          ///< in a record: an alert with a plain text, no error
  eErrNone = 0,                ///< success; in a record: no error
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
  eErrSilent = 201,               ///< an error for which no message is shown
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
  eErrUnknown = 231,              ///< an error of the system without a code of its own
};

/// A text or the id of a string resource. `OZErrorInfo::mTextKind` says which of them it is.
union OZErrorText {
  const char* text;  ///< the text, not owned, or null
  short id;          ///< the id of a string resource
};

/// What `mText` and `mCaption` of an `OZErrorInfo` contain. With any other number the alert has
/// neither a message nor a caption.
enum OZTextKind : std::int32_t {
  eTextOfCaller = 2,  ///< `mText` and `mCaption` are texts of the caller, or null
  eTextOfQueue = 3,   ///< both are copies of such texts, which an `OZErrorMgr` owns, or null
  eTextResource = 4,  ///< both are ids of string resources of the module `mInstance`
};

/// The record of one alert. The code that finds an error fills it and passes it to `OZErrorMgr`. It
/// owns nothing.
struct ORZCORE_API OZErrorInfo {
  /// The argument of the constructor that makes a record of zeros.
  enum Zero { kZero };

  /// Makes a record with `mInstance` null. All other fields are uninitialised.
  OZErrorInfo() : mInstance(nullptr) {}

  /// Makes a record of zeros.
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
  /// @param id      the id of the string
  /// @param buffer  receives the string, cut to `size` - 1 characters and terminated; unchanged if
  ///                there is no such string
  /// @param size    bytes in `buffer`; with 0 nothing is written
  /// @return 0; -1 if no character was copied, because there is no such string, it is empty, or
  ///         `size` is less than 2
  int LoadStringA(short id, char* buffer, unsigned int size) const;

  OZError mError;                ///< the error; `eErrNone` (0) for none
  const char* mFile;             ///< the source file that reports the error, or null; not owned
  std::int32_t mLine;            ///< the line in that file
  std::int32_t mTextKind;        ///< an `OZTextKind`
  OZErrorText mText;             ///< the message; a null text counts as an empty one
  OZErrorText mCaption;          ///< the caption of the box; null or id 0 for the library's own
  unsigned short mBoxFlags;      ///< style bits of the box; the alert operations write them
  unsigned short mMajorVersion;  ///< the major version of the reporting module
  unsigned short mMinorVersion;  ///< the minor version of the reporting module
  unsigned short mRelease;       ///< the release of the reporting module, in friendly messages
  const char* mModule;           ///< the name of the reporting module; not owned
  void* mInstance;               ///< the handle of the module whose strings `LoadStringA` reads
};

class OZFile;

/// Shows alerts, or holds them back between `MutexBegin` and `MutexEnd`. A pair of these calls is
/// called a *bracket*. It does not protect against other threads: only one thread may use a
/// manager.
///
/// The application makes the managers that it needs, and each has brackets of its own. The static
/// operations show their alerts at once, also inside a bracket. Pointers to a record must not be
/// null.
///
/// A caption that is null, empty or missing is replaced by the library's own. A box shows the first
/// 255 characters of a message and of a caption.
class ORZCORE_API OZErrorMgr {
 public:
  static constexpr unsigned short kWarning = 0x30;  ///< style bits: a warning icon, an OK button
  static constexpr int kQueueLength = 5;            ///< slots for alerts that are held back

  /// The user's answer, as the alert operations return it.
  enum Answer : std::int32_t {
    eAnswerYes = 0,     ///< OK, Yes, Retry, Abort or Ignore; also if no box could be shown
    eAnswerNo = 1,      ///< No
    eAnswerCancel = 2,  ///< Cancel
  };

  OZErrorMgr();

  /// Drops the alerts that are still held back.
  ~OZErrorMgr();

  OZErrorMgr(const OZErrorMgr&) = delete;
  OZErrorMgr& operator=(const OZErrorMgr&) = delete;

  /// Opens a bracket: from now on this manager holds its alerts back. Brackets nest. At a depth of
  /// 65535 the call does nothing.
  void MutexBegin();

  /// Closes a bracket. If it was the outermost one, shows the alerts that were held back, the
  /// newest first, and ignores the answers. Without an open bracket it does nothing.
  ///
  /// Until an alert is shown, it keeps its slot. If the program opens another bracket while one of
  /// the boxes is open, that bracket has only the free slots, and its end also shows the alerts
  /// that still wait.
  void MutexEnd();

  /// Shows an alert as `AlertUserNow` does, or holds it back inside a bracket. For an alert that is
  /// held back, the manager copies the record and its texts. String resources are looked up when
  /// the alert is shown.
  ///
  /// The alert is dropped if all `kQueueLength` slots are taken, or if there is no memory for the
  /// copies.
  ///
  /// @param info   the record; its `mBoxFlags` become `flags`, except if all slots are taken
  /// @param flags  style bits of the box
  /// @return as `AlertUserNow`; `eAnswerYes` (0) if the alert was held back or dropped
  int AlertUser(OZErrorInfo* info, unsigned short flags);

  /// Does the same with a text. Afterwards the record has pointers to the caller's texts, and its
  /// `mError` is `eErrPlainText` (-1).
  ///
  /// @param info     the record
  /// @param text     the message; null counts as an empty text
  /// @param caption  the caption, or null for the library's own
  /// @param flags    style bits of the box
  int AlertUser(OZErrorInfo* info, const char* text, const char* caption, unsigned short flags);

  /// Shows a message that says which operation failed, why, and what to do. The last line is for
  /// technical support: `mLine`, `mFile`, `mError` and `mRelease` of the record. A bracket holds
  /// the message back as it does with `AlertUser`.
  ///
  /// For `eErrNone` (0) and `eErrSilent` (201) nothing is shown. A code without a message of its
  /// own is shown as an internal error.
  ///
  /// A message has at most 399 characters, of which a box shows 255. Its last line has at most 80.
  /// What does not fit is cut off: the last line after a long subject or advice, and the error code
  /// after a source file name of more than about 40 characters.
  ///
  /// @param info     the record. If a message is shown or held back, its texts are no longer valid
  ///                 afterwards, and its `mError` is `eErrPlainText` (-1).
  /// @param subject  the words that begin the sentence, such as "Saving the file"; null for "This
  ///                 operation"
  void FriendlyErrorMsg(OZErrorInfo* info, const char* subject);

  /// Shows an alert at once, and waits for the user's answer.
  ///
  /// @param info   the record; its `mBoxFlags` become `flags`
  /// @param flags  style bits of the box
  /// @return an `Answer`
  static int AlertUserNow(OZErrorInfo* info, unsigned short flags);

  /// Does the same with string resources of the module `mInstance`. Afterwards the record contains
  /// the ids.
  ///
  /// @param info     the record
  /// @param text     the id of the message; if there is no such string, the message is empty
  /// @param caption  the id of the caption, or 0 for the library's own
  /// @param flags    style bits of the box
  static int AlertUserNow(OZErrorInfo* info, short text, short caption, unsigned short flags);

  /// Does the same with a text. Afterwards the record has pointers to the caller's texts.
  ///
  /// @param info     the record
  /// @param text     the message; null counts as an empty text
  /// @param caption  the caption, or null for the library's own
  /// @param flags    style bits of the box
  static int AlertUserNow(OZErrorInfo* info, const char* text, const char* caption,
                          unsigned short flags);

  /// Sounds the signal for a kind of message, through `OZHost::MessageBeep`.
  static void BeepUserNow(unsigned short type);

  /// The library calls this where it finds an internal fault. It does nothing.
  static void Trace(OZError error, const char* source, int line, int last);

  /// A trace with a text. It does nothing.
  static void Tracef(OZError error, int level, const char* format, ...);

 protected:
  OZErrorInfo mQueue[kQueueLength];  ///< the alerts that are held back, the oldest first
  short mQueueCount = 0;             ///< how many alerts are held back
  unsigned short mMutexDepth = 0;    ///< how many brackets are open

 private:
  friend class OZFile;

  // A DLL exports all members of an exported class, so this operation is in a class of its own.
  struct ORZCORE_LOCAL Library {
    /// Shows the only alert that the library shows by itself: another user has the file open.
    static void AlertFileInUse();
  };
};

extern "C" {

/// The entry function of the library. The loader calls it when it loads the library; programs do
/// not call it. Until then the library has no strings: alerts have no caption, and friendly
/// messages lack their sentences.
///
/// It runs before the static objects of the program are constructed. One case is different: if the
/// library is linked statically, objects and constructor functions of the program with the init
/// priority 101 may run before it.
///
/// @param instance  the handle of the library's module, under which its strings are registered
/// @param reason    1 when the library is loaded; any other reason changes nothing
/// @param reserved  not read
/// @return 1
ORZCORE_API int OZLibraryEntry(void* instance, unsigned int reason, void* reserved);

}  // extern "C"
