/// @file
/// The field parser: what a user typed into an entry field, turned into a value.
#pragma once

#include <cstdint>

#include "orzcore/calendar.h"
#include "orzcore/export.h"

/// An interval of time, as the parser writes it: six bytes without a gap.
#pragma pack(push, 1)
struct ST_TIME_RETURN_VAL {
  char unit;           ///< a unit letter; a blank if the text gave none
  char sign;           ///< what the text began with: 0 nothing, 1 a minus, 2 a plus
  std::int32_t value;  ///< the amount, negative if `sign` is 1
};
#pragma pack(pop)
static_assert(sizeof(ST_TIME_RETURN_VAL) == 6 && alignof(ST_TIME_RETURN_VAL) == 1);

/// How amounts of money are written. The caller owns and fills it.
struct stCurrencyFormat {
  char symbol[5];    ///< the currency symbol, at most four characters and a terminator
  char decimalChar;  ///< the decimal separator
};

/// Turns the texts of entry fields into values.
///
/// The operations whose names begin with Parse (and `parseBuffer`) return 0 for an accepted text,
/// -1 for a rejected one, and `OZError` 111 if there is no memory for their copy of the text. They
/// write nothing unless they return 0. They reject a text with a word of more than 19 characters,
/// or a number that does not fit its type, where that word or number counts; all but
/// `ParsePriority` reject a text with more than 32767 characters.
///
/// Pointers must not be null unless told otherwise. Parsing is not reentrant: one thread at a time.
class ORZCORE_API OZParser {
 public:
  OZParser() = delete;

  /// The kinds of entry field. Any other number names no field: a text is accepted whatever it
  /// says, with the result `eParseUnset` and no value.
  enum eEditType : std::int32_t {
    eEditInt = 0,         ///< whole number
    eEditRealTI = 2,      ///< interval with fractions
    eEditTime = 3,        ///< time of day, or an interval from a time
    eEditDate = 4,        ///< date
    eEditIntTI = 5,       ///< whole count of days, weeks, months or years
    eEditDateTimeTI = 7,  ///< date, time or interval in one field
    eEditReal = 8,        ///< real number or money
    eEditHoursMinTI = 9,  ///< whole count of hours or minutes
  };

  /// What the parser found, and so what the destination holds.
  enum eParseResult : std::int32_t {
    eParseUnset = 0,     ///< the edit type names no field; nothing is written
    eParseDate = 1,      ///< a date: `un_date_time`
    eParseReal = 3,      ///< a real number: 32 bits, in thousandths
    eParseInt = 4,       ///< a whole number: 32 bits
    eParseInterval = 5,  ///< an interval: `ST_TIME_RETURN_VAL`; in a date field an `un_date_time`
                         ///< that was reached from the reference date by a signed interval
    eParseTime = 6,      ///< a time of day: 16 bits, minutes since midnight, 0 to 1440
    eParseNone = 7,      ///< the field says that there is no value; nothing is written
  };

  /// Flag: the field may be left without a value. Only date, real number and money fields read it;
  /// all others take a text without a value in any case.
  static constexpr unsigned short kNoneAllowed = 1;
  static constexpr unsigned short kLastAllowed = 2;  ///< flag: a text that begins with L in a whole
                                                     ///< number field stands for the last value
  static constexpr short kNoPriority = 255;          ///< the priority that means none

  static constexpr int kTokens = 5;      ///< tokens that `seperateText` makes at most
  static constexpr int kTokenSize = 20;  ///< bytes of a token with its terminator

  /// Parses the text of one field. The operations below are short forms of it for a kind of field.
  ///
  /// @param result            receives the kind of result, if `destination` is not null
  /// @param flags             `kNoneAllowed`, `kLastAllowed`, or both
  /// @param destination       receives the value, and needs no alignment. It must have room for
  ///                          every result of the field. In an `eEditDate` field it holds the
  ///                          reference date of signed intervals (+3 d). Null tests a text without
  ///                          keeping anything; signed intervals then count from today.
  /// @param last_value        what L stands for; read only with `kLastAllowed`
  /// @param text              what the user typed
  /// @param type              the kind of field
  /// @param format            for `eEditReal`: how money is written, or null for a plain number
  /// @param week_start        the numbering of the weekdays, which decides what a week is
  /// @param twenty_four_hour  if 0, a bare hour from 1 to 6 is in the afternoon
  /// @param day_position      1: 3/5 is 5 March; 0: 3/5 is 3 May
  static int ParseField(eParseResult* result, unsigned short flags, void* destination,
                        short last_value, const char* text, eEditType type,
                        const stCurrencyFormat* format, eCalWeekStart week_start,
                        int twenty_four_hour, int day_position);

  /// Parses as `ParseField` does, but works in the caller's text, which it changes, and so needs no
  /// memory: it never returns 111. The text is changed on rejection too.
  static int parseBuffer(eParseResult* result, unsigned short flags, void* destination,
                         short last_value, char* text, eEditType type,
                         const stCurrencyFormat* format, eCalWeekStart week_start,
                         int twenty_four_hour, int day_position);

