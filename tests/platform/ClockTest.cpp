#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <string>

#include "orzcore/platform.h"

namespace {

// Sets the zone of the process for one test.
class ZoneGuard {
 public:
  explicit ZoneGuard(const char* zone) { Set(zone); }
  ~ZoneGuard() {
    unsetenv("TZ");
    tzset();
  }
  static void Set(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
};

TEST(Clock, FollowsTheZoneThatTheProgramSets) {
  const ZoneGuard guard("UTC0");
  OZHost host;
  for (const char* zone : {"UTC0", "AAA-5:30", "AAA11", "BBB-5:30", "LMT0:19:32", "EST5EDT"}) {
    SCOPED_TRACE(zone);
    ZoneGuard::Set(zone);
    std::tm expected = {}, read = {};
    std::time_t before = 0;
    do {  // again if the second changed in between
      before = std::time(nullptr);
      read = host.LocalTime();
    } while (std::time(nullptr) != before);
    localtime_r(&before, &expected);
    const auto fields = [](const std::tm& t) {
      return std::array{t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
    };
    EXPECT_EQ(fields(read), fields(expected));
    EXPECT_EQ(std::mktime(&read), before);
  }
}

TEST(Clock, TicksForward) {
  OZHost host;
  const std::uint32_t ticks = host.GetTickCount();
  EXPECT_LT(host.GetTickCount() - ticks, 60000U);
  const std::uint32_t clock = host.Clock();
  std::uint32_t later = clock;
  for (int i = 0; i < 1000000 && later == clock; ++i) later = host.Clock();
  EXPECT_NE(later, clock);
}

TEST(Host, IsReplacedAndBroughtBack) {
  OZHost mine;
  OZHost* const standard = OZHost::Install(&mine);
  EXPECT_EQ(OZHost::Install(nullptr), &mine);
  EXPECT_EQ(OZHost::Install(standard), standard);
  EXPECT_EQ(OZHost::Install(nullptr), standard);
}

TEST(Host, HasNoBoxToShow) {
  OZHost host;
  testing::internal::CaptureStderr();
  EXPECT_EQ(host.MessageBoxA(host.GetActiveWindow(), "The disk is full.", "Orzola", 0x30), 0);
  EXPECT_EQ(host.MessageBoxA(nullptr, "No caption.", nullptr, 0x30), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Orzola: The disk is full.\nNo caption.\n");
}

}  // namespace
