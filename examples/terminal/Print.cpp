#include "terminal/Print.h"

#include <cstdlib>
#include <iomanip>
#include <sstream>

#include "terminal/Text.h"

static std::string Digits(std::int64_t number, int width) {
  std::ostringstream out;
  out << std::setfill('0') << std::setw(width) << number;
  return out.str();
}

std::string IsoDate(const un_date_time& date) {
  return Digits(date.year, 4) + '-' + Digits(date.month, 2) + '-' + Digits(date.day, 2);
}

std::string ClockTime(int minutes) {
  return Digits(minutes / 60, 2) + ':' + Digits(minutes % 60, 2);
}

std::string Decimal(std::int32_t number, int decimals) {
  std::string text = Digits(number, decimals + 1);
  return text.insert(text.size() - static_cast<std::size_t>(decimals), 1, '.');
}

std::string Duration(std::int64_t tenths) {
  constexpr std::int64_t kMinute = 10;
  constexpr std::int64_t kHour = 60 * kMinute;
  constexpr std::int64_t kDay = 24 * kHour;
  const std::int64_t length = std::abs(tenths);
  const std::int64_t rest = length % kHour;
  std::string text = tenths < 0 ? "-" : "";
  if (length >= kDay) text += std::to_string(length / kDay) + " d ";
  if (length % kDay >= kHour) text += std::to_string(length % kDay / kHour) + " h ";
  if (rest != 0 || length == 0) text += std::to_string(rest / kMinute);
  if (rest % kMinute != 0) text += '.' + std::to_string(rest % kMinute);
  if (rest != 0 || length == 0) text += " min";
  return WithoutTrailingBlanks(text);
}

static std::string Format(const un_date_time& date, int style) {
  char text[24];  // holds every date
  OZDate::FormatDate(&date, text, sizeof text, style);
  return text;
}

std::string DisplayDate(const un_date_time& date) {
  constexpr int kWeekdayIfNear = 0;
  return Format(date, kWeekdayIfNear);
}

std::string FullDate(const un_date_time& date) {
  constexpr int kWithYear = 3;
  return Format(date, kWithYear);
}

std::string DisplayTime(int minutes, bool twenty_four_hour) {
  constexpr int kNoPad = 1;
  char text[8];  // holds every time
  OZDate::FormatTime(minutes, text, kNoPad, twenty_four_hour ? 1 : 0);
  return WithoutTrailingBlanks(text);
}
