// Weekdays, moving dates and the clock, compared with std::chrono and the C library.
#include <cstdint>
#include <type_traits>

#include "Bench.h"

namespace bench {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

struct DayAnswer {
  int weekday;  // 1 for Sunday
  int day_number;

  bool operator==(const DayAnswer&) const = default;
};

// The work of this file is so short that it is told as lambdas, which the loop inlines: a call by
// pointer would cost as much.
constexpr auto kOurDay = [](un_date_time date) -> DayAnswer {
  std::int32_t day_number = 0;
  const int weekday = OZDate::DayOfWeek(&date, &day_number, eCalWeekStartSunday, 1);
  return {weekday, day_number};
};

constexpr auto kChronoDay = [](year_month_day date) -> DayAnswer {
  using namespace std::chrono;
  constexpr sys_days kBase = 1984y / January / 1;
  const sys_days days = date;
  return {static_cast<int>(weekday(days).c_encoding()) + 1,
          static_cast<int>((days - kBase).count())};
};

// A date and how far to move it.
template <typename Date>
struct Move {
  Date date;
  int count;
};

template <char kUnit>
constexpr auto kOurForward = [](const Move<un_date_time>& move) {
  un_date_time date = move.date;
  OZDate::DateFwrd(&date, move.count, kUnit);
  return date;
};

template <char kUnit>
constexpr auto kOurBack = [](const Move<un_date_time>& move) {
  un_date_time date = move.date;
  OZDate::DateBack(&date, move.count, kUnit);
  return date;
};

// Months and years stick to the month's end, as ours do.
template <typename Unit>
constexpr auto kChronoMove = [](const Move<year_month_day>& move) -> year_month_day {
  if constexpr (std::is_same_v<Unit, std::chrono::days>) {
    return sys_days(move.date) + Unit(move.count);
  } else {
    const year_month_day moved = move.date + Unit(move.count);
    return moved.ok() ? moved : moved.year() / moved.month() / std::chrono::last;
  }
};

template <typename Unit, char kUnit>
void AddMoves(const std::string& name, int max_count) {
  Random random;
  // No move leaves the calendar, at whose ends ours would clamp.
  const auto moves = Inputs([&] {
    return Move<un_date_time>{random.Date(1800, 2050), random.Between(0, max_count)};
  });
  const auto to_chrono = [](int sign) {
    return [sign](const Move<un_date_time>& move) {
      return Move<year_month_day>{ToChrono(move.date), sign * move.count};
    };
  };
  const auto later = Converted(moves, kOurForward<kUnit>);
  Add("move forward by " + name, "ours", moves, kOurForward<kUnit>, later);
  Add("move forward by " + name, "chrono", Converted(moves, to_chrono(1)), kChronoMove<Unit>,
      later);
  const auto earlier = Converted(moves, kOurBack<kUnit>);
  Add("move back by " + name, "ours", moves, kOurBack<kUnit>, earlier);
  Add("move back by " + name, "chrono", Converted(moves, to_chrono(-1)), kChronoMove<Unit>,
      earlier);
}

// The C library's ways to the local time, in our form.
template <typename BreakDown>
un_date_time SystemClock(BreakDown break_down) {
  const std::time_t now = std::time(nullptr);
  std::tm fields = {};
  const std::tm* const local = break_down(&now, &fields);
  return un_date_time::Of(local->tm_year + 1900, local->tm_mon + 1, local->tm_mday,
                          local->tm_hour * 60 + local->tm_min);
}

void AddClock() {
  const auto nothing = Inputs([] { return 0; });
  // A run may see midnight pass, and so each answer is compared with the clock.
  const auto right = Inputs([] { return true; });
  const auto is_today = [](un_date_time answer) {
    const un_date_time now = OZDate::CurDateTime();
    return OZDate::DateCompare(&answer, &now) == 0;
  };
  Add(
      "read the clock", "ours", nothing, [](int) { return OZDate::CurDateTime(); }, right,
      is_today);
  Add(
      "read the clock", "localtime_r", nothing, [](int) { return SystemClock(localtime_r); }, right,
      is_today);
  const auto localtime_only = [](const std::time_t* now, std::tm*) { return std::localtime(now); };
  Add(
      "read the clock", "localtime", nothing, [=](int) { return SystemClock(localtime_only); },
      right, is_today);
}

}  // namespace

void AddCalendar() {
  Random random;
  const auto dates = Inputs([&] { return random.Date(1753, 2099); });
  const auto days = Converted(dates, kOurDay);
  Add("weekday and day number", "ours", dates, kOurDay, days);
  Add("weekday and day number", "chrono", Converted(dates, ToChrono), kChronoDay, days);

  AddMoves<std::chrono::days, 'D'>("days", 10000);
  AddMoves<std::chrono::months, 'M'>("months", 400);
  AddMoves<std::chrono::years, 'Y'>("years", 30);
  AddClock();
}

}  // namespace bench
