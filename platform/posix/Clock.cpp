// The system's clocks.
#include <ctime>

#include "orzcore/platform.h"
#include "platform/RefreshTimer.h"

namespace orzcore::platform {
namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;

// A local time that was broken down once, for all readings of its minute.
struct Minute {
  RefreshTimer timer;  // starts with the minute
  std::tm fields = {};
};

// Apart, so that the readings that find their minute kept need no room for it.
[[gnu::noinline]] void BreakDown(time_t now, Minute& minute) {
  tzset();  // `localtime_r` alone would keep the zone that the process started with
  localtime_r(&now, &minute.fields);
  minute.timer.Restart(now - minute.fields.tm_sec);
}

std::uint64_t MonotonicNanoseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * kNanosecondsPerSecond +
         static_cast<std::uint64_t>(now.tv_nsec);
}

}  // namespace
}  // namespace orzcore::platform

namespace platform = orzcore::platform;

// Breaking a time down costs fifty times as much as reading the clock, and looking at the zone
// costs a file stat, so both are done once for each minute.
std::tm OZHost::LocalTime() {
  constinit static platform::Minute minute;
  const time_t now = time(nullptr);
  if (minute.timer.IsDue(now)) platform::BreakDown(now, minute);
  std::tm fields = minute.fields;
  fields.tm_sec = static_cast<int>(now - minute.timer.Start());
  return fields;
}

std::uint32_t OZHost::GetTickCount() {
  return static_cast<std::uint32_t>(platform::MonotonicNanoseconds() /
                                    platform::kNanosecondsPerMillisecond);
}

std::uint32_t OZHost::Clock() {
  return static_cast<std::uint32_t>(platform::MonotonicNanoseconds());
}
