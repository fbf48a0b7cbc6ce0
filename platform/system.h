// The calls that the library makes of its system, under the system's own names, and at the end the
// one call that the system makes of the library.
//
// Clocks, regional settings and message boxes are answered by the `OZHost` in force; everything
// else by the system itself. There is one folder beside this file for each kind of system.
#pragma once

#include <cstdint>
#include <ctime>

namespace orzcore::platform {

/// Returns the current time in the user's time zone: `time` and `localtime` in one call.
std::tm LocalTime();

/// Returns milliseconds from an arbitrary start, wrapping at 32 bits.
std::uint32_t GetTickCount();

/// Returns a number that differs from one moment to the next.
std::uint32_t Clock();

/// Reads a text from the user's regional settings, as `OZHost::GetProfileStringA` tells.
int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                      int size);

/// Reads a number from the user's regional settings, as `OZHost::GetProfileIntA` tells.
int GetProfileIntA(const char* section, const char* key, int fallback);

/// Shows a message box, as `OZHost::MessageBoxA` tells.
int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style);

/// Sounds the signal of a kind of message.
void MessageBeep(unsigned int type);

/// Returns the window that owns the next message box, or null.
void* GetActiveWindow();

/// Copies a string resource, cut to `size` - 1 characters and terminated.
///
/// @param instance  handle of the module that has the string
/// @return the characters copied; 0 if there is no such string, and the buffer is untouched
int LoadStringA(const void* instance, unsigned int id, char* buffer, unsigned int size);

/// Returns a character of code page 1252 in lower case, accented letters included.
char CharLowerA(char character);

/// Lower-cases a text in place, and returns it.
char* CharLowerA(char* text);

// What `GlobalAlloc` is asked for.
inline constexpr unsigned int kGlobalMovable = 0x0002;
inline constexpr unsigned int kGlobalZeroFilled = 0x0040;
inline constexpr unsigned int kGlobalDiscardable = 0x0100;

/// The bit of `GlobalFlags` that tells a discarded block.
inline constexpr unsigned int kGlobalDiscarded = 0x4000;

/// Allocates a block that reads as zeros, and that the system may discard while it is not locked. A
/// new block is not locked; one of 0 bytes is discarded from the start.
///
/// @param flags  movable, zero-filled and discardable: no other kind of block is made
/// @return the block, which the caller frees with `GlobalFree`; null if there is no memory
void* GlobalAlloc(unsigned int flags, std::uint32_t size);

/// Frees a block, locked or not, and returns null.
void* GlobalFree(void* block);

/// Locks a block: it is neither moved nor discarded before as many calls of `GlobalUnlock`.
///
/// @return the address, on a page boundary; null if the block has been discarded, even in part, and
///         it remains so
void* GlobalLock(void* block);

/// Takes back one `GlobalLock`. It needs no memory, and does nothing to a block that is not locked.
///
/// @return 1 if the block is still locked, else 0
int GlobalUnlock(void* block);

/// Returns `kGlobalDiscarded` if the block has been discarded, else 0.
unsigned int GlobalFlags(void* block);

/// The reason for which the entry function is called when the library is loaded.
inline constexpr unsigned int kProcessAttach = 1;

/// Calls the entry function, `OZLibraryEntry`, with the handle of the library's module and
/// `kProcessAttach`. The system runs this when it loads the library; nothing in the library calls
/// it. It is the only call from platform/ up to another folder.
void CallEntryFunction();

}  // namespace orzcore::platform
