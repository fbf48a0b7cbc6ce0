// Weekdays, moving dates and the clock, compared with std::chrono and the C library.
#include <array>
#include <cstdint>
#include <type_traits>

#include "Bench.h"

namespace orzcore::bench {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

using DayAnswer = std::array<int, 2>;  // the weekday, 1 for Sunday, and the day number

// The work of this file is so short that a call through a pointer would cost as much. It is written
// as lambdas, which the loop inlines.
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

template <auto kMoveDate, char kUnit>
constexpr auto kOurMove = [](const Move<un_date_time>& move) {
  un_date_time date = move.date;
  kMoveDate(&date, move.count, kUnit);
  return date;
};

// A day past the end of its month becomes the last day, as in ours.
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
  // No move leaves the calendar: at its ends ours would stop, and the peer would not.
  const auto moves = Inputs([&] {
    return Move<un_date_time>{random.Date(1800, 2050), random.Between(0, max_count)};
  });
  const auto add = [&](const std::string& work, auto ours, int sign) {
    const auto to_chrono = [=](const Move<un_date_time>& move) {
      return Move<year_month_day>{ToChrono(move.date), sign * move.count};
    };
    const auto moved = Converted(moves, ours);
    Add(work, "ours", moves, ours, moved);
    Add(work, "chrono", Converted(moves, to_chrono), kChronoMove<Unit>, moved);
  };
  add("move forward by " + name, kOurMove<OZDate::DateFwrd, kUnit>, 1);
  add("move back by " + name, kOurMove<OZDate::DateBack, kUnit>, -1);
}

// The local time as the C library reads it, in our form.
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
  // Midnight may pass during a run, so each answer is compared with the clock.
  const auto right = Inputs([] { return true; });
  const auto is_today = [](un_date_time answer) {
    const un_date_time now = OZDate::CurDateTime();
    return OZDate::DateCompare(&answer, &now) == 0;
  };
  const auto add = [&](const char* who, auto read) {
    Add("read the clock", who, nothing, read, right, is_today);
  };
  const auto localtime_only = [](const std::time_t* now, std::tm*) { return std::localtime(now); };
  add("ours", [](int) { return OZDate::CurDateTime(); });
  add("localtime_r", [](int) { return SystemClock(localtime_r); });
  add("localtime", [=](int) { return SystemClock(localtime_only); });
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

}  // namespace orzcore::bench
