// Dates and times as short texts for display.
#include <algorithm>
#include <array>
#include <cstring>

#include "calendar/DayCount.h"
#include "orzcore/calendar.h"
#include "platform/system.h"

namespace orzcore::calendar {
namespace {

constexpr std::size_t kNameLength = 3;
constexpr char kMonthName[][kNameLength + 1] = {"",    "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr char kDayName[][kNameLength + 1] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

constexpr int kFormWithWeekday = 1;
constexpr int kFormWithYear = 2;
constexpr int kFormWithBoth = 3;

constexpr int kNoLowerLimitYear = kFirstYear - 1;
constexpr int kNoUpperLimitYear = kLastYear + 1;

constexpr std::size_t kLongestDate = 15;  // Fri-Mar 15,2024
constexpr int kPatternSize = 50;
constexpr int kNoonHour = 12;
constexpr char kNone[] = "None";

// The two digits of each number from 0 to 99.
constexpr auto kTwoDigits = [] {
  std::array<char, 200> digits = {};
  for (unsigned i = 0; i < digits.size(); ++i) {
    const unsigned number = i / 2;
    digits[i] = static_cast<char>('0' + (i % 2 == 0 ? number / 10 : number % 10));
  }
  return digits;
}();

// The functions that write a part of a text return where the next part begins.
char* Write(char* end, char c) {
  *end = c;
  return end + 1;
}

char* WriteName(char* end, const char* name) {
  if (*name == '\0') return end;
  std::memcpy(end, name, kNameLength);
  return end + kNameLength;
}

char* WriteTwoDigits(char* end, unsigned number) {
  std::memcpy(end, &kTwoDigits[2 * std::size_t{number}], 2);
  return end + 2;
}

// Without a branch, since nobody can predict how many digits a day has. Writes two characters: what
// follows replaces the second one if it is not a digit.
char* WriteDay(char* end, unsigned day) {
  const bool two_digits = day >= 10;
  std::memcpy(end, &kTwoDigits[2 * std::size_t{two_digits ? day : 10 * day}], 2);
  return end + 1 + (two_digits ? 1 : 0);
}

char* WriteYear(char* end, unsigned year) {
  return WriteTwoDigits(WriteTwoDigits(end, year / 100), year % 100);
}

// Writes the text of a date without a terminator.
char* WriteDate(char* end, un_date_time date, int form, bool day_first) {
  const char* const month_name = kMonthName[date.month];
  if (form != kFormWithYear) {
    const int weekday = WeekdayOfDayNumber(DayNumber(date));
    end = WriteName(end, kDayName[weekday - 1]);
    end = Write(end, '-');
  } else if (day_first && date.day < 10) {
    end = Write(end, ' ');  // aligns the dates of a column
  }
  if (day_first) {
    end = WriteDay(end, date.day);
    end = Write(end, ' ');
    end = WriteName(end, month_name);
  } else {
    end = WriteName(end, month_name);
    end = Write(end, ' ');
    end = WriteDay(end, date.day);
  }
  if (form == kFormWithWeekday) return end;
  end = Write(end, day_first ? ' ' : ',');
  return WriteYear(end, date.year);
}

// The length of a text without the separators at its end. A cut may leave some there.
std::size_t LengthWithoutSeparators(const char* text, std::size_t length) {
  while (length > 0 && (text[length - 1] == ' ' || text[length - 1] == ',')) --length;
  return length;
}

void CopyAndCut(const char* text, char* buffer, int size) {
  const int length = std::min(static_cast<int>(std::strlen(text)), size - 1);
  std::memcpy(buffer, text, static_cast<std::size_t>(length));
  buffer[length] = '\0';
  buffer[size - 1] = '\0';
}

// The text of a value that is not in the calendar; null for a date of the calendar.
const char* TextOutsideCalendar(un_date_time date) {
  const int year = static_cast<int>(date.year);
  if (year < kNoLowerLimitYear || year > kNoUpperLimitYear || date.month > kMonthsPerYear) {
    return kNone;
  }
  if (year == kNoLowerLimitYear) return "No Lower Limit";
  if (year == kNoUpperLimitYear) return "No Upper Limit";
  return nullptr;
}

bool IsDayFirst() {
  char pattern[kPatternSize] = {};
  platform::GetProfileStringA("Intl", "sShortDate", "M/d/yy", pattern, kPatternSize);
  for (const char letter : pattern) {
    if (letter == 'd' || letter == 'D') return true;
    if (letter == 'm' || letter == 'M' || letter == '\0') break;
  }
  return false;
}

bool Is24HourSetting() {
  const int setting = platform::GetProfileIntA("Intl", "iTime", 0);
  return setting != 0 && setting <= 1;
}

// Writes the text of a time of day with its terminator.
void WriteTime(char* end, int minutes, bool clock_24hour, bool pad) {
  int hour = minutes / kMinutesPerHour;
  const char* suffix = "  ";
  if (!clock_24hour) {
    suffix = minutes == OZDate::kEndOfDay ? "M " : hour >= kNoonHour ? "pm" : "am";
    hour = (hour + kNoonHour - 1) % kNoonHour + 1;
  }
  if (hour >= 10 || clock_24hour) {
    end = WriteTwoDigits(end, static_cast<unsigned>(hour));
  } else {
    if (pad) end = Write(end, ' ');
    end = Write(end, static_cast<char>('0' + hour));
  }
  end = Write(end, ':');
  end = WriteTwoDigits(end, static_cast<unsigned>(minutes % kMinutesPerHour));
  std::memcpy(end, suffix, sizeof("  "));
}

}  // namespace
}  // namespace orzcore::calendar

namespace calendar = orzcore::calendar;

void OZDate::FormatDate(const un_date_time* date, char* buffer, int size, int form) {
  if (size <= 0) return;
  if (const char* const text = calendar::TextOutsideCalendar(*date)) {
    calendar::CopyAndCut(text, buffer, size);
    return;
  }
  const bool day_first = calendar::IsDayFirst();
  if (form >= calendar::kFormWithWeekday && form <= calendar::kFormWithBoth) {
    UpdateSystemDate();  // callers rely on `mNow` after any form
  } else {
    short weekday = 0;
    form = Dow90(date, &weekday, eCalWeekStartSunday) == 0 ? calendar::kFormWithWeekday
                                                           : calendar::kFormWithYear;
  }
  const auto room = static_cast<std::size_t>(size) - 1;
  char uncut[calendar::kLongestDate];
  char* const text = room >= calendar::kLongestDate ? buffer : uncut;
  const char* const end = calendar::WriteDate(text, *date, form, day_first);
  auto length = static_cast<std::size_t>(end - text);
  if (text == uncut) {
    length = std::min(length, room);
    std::memcpy(buffer, uncut, length);
  }
  buffer[calendar::LengthWithoutSeparators(buffer, length)] = '\0';
  buffer[room] = '\0';
}

void OZDate::FormatTime(int minutes, char* buffer, int no_pad, int force_24hour) {
  const bool clock_24hour = force_24hour != 0 || calendar::Is24HourSetting();
  if (minutes >= 0 && minutes <= kEndOfDay) {
    calendar::WriteTime(buffer, minutes, clock_24hour, no_pad == 0);
  } else {
    std::memcpy(buffer, calendar::kNone, sizeof(calendar::kNone));
  }
}
