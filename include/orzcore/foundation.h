// Small building blocks that know nothing of the organizer: string helpers.
//
// All texts are zero-terminated bytes in code page 1252. Nothing here allocates or keeps state, and
// no pointer may be null.
#pragma once

#include <cstdint>

#include "orzcore/export.h"

/// Compares two texts without regard to case, accented letters included: both are lower-cased by
/// the rules of code page 1252 and compared as unsigned bytes. The characters between Z and a sort
/// before the letters.
///
/// @return -1 if a sorts before b, 1 if it sorts after b, 0 if they count as equal
ORZCORE_API int Ansiicmp(const char* a, const char* b);

/// Compares the first `count` bytes of two texts as `Ansiicmp` does.
///
/// @return -1, 0 or 1; 0 for a count of 0
ORZCORE_API int Ansinicmp(const char* a, const char* b, unsigned short count);

extern "C" {

/// Compares two texts without regard to the case of the letters A to Z: both are upper-cased and
/// compared as unsigned bytes. The characters between Z and a sort after the letters.
///
/// @return -1 if a sorts before b, 1 if it sorts after b, 0 if they count as equal
ORZCORE_API int stricmp(const char* a, const char* b);

/// Compares the first `count` bytes of two texts as `stricmp` does.
///
/// @return -1, 0 or 1; 0 for a count of 0
ORZCORE_API int strnicmp(const char* a, const char* b, std::uint32_t count);

}  // extern "C"

/// Adds 1 to the decimal number at the end of a text, in place. The length and the first character
/// never change, so a carry into the first character is lost: A99 becomes A00. The first character
/// from the right that is below 9 ends the carry, a digit or not: A- becomes A. (full stop).
ORZCORE_API void IncrementAsciiNumber(char* text);

/// Finds the first byte of a block that differs from a value.
///
/// @param block  the bytes to search
/// @param value  its low 8 bits are the value
/// @param count  bytes to search; a negative count returns `block` without reading it
/// @return the first different byte, or null if there is none
ORZCORE_API const unsigned char* Memchr_ne(const unsigned char* block, short value, short count);

/// Moves `count` bytes from `source` to `destination`, which may overlap, and writes a terminator
/// behind them. A terminator in the source does not end the move.
///
/// @param destination  room for `count` + 1 bytes
/// @param count        0 or above; with a negative count nothing is written
ORZCORE_API void Strextr(char* destination, const char* source, short count);

/// Copies a text up to its terminator or up to `maximum` bytes, whichever comes first.
///
/// @param destination  room for `maximum` bytes, and for one more if `terminate` is not 0
/// @param maximum      0 or less copies nothing
/// @param terminate    if not 0, one terminator follows the last copied byte; otherwise none is
///                     written. Nothing is padded.
ORZCORE_API void String_copy(char* destination, const char* source, short maximum, int terminate);

/// Removes every blank from a text, in place, and every comma too if `commas` is not 0. No other
/// white space is touched.
ORZCORE_API void Strip(char* text, int commas);
