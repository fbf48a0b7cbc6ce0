// Dates and times as short texts for display.
#include <algorithm>
#include <cstring>

#include "calendar/DayCount.h"
#include "orzcore/calendar.h"
#include "platform/platform.h"

namespace {

constexpr int kNameLength = 3;  // letters of a month's or weekday's name that are shown
constexpr const char* kMonthName[] = {"",    "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char* kDayName[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};

constexpr int kFormWeekday = 1;
constexpr int kFormYear = 2;
constexpr int kFormBoth = 3;

constexpr int kNoLowerLimit = calendar::kFirstYear - 1;
constexpr int kNoUpperLimit = calendar::kLastYear + 1;

constexpr int kPatternSize = 50;
constexpr int kMinutesPerHour = 60;
constexpr int kNoon = 12;
constexpr char kNone[] = "None";

// A date's text under construction in the caller's buffer, which may cut it.
class DateText {
 public:
  DateText(char* buffer, int size) : buffer_(buffer), room_(size - 1) {}

  void Append(char c) {
    if (length_ < room_) buffer_[length_++] = c;
  }
  void AppendName(const char* name) {
    for (int i = 0; i < kNameLength && name[i] != '\0'; ++i) Append(name[i]);
  }
  void AppendDay(int day) {
    if (day >= 10) Append(static_cast<char>('0' + day / 10));
    Append(static_cast<char>('0' + day % 10));
  }
  void AppendYear(int year) {
    for (const int place : {1000, 100, 10, 1}) {
      Append(static_cast<char>('0' + year / place % 10));
    }
  }

  // Drops separators where the buffer cut the text, and terminates it.
  void Finish() {
    while (length_ > 0 && (buffer_[length_ - 1] == ' ' || buffer_[length_ - 1] == ',')) --length_;
    buffer_[length_] = '\0';
    buffer_[room_] = '\0';
  }

 private:
  char* buffer_;
  int room_;
  int length_ = 0;
};

void CopyMarker(const char* marker, char* buffer, int size) {
  const int length = std::min(static_cast<int>(std::strlen(marker)), size - 1);
  std::memcpy(buffer, marker, static_cast<std::size_t>(length));
  buffer[length] = '\0';
  buffer[size - 1] = '\0';
}

// The text of a value that is no date of the calendar, or null.
const char* Marker(un_date_time date) {
  const int year = static_cast<int>(date.year);
  if (year < kNoLowerLimit || year > kNoUpperLimit || date.month > calendar::kMonthsPerYear) {
    return kNone;
  }
  if (year == kNoLowerLimit) return "No Lower Limit";
  if (year == kNoUpperLimit) return "No Upper Limit";
  return nullptr;
}

bool IsDayFirst() {
  char pattern[kPatternSize] = {};
  platform::GetProfileStringA("Intl", "sShortDate", "M/d/yy", pattern, kPatternSize);
  const char* const first = std::strpbrk(pattern, "dDmM");
  return first != nullptr && (*first == 'd' || *first == 'D');
}

bool Is24HourSetting() {
  const int setting = platform::GetProfileIntA("Intl", "iTime", 0);
  return setting != 0 && setting <= 1;
}

}  // namespace

void OZDate::FormatDate(const un_date_time* date, char* buffer, int size, int form) {
  if (size <= 0) return;
  if (const char* const marker = Marker(*date)) {
    CopyMarker(marker, buffer, size);
    return;
  }
  const bool day_first = IsDayFirst();
  const int day = static_cast<int>(date->day);
  const char* const month_name = kMonthName[date->month];

  short weekday = 0;
  const bool near_today = Dow90(date, &weekday, eCalWeekStartSunday) == 0;
  if (form < kFormWeekday || form > kFormBoth) form = near_today ? kFormWeekday : kFormYear;

  DateText text(buffer, size);
  if (form != kFormYear) {
    text.AppendName(kDayName[weekday - 1]);
    text.Append('-');
  } else if (day_first && day < 10) {
    text.Append(' ');  // so that the days of a column line up
  }
  if (day_first) {
    text.AppendDay(day);
    text.Append(' ');
    text.AppendName(month_name);
  } else {
    text.AppendName(month_name);
    text.Append(' ');
    text.AppendDay(day);
  }
  if (form != kFormWeekday) {
    text.Append(day_first ? ' ' : ',');
    text.AppendYear(static_cast<int>(date->year));
  }
  text.Finish();
}

void OZDate::FormatTime(int minutes, char* buffer, int no_pad, int force_24hour) {
  const bool clock_24hour = force_24hour != 0 || Is24HourSetting();
  if (minutes < 0 || minutes > kEndOfDay) {
    std::memcpy(buffer, kNone, sizeof(kNone));
    return;
  }
  int hour = minutes / kMinutesPerHour;
  const int minute = minutes % kMinutesPerHour;
  const char* suffix = "  ";
  if (!clock_24hour) {
    suffix = minutes == kEndOfDay ? "M " : hour >= kNoon ? "pm" : "am";
    hour = (hour + kNoon - 1) % kNoon + 1;
  }
  char* end = buffer;
  if (hour >= 10) {
    *end++ = static_cast<char>('0' + hour / 10);
  } else if (clock_24hour) {
    *end++ = '0';
  } else if (no_pad == 0) {
    *end++ = ' ';
  }
  *end++ = static_cast<char>('0' + hour % 10);
  *end++ = ':';
  *end++ = static_cast<char>('0' + minute / 10);
  *end++ = static_cast<char>('0' + minute % 10);
  *end++ = suffix[0];
  *end++ = suffix[1];
  *end = '\0';
}
