// The other calls of the system that the library was made for, under the names that they have
// there. The last declaration is the one call that the system makes to the library.
//
// The installed `OZHost` answers the calls for clocks, regional settings, message boxes and their
// sounds. Code that depends on the system is in a folder of its own, such as posix/.
#pragma once

#include <cstdint>
#include <ctime>

namespace orzcore::platform {

/// Returns the current time in the user's time zone: `time` and `localtime` in one call.
std::tm LocalTime();

/// Returns milliseconds from an arbitrary start, wrapping at 32 bits.
std::uint32_t GetTickCount();

/// Returns a counter that changes all the time. Its unit and its start have no meaning.
std::uint32_t Clock();

/// Reads a text from the user's regional settings, see `OZHost::GetProfileStringA`.
int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                      int size);

/// Reads a number from the user's regional settings, see `OZHost::GetProfileIntA`.
int GetProfileIntA(const char* section, const char* key, int fallback);

/// Shows a message box, see `OZHost::MessageBoxA`.
int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style);

/// Plays the sound for a kind of message.
void MessageBeep(unsigned int type);

/// Returns the window that owns the next message box, or null.
void* GetActiveWindow();

/// Copies a string of a registered `OZStringTable`, or else of the system, into a buffer, cut to
/// `size` - 1 characters and terminated.
///
/// @param instance  handle of the module that has the string
/// @return the number of characters; 0 if there is no such string, and the buffer is unchanged
int LoadStringA(const void* instance, unsigned int id, char* buffer, unsigned int size);

/// Copies a string that the system itself has for a module, as `LoadStringA` does. POSIX has none.
int LoadResourceString(const void* instance, unsigned int id, char* buffer, unsigned int size);

/// Returns a character of code page 1252, which may be an accented letter, in lower case.
char CharLowerA(char character);

/// Changes a text to lower case, and returns it.
char* CharLowerA(char* text);

// Flags for `GlobalAlloc`.
inline constexpr unsigned int kGlobalMovable = 0x0002;
inline constexpr unsigned int kGlobalZeroFilled = 0x0040;
inline constexpr unsigned int kGlobalDiscardable = 0x0100;

/// The bit that `GlobalFlags` sets for a discarded block.
inline constexpr unsigned int kGlobalDiscarded = 0x4000;

/// Allocates a block of zeros that the system may discard while the block is not locked. A new
/// block is not locked. A block of 0 bytes counts as discarded from the start.
///
/// @param flags  all three flags above; other blocks are not supported
/// @return the block, which the caller frees with `GlobalFree`; null if there is no memory, or for
///         other flags
void* GlobalAlloc(unsigned int flags, std::uint32_t size);

/// Frees a block, locked or not, and returns null.
void* GlobalFree(void* block);

/// Locks a block. The system does not move or discard it until `GlobalUnlock` was called as many
/// times as `GlobalLock`.
///
/// @return the address, on a page boundary; null if the block or a part of it has been discarded,
///         and then it stays discarded
void* GlobalLock(void* block);

/// Undoes one `GlobalLock`. It allocates nothing. It does nothing to a block that is not locked.
///
/// @return 1 if the block is still locked, else 0
int GlobalUnlock(void* block);

/// Returns `kGlobalDiscarded` if the block has been discarded, else 0.
unsigned int GlobalFlags(void* block);

/// The argument of the entry function that means: the library is being loaded.
inline constexpr unsigned int kProcessAttach = 1;

/// Calls the entry function, `OZLibraryEntry`, with the handle of the library's module and
/// `kProcessAttach`. The system runs this function when it loads the library; no code of the
/// library calls it. No other function of platform/ calls another folder.
void CallEntryFunction();

}  // namespace orzcore::platform
