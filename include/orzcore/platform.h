/// @file
/// What a program can replace or add: message boxes, clocks, the user's regional settings, and
/// string resources.
#pragma once

#include <cstdint>
#include <ctime>

#include "orzcore/export.h"

/// One string resource.
struct OZString {
  unsigned int id;   ///< from 1 to 32767; 0 means no string in an `OZErrorInfo`
  const char* text;  ///< the string; not owned
};

/// The string resources of a module, which is the application or a part of it. The application
/// registers its strings under a handle, and writes that handle into `OZErrorInfo::mInstance`.
///
/// The application owns the table and the strings, and keeps them alive while the table is
/// registered.
class ORZCORE_API OZStringTable {
 public:
  /// Makes a table that is not registered.
  ///
  /// @param strings  the strings, in any order
  /// @param count    how many strings there are
  constexpr OZStringTable(const OZString* strings, unsigned int count)
      : strings_(strings), count_(count) {}

  OZStringTable(const OZStringTable&) = delete;
  OZStringTable& operator=(const OZStringTable&) = delete;

  /// Registers the table under a handle, and ends an earlier registration. If several tables have
  /// the same handle, the one that was registered last is searched first.
  ///
  /// @param module  the handle: any address in memory of the caller, such as that of the table
  void Register(const void* module);

  /// Ends the registration. If the table is not registered, it does nothing.
  void Unregister();

  /// Finds a string in the registered tables.
  ///
  /// @param module  the handle under which the table was registered
  /// @param id      the id of the string
  /// @return the string, which the table's owner owns; null if there is no such string
  static const char* Find(const void* module, unsigned int id);

 private:
  const OZString* strings_;
  unsigned int count_;
  const void* module_ = nullptr;
  OZStringTable* next_ = nullptr;  // the registered tables are a list
};

/// The host: the object by which the library shows message boxes and reads clocks and the user's
/// regional settings.
///
/// Every operation has a default. An application derives from this class to show real message boxes
/// or to have regional settings of its own; a test derives from it to set the clock. Files, locks
/// and memory cannot be replaced.
///
/// The defaults cache the user's time zone and regional settings. A change of them, such as another
/// value of TZ or LANG, takes effect within a minute, or at once after `Install`.
///
/// Only one thread at a time may install a host or use the library.
class ORZCORE_API OZHost {
 public:
  virtual ~OZHost();

  /// Shows a modal message box and waits for the user's answer. The default writes caption and text
  /// to standard error instead, and returns 0.
  ///
  /// @param owner    the window that `GetActiveWindow` returned, or null
  /// @param text     the message; never null
  /// @param caption  the caption, or null for none
  /// @param style    style bits of the box: 0x30 is a warning icon and an OK button
  /// @return the button: 1 OK, 2 Cancel, 3 Abort, 4 Retry, 5 Ignore, 6 Yes, 7 No; 0 if no box could
  ///         be shown
  virtual int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style);

  /// Sounds the signal for a kind of message. The default writes the bell character to standard
  /// error if that is a terminal.
  ///
  /// @param type  the number that was given to `OZErrorMgr::BeepUserNow`
  virtual void MessageBeep(unsigned int type);

  /// Returns the window that is to own the next message box, or null. The default returns null.
  virtual void* GetActiveWindow();

  /// Returns the current time in the user's time zone. The default reads the system's clock.
  virtual std::tm LocalTime();

  /// Returns a count of milliseconds from an arbitrary start. The count never goes back, except
  /// from 2^32 - 1 to 0. A wait for a lock calls this again and again. To leave the processor to
  /// other threads and programs, an override sleeps for a few milliseconds before it returns.
  virtual std::uint32_t GetTickCount();

  /// Returns a number that changes with time. The constructor of `OZFile` calls this, so that
  /// objects made at different moments mostly begin with different bytes of a lock range.
  virtual std::uint32_t Clock();

  /// Reads a text from the user's regional settings.
  ///
  /// The default has one entry, "sShortDate" in the section "Intl": the short date pattern of the
  /// user's locale, in the letters d, M and y ("dd.MM.yyyy"). The first of the environment
  /// variables LC_ALL, LC_TIME and LANG that is set and not empty names the locale. For the locales
  /// "C" and "POSIX", with any character set, and for unknown locales there is no entry.
  ///
  /// @param section   the name of the section, in any case
  /// @param key       the name of the entry, in any case
  /// @param fallback  the text to copy if there is no entry
  /// @param buffer    receives the text, cut to `size` - 1 characters and terminated
  /// @param size      bytes in `buffer`; with 0 or less nothing is written
  /// @return how many characters were copied, without the terminator
  virtual int GetProfileStringA(const char* section, const char* key, const char* fallback,
                                char* buffer, int size);

  /// Reads a number from the user's regional settings.
  ///
  /// The default has one entry, "iTime" in the section "Intl", from the same locale: 0 for a
  /// 12-hour clock, 1 for a 24-hour clock.
  ///
  /// @param section   the name of the section, in any case
  /// @param key       the name of the entry, in any case
  /// @param fallback  the number to return if there is no entry
  /// @return the number
  virtual int GetProfileIntA(const char* section, const char* key, int fallback);

  /// Installs a host: from now on the library calls this one. The cached time zone and regional
  /// settings are read again.
  ///
  /// @param host  the host, which the caller keeps alive while it is installed; null for the
  ///              default
  /// @return the host that was installed before
  static OZHost* Install(OZHost* host);
};
