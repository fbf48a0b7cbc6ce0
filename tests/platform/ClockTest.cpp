#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "orzcore/platform.h"

namespace {
constexpr std::time_t kMinute = 1700006400;  // 0:00 on a day of 2023, in UTC
constinit std::time_t gNow = 0;              // the time that the library reads; 0: the real time
}  // namespace

// The program's own `time`: the library calls this one instead of that of the C library.
extern "C" std::time_t time(std::time_t* /*now*/) noexcept {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return gNow != 0 ? gNow : now.tv_sec;
}

namespace {

struct SystemClock : testing::Test {
  ~SystemClock() override {
    gNow = 0;
    for (const char* const name : {"TZ", "LOCPATH", "LC_ALL"}) unsetenv(name);
    OZHost::Install(nullptr);
  }
  OZHost host;
};

TEST_F(SystemClock, UsesTheTimeZoneOfTheUser) {
  for (const char* zone : {"UTC0", "AAA-5:30", "AAA11", "BBB-5:30", "LMT0:19:32", "EST5EDT"}) {
    setenv("TZ", zone, 1);
    OZHost::Install(nullptr);
    for (gNow = kMinute; gNow <= kMinute + 60; ++gNow) {
      const std::tm read = host.LocalTime();
      std::tm normal = read;
      EXPECT_EQ(std::mktime(&normal), gNow) << zone;
      EXPECT_EQ(normal.tm_sec, read.tm_sec) << zone;
    }
  }
}

TEST_F(SystemClock, NoticesChangesAfterAMinuteOrAnInstallation) {
  setenv("LOCPATH", LOCALE_DIRECTORY, 1);
  const struct {
    bool changed;  // the environment variables have other values
    bool installs;
    int second;
    bool noticed;
  } kReadings[] = {{false, true, 0, false},  {true, false, 59, false}, {true, false, 60, true},
                   {false, false, 61, true}, {false, false, 0, false}, {true, true, 1, true}};
  for (const auto& reading : kReadings) {
    setenv("TZ", reading.changed ? "AAA-2" : "UTC0", 1);
    setenv("LC_ALL", reading.changed ? "de_DE.UTF-8" : "en_US.UTF-8", 1);
    if (reading.installs) OZHost::Install(nullptr);
    gNow = kMinute + reading.second;
    const int is_24hour = host.GetProfileIntA("Intl", "iTime", -1);
    if (is_24hour == -1) GTEST_SKIP() << "the locales could not be made on this machine";
    EXPECT_EQ(is_24hour, reading.noticed ? 1 : 0) << reading.second;
    EXPECT_EQ(host.LocalTime().tm_hour, reading.noticed ? 2 : 0) << reading.second;
  }
}

std::uint64_t Nanoseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
         static_cast<std::uint64_t>(now.tv_nsec);
}

TEST_F(SystemClock, TicksForward) {
  const std::uint64_t start = Nanoseconds();
  const std::uint32_t clock = host.Clock() - static_cast<std::uint32_t>(start);
  const std::uint32_t ticks = host.GetTickCount() - static_cast<std::uint32_t>(start / 1'000'000);
  const std::uint64_t end = Nanoseconds();
  EXPECT_LE(clock, end - start);
  EXPECT_LE(ticks, end / 1'000'000 - start / 1'000'000);
}

TEST(Host, CanBeReplacedAndRestored) {
  OZHost mine;
  OZHost* const standard = OZHost::Install(&mine);
  EXPECT_EQ(OZHost::Install(nullptr), &mine);
  EXPECT_EQ(OZHost::Install(standard), standard);
  EXPECT_EQ(OZHost::Install(nullptr), standard);
}

TEST(Host, WritesAlertsToStandardError) {
  OZHost host;
  testing::internal::CaptureStderr();
  EXPECT_EQ(host.MessageBoxA(host.GetActiveWindow(), "The disk is full.", "Orzola", 0x30), 0);
  EXPECT_EQ(host.MessageBoxA(nullptr, "No caption.", nullptr, 0x30), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Orzola: The disk is full.\nNo caption.\n");
}

}  // namespace
