#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
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
  constexpr char kUs[] = "en_US.UTF-8", kGerman[] = "de_DE.UTF-8", kMissing[] = "yy_YY.UTF-8";
  constexpr int kNone = -1;
  const struct {
    const char* locale;  // the environment variables have other values if it is not kUs
    bool installs;
    int second;
    int hour, is_24hour;
  } kReadings[] = {
      {kUs, true, 0, 0, 0},          {kGerman, false, 59, 0, 0},    {kGerman, false, 60, 2, 1},
      {kUs, false, 61, 2, 1},        {kUs, false, 0, 0, 0},         {kGerman, true, 1, 2, 1},
      {kMissing, true, 2, 2, kNone}, {kGerman, false, 3, 2, kNone}, {kMissing, true, 4, 2, kNone},
      {kGerman, false, 5, 2, kNone}, {kGerman, true, 6, 2, 1}};
  setenv("LOCPATH", LOCALE_DIRECTORY, 1);
  for (const auto& reading : kReadings) {
    SCOPED_TRACE(testing::Message() << "row " << &reading - kReadings);
    setenv("TZ", reading.locale == kUs ? "UTC0" : "AAA-2", 1);
    setenv("LC_ALL", reading.locale, 1);
    if (reading.installs) OZHost::Install(nullptr);
    gNow = kMinute + reading.second;
    errno = ENOMEM;  // of an earlier call
    const int is_24hour = host.GetProfileIntA("Intl", "iTime", kNone);
    if (&reading == kReadings && is_24hour == kNone)
      GTEST_SKIP() << "the locales could not be made";
    EXPECT_EQ(is_24hour, reading.is_24hour);
    EXPECT_EQ(host.LocalTime().tm_hour, reading.hour);
  }
}

// Many readings: in a short one, a clock that counts its seconds wrongly shows.
TEST_F(SystemClock, TicksForward) {
  const auto nanoseconds = [] {
    const std::chrono::nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(now.count());
  };
  for (int i = 0; i < 1000; ++i) {
    const std::uint64_t start = nanoseconds();
    const std::uint32_t clock = host.Clock() - static_cast<std::uint32_t>(start);
    const std::uint32_t ticks = host.GetTickCount() - static_cast<std::uint32_t>(start / 1'000'000);
    const std::uint64_t end = nanoseconds();
    EXPECT_LE(clock, end - start);
    EXPECT_LE(ticks, end / 1'000'000 - start / 1'000'000);
  }
}

TEST(Host, IsReturnedByTheNextInstallation) {
  OZHost mine;
  OZHost* const standard = OZHost::Install(&mine);
  EXPECT_EQ(OZHost::Install(nullptr), &mine);
  EXPECT_EQ(OZHost::Install(nullptr), standard);
}

TEST(Host, WritesAlertsToStandardErrorAndBeepsOnlyInATerminal) {
  OZHost host;
  testing::internal::CaptureStderr();
  EXPECT_EQ(host.MessageBoxA(host.GetActiveWindow(), "The disk is full.", "Orzola", 0x30), 0);
  EXPECT_EQ(host.MessageBoxA(nullptr, "No caption.", nullptr, 0x30), 0);
  host.MessageBeep(0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Orzola: The disk is full.\nNo caption.\n");
}

}  // namespace
