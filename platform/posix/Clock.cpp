// The system's clocks.
#include <ctime>

#include "orzcore/platform.h"

namespace {

constexpr int kSecondsPerMinute = 60;
constexpr std::uint64_t kMillisecondsPerSecond = 1000;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;
constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;

// The zone in force, as `tzset` leaves it. Its names are interned, so the pointers tell zones
// apart.
struct Zone {
  const char* standard_name = nullptr;
  const char* daylight_name = nullptr;
  long seconds_west = 0;

  static Zone Current() { return {tzname[0], tzname[1], timezone}; }
  bool operator==(const Zone&) const = default;
};

// A local minute that was broken down once, for all readings that fall into it.
struct Minute {
  time_t start = 0;
  Zone zone;
  std::tm fields = {};

  bool Holds(time_t now) const {
    return now >= start && now - start < kSecondsPerMinute && zone == Zone::Current();
  }
};

// Apart, so that the readings that find their minute kept need no room for it.
[[gnu::noinline]] Minute BreakDown(time_t now) {
  Minute minute;
  tzset();  // `localtime_r` alone would keep the zone that the process started with
  localtime_r(&now, &minute.fields);
  minute.start = now - minute.fields.tm_sec;
  minute.zone = Zone::Current();
  return minute;
}

timespec Monotonic() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now;
}

}  // namespace

// Breaking a time down costs some fifty times as much as reading the clock, and looking at the zone
// costs a file stat, so both are done once for each minute.
std::tm OZHost::LocalTime() {
  static Minute minute;
  const time_t now = time(nullptr);
  if (!minute.Holds(now)) minute = BreakDown(now);
  std::tm fields = minute.fields;
  fields.tm_sec = static_cast<int>(now - minute.start);
  return fields;
}

std::uint32_t OZHost::GetTickCount() {
  const timespec now = Monotonic();
  return static_cast<std::uint32_t>(
      static_cast<std::uint64_t>(now.tv_sec) * kMillisecondsPerSecond +
      static_cast<std::uint64_t>(now.tv_nsec) / kNanosecondsPerMillisecond);
}

std::uint32_t OZHost::Clock() {
  const timespec now = Monotonic();
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * kNanosecondsPerSecond +
                                    static_cast<std::uint64_t>(now.tv_nsec));
}
