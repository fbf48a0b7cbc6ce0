#include "terminal/MonthGrid.h"

#include "terminal/Text.h"

namespace {

constexpr int kWeek = 7;
constexpr std::size_t kCell = 5;  // columns of a day

std::string Cell(unsigned int day, bool today, bool marked, bool colored) {
  const std::string number = std::string(day < 10 ? " " : "") + std::to_string(day);
  const std::string mark = marked ? "*" : " ";
  std::string cell = today ? "[" + number + "]" + mark : " " + number + mark + " ";
  if (!colored || !(today || marked)) return cell;
  return (today ? "\033[7m" : "\033[36m") + cell + "\033[0m";
}

}  // namespace

std::string DrawMonth(const un_date_time& date, const std::set<unsigned int>& marked,
                      eCalWeekStart week_start, bool colored) {
  constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
  constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                     "May",       "June",     "July",     "August",
                                     "September", "October",  "November", "December"};
  const un_date_time today = OZDate::CurDateTime();
  un_date_time day = date;
  day.day = 1;
  std::int32_t day_number = 0;
  int column = OZDate::DayOfWeek(&day, &day_number, week_start, 0) - 1;
  const unsigned int days = OZDate::DaysInMonth(static_cast<unsigned short>(date.month - 1),
                                                static_cast<unsigned short>(date.year));

  std::string grid = kMonths[date.month - 1] + (' ' + std::to_string(date.year)) + '\n';
  for (int weekday = 0; weekday < kWeek; ++weekday) {
    grid += ' ';
    grid += kWeekdays[weekday + (week_start == eCalWeekStartMonday ? 1 : 0)];
    grid += weekday + 1 < kWeek ? ' ' : '\n';
  }
  std::string line(static_cast<std::size_t>(column) * kCell, ' ');
  for (unsigned int number = 1; number <= days; ++number) {
    day.day = number & 0x1F;
    line += Cell(number, OZDate::DateCompare(&day, &today) == 0, marked.contains(number), colored);
    if (++column % kWeek != 0 && number != days) continue;
    grid += WithoutTrailingBlanks(line) + '\n';
    line.clear();
  }
  return grid;
}
