// Weekdays, distances in days, alternating weeks, working days and the end of an event.
#include "calendar/DayCount.h"
#include "orzcore/calendar.h"

namespace calendar = orzcore::calendar;

short OZDate::DayOfWeek(const un_date_time* date, std::int32_t* day_number,
                        eCalWeekStart week_start, int calendar) {
  *day_number = calendar::DayNumber(calendar::Load(*date));
  const int weekday = calendar::WeekdayOfDayNumber(*day_number);
  if (week_start != eCalWeekStartMonday || calendar != 0) return static_cast<short>(weekday);
  return static_cast<short>(weekday == 1 ? calendar::kDaysPerWeek : weekday - 1);
}

short OZDate::Dow90(const un_date_time* date, short* weekday, eCalWeekStart week_start) {
  const std::int32_t today = calendar::DayNumber(CurDateTime());
  std::int32_t day_number = 0;
  *weekday = DayOfWeek(date, &day_number, week_start, 1);
  const std::int32_t days_ago = today - day_number;
  if (days_ago > kNearDays) return 1;
  return days_ago < -kNearDays ? short{-1} : short{0};
}

int OZDate::IsWeekOdd(const un_date_time* date, eCalWeekStart /*week_start*/) {
  return calendar::DayNumber(*date) / calendar::kDaysPerWeek % 2 != 0 ? 1 : 0;
}

int OZDate::IsWeekend(const un_date_time* date, eCalWeekStart /*week_start*/, unsigned char first,
                      unsigned char last) {
  const int day = calendar::WeekdayOfDayNumber(calendar::DayNumber(*date)) - 1;
  const bool working = first <= last ? first <= day && day <= last : first <= day || day <= last;
  return working ? 0 : 1;
}

short OZDate::GetEndTime(short start, const stEventLen& length) {
  if (start > kEndOfDay) return 0;
  if (start < 0 || length.minutes > kEndOfDay) return kNoTime;
  const int end = start + length.minutes;
  return static_cast<short>(end > kEndOfDay ? end - kEndOfDay : end);
}
