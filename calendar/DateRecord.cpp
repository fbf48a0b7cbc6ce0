// The packed date: limits, clock, leap years, lengths of months, comparisons.
#include "calendar/DayCount.h"
#include "orzcore/calendar.h"
#include "platform/system.h"

namespace orzcore::calendar {
namespace {

constexpr int kFirstTmYear = 1900;  // a `tm_year` of 0

short Compare(std::uint32_t a, std::uint32_t b) {
  return static_cast<short>(a < b ? -1 : a > b ? 1 : 0);
}

}  // namespace
}  // namespace orzcore::calendar

namespace calendar = orzcore::calendar;
namespace platform = orzcore::platform;

constinit const un_date_time OZDate::BegOfTime = un_date_time::Of(1753, 1, 1, 0);
constinit const un_date_time OZDate::EndOfTime = un_date_time::Of(2099, 12, 31, kEndOfDay);
constinit un_date_time OZDate::mNow = {};
constinit const unsigned short OZDate::mMonth[12] = {31, 28, 31, 30, 31, 30,
                                                     31, 31, 30, 31, 30, 31};

void OZDate::UpdateSystemDate() {
  const std::tm now = platform::LocalTime();
  mNow = un_date_time::Of(now.tm_year + calendar::kFirstTmYear, now.tm_mon + 1, now.tm_mday,
                          now.tm_hour * calendar::kMinutesPerHour + now.tm_min);
}

un_date_time OZDate::CurDateTime() {
  UpdateSystemDate();
  return mNow;
}

int OZDate::LeapYear(unsigned short year) { return calendar::IsLeapYear(year) ? 1 : 0; }

unsigned short OZDate::DaysInMonth(unsigned short month, unsigned short year) {
  constexpr unsigned kFebruaryIndex = 1;
  const unsigned index = month % 12U;
  const int leap_day = index == kFebruaryIndex ? LeapYear(year) : 0;
  return static_cast<unsigned short>(mMonth[index] + leap_day);
}

short OZDate::DateCompare(const un_date_time* a, const un_date_time* b) {
  return calendar::Compare(a->Number() & ~calendar::kTimeMask, b->Number() & ~calendar::kTimeMask);
}

short OZDate::DateTimeCompare(const un_date_time* a, const un_date_time* b) {
  return calendar::Compare(a->Number(), b->Number());
}