  /// Parses a whole number. A text without a value (empty, No, None) returns 0 and leaves `out` as
  /// it was.
  static int ParseInt(const char* text, std::int32_t* out);

  /// Parses a whole number as `ParseInt` does; a text that begins with L stands for `last_value`.
  static int ParseIntPlusLast(const char* text, short last_value, std::int32_t* out);

  /// Parses a real number into thousandths, cutting off further decimals. With `kNoneAllowed` in
  /// `flags`, a text without a value gives 0; else the empty text does, and No and None are
  /// rejected.
  static int ParseReal(const char* text, int flags, std::int32_t* out);

  /// Parses an amount of money into thousandths, or into hundredths if `hundredths` is not 0.
  ///
  /// @param none_allowed  if not 0, a text without a value counts as such, and is rejected;
  ///                      if 0, an empty text is an amount of 0
  static int ParseCurrency(const char* text, int none_allowed, std::int32_t* out,
                           const stCurrencyFormat* format, int hundredths);

  /// Parses a date field.
  ///
  /// @param result         receives `eParseDate`, `eParseInterval` for a signed amount counted from
  ///                       the field's date, or `eParseNone`
  /// @param none_clears    what a text without a value does: not 0 clears the date, 0 means today
  /// @param date           the field's date; changed in place, its time never touched
  /// @param text           what the user typed
  /// @param week_start     the numbering of the weekdays
  /// @param day_position   1: 3/5 is 5 March; 0: 3/5 is 3 May
  static int ParseDate(eParseResult* result, int none_clears, un_date_time* date, const char* text,
                       eCalWeekStart week_start, int day_position);

  /// Parses a time field, or an interval that moves its time within the day.
  ///
  /// @param result            receives `eParseTime`, `eParseInterval` or `eParseNone`
  /// @param subtract          if not 0, an unsigned interval is taken away, not added
  /// @param time              the field's time in minutes, or `OZDate::kNoTime`; changed in place
  /// @param reference         where unsigned intervals start, or `OZDate::kNoTime` for the field's
  ///                          own time. Signed ones start from the field's own time. A field
  ///                          without a time starts from the current one.
  /// @param text              what the user typed
  /// @param twenty_four_hour  if 0, a bare hour from 1 to 6 is in the afternoon
  static int ParseTime(eParseResult* result, int subtract, short* time, short reference,
                       const char* text, int twenty_four_hour);

  /// Parses an interval with fractions into tenths of a minute, unit 'M'. A text without a value
  /// sets `value` to 0 and leaves the rest of `out` as it was.
  static int ParseRealTI(ST_TIME_RETURN_VAL* out, const char* text);

  /// Parses a whole count of days ('D'), weeks ('W'), months ('M') or years ('Y'), 0 to 999. A text
  /// without a value, or a 0 without a unit, gives 0 with a blank as unit.
  static int ParseIntTI(const char* text, ST_TIME_RETURN_VAL* out);

  /// Parses a whole count of hours ('H') or minutes ('M'), 0 to 99. A text without a value, or a 0
  /// without a unit, gives 0 with a blank as unit.
  static int ParseHoursMinTI(const char* text, ST_TIME_RETURN_VAL* out);

  /// Parses a priority: a number from 0, the highest, to 100, or a letter from a to i with or
  /// without a digit (c5 is 35), or a word that begins with hi, lo or no. Other characters than
  /// letters and digits are dropped: 5.5 is 55. No priority is `kNoPriority`.
  ///
  /// @param zero_digit  if not 0, the digit behind a letter may be 0
  static int ParsePriority(short* out, const char* text, int zero_digit);

  /// Splits a text into runs of digits and runs of letters, in upper case, dropping the separators
  /// - , . : ; ' / and blank. Any other character joins the run it stands in. Separators at the
  /// start of the text are a token; separators behind the last of fewer than five tokens leave an
  /// empty one. Characters of a token past the 19th are cut off.
  ///
  /// @param tokens  receives the tokens; the others are made empty
  /// @return the index of the last token, 0 to 4. What stands behind the fifth is not looked at.
  static short seperateText(const char* text, char (*tokens)[kTokenSize]);

  /// Tells whether the separators that the last `seperateText` recorded fit a kind of text. Slot k
  /// holds what followed token k, and a slot without a separator always fits.
  ///
  /// @param mode  1 for a time (. : ; ' and blank), 2 for a date (, - / . and blank)
  /// @param last  the last slot that counts, from 0
  /// @return 0 if all of them fit, else 1
  static int divchk(short mode, short last);

  /// Finds the month that a token names, by three or more letters in a row from anywhere in its
  /// name.
  ///
  /// @param token  in upper case
  /// @return the month, 1 to 12; 13 if there is none
  static short fndmth(const char* token);

  /// Finds the weekday that a token names by its first letter, or by its first two for T and S. A
  /// month's name is no weekday.
  ///
  /// @param index   which token
  /// @param tokens  as `seperateText` made them
  /// @return with `eCalWeekStartMonday` 1 for Monday to 7 for Sunday, else 1 for Sunday to 7 for
  ///         Saturday; 8 if there is none
  static short fndwkdy(short index, const char (*tokens)[kTokenSize], eCalWeekStart week_start);
};
