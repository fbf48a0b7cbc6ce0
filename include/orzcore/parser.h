/// @file
/// The field parser: it turns what a user typed into an entry field into a value.
#pragma once

#include <cstdint>

#include "orzcore/calendar.h"
#include "orzcore/export.h"

/// An interval of time, in six bytes without padding.
#pragma pack(push, 1)
struct ST_TIME_RETURN_VAL {
  char unit;           ///< the letter of the unit; a blank if the text has none
  char sign;           ///< the sign before the text: 0 none, 1 a minus, 2 a plus
  std::int32_t value;  ///< the amount, negative if `sign` is 1
};
#pragma pack(pop)
static_assert(sizeof(ST_TIME_RETURN_VAL) == 6 && alignof(ST_TIME_RETURN_VAL) == 1);

/// How amounts of money are written.
struct stCurrencyFormat {
  char symbol[5];    ///< the currency symbol: up to four characters and a terminator
  char decimalChar;  ///< the decimal separator
};

/// Turns the texts of entry fields into values.
///
/// `parseBuffer` and the operations whose names begin with Parse return 0 if they accept the text,
/// -1 if they reject it, and `eErrOutOfMemory` (111) if there is no memory for their copy of the
/// text. They write their results only if they return 0.
///
/// They reject a text with a word of more than 19 characters or with a number that does not fit its
/// type, unless the form of the text ignores that word or number. All except `ParsePriority` reject
/// a text of more than 32,767 characters, blanks included. docs/field-forms.md lists the texts that
/// each field accepts.
///
/// Pointers must not be null, unless a comment allows it. Use all operations from one thread at a
/// time. All parsing operations except `ParsePriority` read the clock into `OZDate::mNow`.
class ORZCORE_API OZParser {
 public:
  OZParser() = delete;

  /// The kinds of entry field. With any other number every text is accepted, without a value: the
  /// result is `eParseUnset`.
  enum eEditType : std::int32_t {
    eEditInt = 0,         ///< whole number
    eEditRealTI = 2,      ///< interval with decimals
    eEditTime = 3,        ///< time of day, or an interval that moves a time
    eEditDate = 4,        ///< date, or an interval that moves a date
    eEditIntTI = 5,       ///< whole count of days, weeks, months or years
    eEditDateTimeTI = 7,  ///< date, time or interval in one field
    eEditReal = 8,        ///< real number or money
    eEditHoursMinTI = 9,  ///< whole count of hours or minutes
  };

  /// What the parser found, and what the destination then contains.
  enum eParseResult : std::int32_t {
    eParseUnset = 0,  ///< the edit type names no field; nothing is written
    eParseDate = 1,   ///< a date: `un_date_time`
    eParseReal = 3,   ///< a real number: `std::int32_t`, in thousandths
    eParseInt = 4,    ///< a whole number: `std::int32_t`

    /// An interval: `ST_TIME_RETURN_VAL`. In an `eEditDate` field: the reference date moved by a
    /// signed interval, as `un_date_time`.
    eParseInterval = 5,
    eParseTime = 6,  ///< a time of day: `short`, minutes since midnight, 0 to 1440
    eParseNone = 7,  ///< the text says that there is no value; nothing is written
  };

  /// Flag: the field may be left without a value. Only date, real number and money fields read it.
  /// All others always accept a text without a value.
  static constexpr unsigned short kNoneAllowed = 1;

  /// Flag: a text that begins with L in a whole number field stands for the last value.
  static constexpr unsigned short kLastAllowed = 2;

  static constexpr short kNoPriority = 255;  ///< the priority that means none

  static constexpr int kTokens = 5;      ///< the most tokens that `seperateText` makes
  static constexpr int kTokenSize = 20;  ///< bytes of a token with its terminator

  /// Parses the text of a field. Reads the clock once.
  ///
  /// @param result            receives the kind of result, if `destination` is not null
  /// @param flags             `kNoneAllowed`, `kLastAllowed`, or both
  /// @param destination       receives the value. It may have any alignment, and must have room for
  ///                          every result of the field. For an `eEditDate` field it also contains
  ///                          the reference date, from which signed intervals (+3 d) count. If that
  ///                          is no date (year 0), such an interval is accepted and changes
  ///                          nothing. With null, the text is only checked.
  /// @param last_value        what L stands for; read only with `kLastAllowed`
  /// @param text              what the user typed
  /// @param type              the kind of field
  /// @param format            for `eEditReal`: how money is written, or null for a plain number
  /// @param week_start        the first day of the week, for weekdays such as "this sun"
  /// @param twenty_four_hour  if 0, an hour from 1 to 6 without am or pm is in the afternoon
  /// @param day_position      1: 3/5 is 5 March; 0: 3/5 is 3 May
  static int ParseField(eParseResult* result, unsigned short flags, void* destination,
                        short last_value, const char* text, eEditType type,
                        const stCurrencyFormat* format, eCalWeekStart week_start,
                        int twenty_four_hour, int day_position);

  /// Does the same as `ParseField`, but works in the caller's text instead of a copy. It changes
  /// that text, even if it rejects it, and never returns `eErrOutOfMemory` (111).
  static int parseBuffer(eParseResult* result, unsigned short flags, void* destination,
                         short last_value, char* text, eEditType type,
                         const stCurrencyFormat* format, eCalWeekStart week_start,
                         int twenty_four_hour, int day_position);

  /// Parses a whole number. For a text without a value (empty, No, None) it returns 0 and leaves
  /// `out` as it was.
  static int ParseInt(const char* text, std::int32_t* out);

  /// Parses a whole number as `ParseInt` does, but a text that begins with L stands for
  /// `last_value`.
  static int ParseIntPlusLast(const char* text, short last_value, std::int32_t* out);

