// The default host: real message boxes, the system's clocks and the user's settings.
#include <chrono>

#include "orzcore/platform.h"
#include "platform/windows/Native.h"

int OZHost::MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) {
  return ::MessageBoxA(static_cast<HWND>(owner), text, caption, style);
}

void OZHost::MessageBeep(unsigned int type) { ::MessageBeep(type); }

void* OZHost::GetActiveWindow() { return ::GetActiveWindow(); }

std::tm OZHost::LocalTime() {
  constexpr int kFirstYear = 1900;  // `std::tm` counts years from it
  SYSTEMTIME now = {};
  ::GetLocalTime(&now);
  TIME_ZONE_INFORMATION zone = {};
  const std::chrono::year year(now.wYear);
  const std::chrono::sys_days first_day(year / 1 / 1);
  const std::chrono::sys_days today(year / now.wMonth / now.wDay);
  std::tm fields = {};
  fields.tm_sec = now.wSecond;
  fields.tm_min = now.wMinute;
  fields.tm_hour = now.wHour;
  fields.tm_mday = now.wDay;
  fields.tm_mon = now.wMonth - 1;
  fields.tm_year = now.wYear - kFirstYear;
  fields.tm_wday = now.wDayOfWeek;
  fields.tm_yday = static_cast<int>((today - first_day).count());
  fields.tm_isdst = ::GetTimeZoneInformation(&zone) == TIME_ZONE_ID_DAYLIGHT ? 1 : 0;
  return fields;
}

std::uint32_t OZHost::GetTickCount() { return ::GetTickCount(); }

std::uint32_t OZHost::Clock() {
  LARGE_INTEGER count = {};
  ::QueryPerformanceCounter(&count);
  return count.u.LowPart;
}

int OZHost::GetProfileStringA(const char* section, const char* key, const char* fallback,
                              char* buffer, int size) {
  if (size <= 0) return 0;
  const auto count = static_cast<DWORD>(size);
  return static_cast<int>(::GetProfileStringA(section, key, fallback, buffer, count));
}

int OZHost::GetProfileIntA(const char* section, const char* key, int fallback) {
  return static_cast<int>(::GetProfileIntA(section, key, fallback));
}
