/// @file
/// What the library asks of the program it runs in, and of the user's system.
#pragma once

#include <cstdint>
#include <ctime>

#include "orzcore/export.h"

/// One string resource.
struct OZString {
  unsigned int id;   ///< its number; an `OZErrorInfo` reaches those from 0 to 32767
  const char* text;  ///< the string; not owned
};

/// The string resources of a module. An application that keeps strings of its own registers them
/// under a handle of its own, which it puts into `OZErrorInfo::mInstance`.
///
/// The table and its strings stay the caller's, and must live for as long as they are registered.
class ORZCORE_API OZStringTable {
 public:
  /// @param strings  the strings, in any order
  /// @param count    how many there are
  constexpr OZStringTable(const OZString* strings, unsigned int count)
      : strings_(strings), count_(count) {}

  OZStringTable(const OZStringTable&) = delete;
  OZStringTable& operator=(const OZStringTable&) = delete;

  /// Makes the strings known under a module handle, and under no other. Of two tables with one
  /// handle, the one registered last is searched first.
  ///
  /// @param module  the handle: any address of the caller's
  void Register(const void* module);

  /// Makes the strings unknown again. It does nothing to a table that is not registered.
  void Unregister();

  /// Returns the string of a registered table, or null if there is none.
  static const char* Find(const void* module, unsigned int id);

 private:
  const OZString* strings_;
  unsigned int count_;
  const void* module_ = nullptr;
  OZStringTable* next_ = nullptr;  // the tables form a list, so that registering needs no memory
};

/// The host of the library: message boxes, clocks and the user's regional settings.
///
/// Every operation has a working default. An application derives from this class to show real
/// message boxes or to keep its own regional settings; a test derives from it to fix the clock.
/// Files, locks and memory do not go through the host: they are always the real thing.
///
/// Like the rest of the library, the host in force is used from one thread at a time.
class ORZCORE_API OZHost {
 public:
  virtual ~OZHost();

  /// Shows a modal message box and waits for the user's answer.
  ///
  /// @param owner    the window from `GetActiveWindow`, or null
  /// @param text     the message; never null
  /// @param caption  the caption, or null for none
  /// @param style    style bits of the box: 0x30 is a warning icon with a single OK button
  /// @return the button: 1 OK, 2 Cancel, 3 Abort, 4 Retry, 5 Ignore, 6 Yes, 7 No; 0 if no box could
  ///         be shown. The default writes caption and text to standard error and returns 0.
  virtual int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style);

  /// Sounds the signal of a kind of message. The default writes the bell character to standard
  /// error if that is a terminal.
  virtual void MessageBeep(unsigned int type);

  /// Returns the window that owns the next message box. The default has none and returns null.
  virtual void* GetActiveWindow();

  /// Returns the current time in the user's time zone. The default asks the system's clock; a
  /// change of the zone, by the program or by the system, counts within a minute at the latest.
  virtual std::tm LocalTime();

  /// Returns a count of milliseconds from an arbitrary start. It never goes back, but for the wrap
  /// to 0 after 2^32 milliseconds. A wait for a lock reads it over and over and does nothing else,
  /// so an override that sleeps for a few milliseconds first gives the processor to others.
  virtual std::uint32_t GetTickCount();

  /// Returns a number that differs from one moment to the next.
  virtual std::uint32_t Clock();

  /// Reads a text from the user's regional settings.
  ///
  /// The default knows the key "sShortDate" of the section "Intl": the short date pattern of the
  /// locale that LC_ALL, LC_TIME or LANG names, in the letters d, M and y ("dd.MM.yyyy"). The
  /// locales "C" and "POSIX", with any character set, and unknown ones have no entry.
  ///
  /// @param section   name of the section, in any case
  /// @param key       name of the entry, in any case
  /// @param fallback  what is copied when there is no entry
  /// @param buffer    receives the text, cut to `size` - 1 characters and terminated
  /// @param size      bytes in `buffer`; with 0 or less nothing is written
  /// @return the characters copied, without the terminator
  virtual int GetProfileStringA(const char* section, const char* key, const char* fallback,
                                char* buffer, int size);

  /// Reads a number from the user's regional settings. The default knows the key "iTime" of the
  /// section "Intl": 0 for a 12-hour clock, 1 for a 24-hour clock, from the same locale.
  ///
  /// @return the number, or `fallback` when there is no entry
  virtual int GetProfileIntA(const char* section, const char* key, int fallback);

  /// Makes `host` the one that the library asks from now on; null brings the default back.
  /// Returns the one in force before. The caller keeps `host` alive while it is installed.
  static OZHost* Install(OZHost* host);
};