  /// Parses a real number. An empty text is 0.
  ///
  /// @param flags  `kNoneAllowed`: No and None are 0, too; 0: they are rejected
  /// @param out    receives the number in thousandths; further decimals are cut off
  static int ParseReal(const char* text, int flags, std::int32_t* out);

  /// Parses an amount of money. No and None are rejected.
  ///
  /// @param none_allowed  if not 0, an empty text is rejected; if 0, it is an amount of 0
  /// @param out           receives the amount
  /// @param format        how money is written
  /// @param hundredths    if not 0, `out` is in hundredths, otherwise in thousandths; further
  ///                      decimals are cut off
  static int ParseCurrency(const char* text, int none_allowed, std::int32_t* out,
                           const stCurrencyFormat* format, int hundredths);

  /// Parses a date field. Reads the clock up to three times.
  ///
  /// @param result         receives `eParseDate`, `eParseInterval` for a signed interval, or
  ///                       `eParseNone`
  /// @param none_clears    if not 0, a text without a value clears the date; if 0, it sets the date
  ///                       to today
  /// @param date           the field's date, changed in place. Signed intervals count from it, or
  ///                       from today if it is no date (year 0). Its time does not change.
  /// @param text           what the user typed
  /// @param week_start     the first day of the week
  /// @param day_position   1: 3/5 is 5 March; 0: 3/5 is 3 May
  static int ParseDate(eParseResult* result, int none_clears, un_date_time* date, const char* text,
                       eCalWeekStart week_start, int day_position);

  /// Parses a time field. An interval moves the time, but not past either end of the day: the
  /// result is from 0 to 1440. Reads the clock up to twice.
  ///
  /// @param result            receives `eParseTime`, `eParseInterval` or `eParseNone`
  /// @param subtract          if not 0, an interval without a sign is subtracted instead of added
  /// @param time              the field's time in minutes since midnight, changed in place;
  ///                          `OZDate::kNoTime` if the field has no time. A text without a value
  ///                          sets it to `kNoTime`. Signed intervals count from it, or from now if
  ///                          it is `kNoTime`.
  /// @param reference         the time from which intervals without a sign count; with
  ///                          `OZDate::kNoTime` they count as signed ones do
  /// @param text              what the user typed
  /// @param twenty_four_hour  if 0, an hour from 1 to 6 without am or pm is in the afternoon
  static int ParseTime(eParseResult* result, int subtract, short* time, short reference,
                       const char* text, int twenty_four_hour);

  /// Parses an interval with decimals. The unit is 'M', and the value is in tenths of a minute. A
  /// text without a value sets `value` to 0 and leaves the rest of `out` as it was.
  static int ParseRealTI(ST_TIME_RETURN_VAL* out, const char* text);

  /// Parses a whole count of days ('D'), weeks ('W'), months ('M') or years ('Y'), 0 to 999. For a
  /// text without a value, or a 0 without a unit, the result is 0 with a blank as unit.
  static int ParseIntTI(const char* text, ST_TIME_RETURN_VAL* out);

  /// Parses a whole count of hours ('H') or minutes ('M'), 0 to 99. For a text without a value, or
  /// a 0 without a unit, the result is 0 with a blank as unit.
  static int ParseHoursMinTI(const char* text, ST_TIME_RETURN_VAL* out);

  /// Parses a priority: a number from 0, the highest, to 100; a letter from a to i, alone or with
  /// one digit after it (c5 is 35); or a word that begins with hi (0), lo (100) or no
  /// (`kNoPriority`). Characters that are no letters or digits are ignored: 5.5 is 55. A text
  /// without letters and digits is `kNoPriority`.
  ///
  /// @param out         receives the priority
  /// @param text        what the user typed; of any length
  /// @param zero_digit  if not 0, the digit after a letter may be 0; if 0, it is from 1 to 9
  static int ParsePriority(short* out, const char* text, int zero_digit);

  /// Splits a text into tokens: runs of digits and runs of letters, in upper case. It drops the
  /// separators between them: the blank and - , . : ; ' and /. Any other character belongs to the
  /// run in which it stands.
  ///
  /// Separators and other characters before the first digit or letter are one token. If a text of
  /// fewer than five tokens ends with separators, an empty token follows. A token is cut after 19
  /// characters. The text after the fifth token is ignored.
  ///
  /// The operation records the separator after each token for `divchk`. Of several separators in a
  /// row it records the first, but before the first digit or letter the last.
  ///
  /// @param tokens  receives the tokens; unused elements become empty
  /// @return the index of the last token, 0 to 4
  static short seperateText(const char* text, char (*tokens)[kTokenSize]);

  /// Checks whether the separators that the last call of `seperateText` recorded belong to a date
  /// or to a time. No other operation changes what is recorded. A token without a separator after
  /// it passes.
  ///
  /// @param mode  2 for a date (, - / . and blank); any other number for a time (. : ; ' and blank)
  /// @param last  the index of the last token to check, as `seperateText` returned it
  /// @return 0 if all the separators pass, else 1
  static int divchk(short mode, short last);

  /// Finds the first month whose name contains a token of three or more letters.
  ///
  /// @param token  in upper case
  /// @return the month, 1 to 12; 13 if there is none
  static short fndmth(const char* token);

  /// Finds the weekday that a token names. Its first letter decides; if that is T or S, the first
  /// two do. A token that names a month names no weekday.
  ///
  /// @param index       the index of the token
  /// @param tokens      the tokens from `seperateText`
  /// @param week_start  `eCalWeekStartMonday` for Monday-first numbering
  /// @return the weekday, 1 to 7: from Monday in Monday-first numbering, otherwise from Sunday; 8
  ///         if there is none
  static short fndwkdy(short index, const char (*tokens)[kTokenSize], eCalWeekStart week_start);
};
