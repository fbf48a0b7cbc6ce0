// A host whose clock and regional settings a test sets.
#pragma once

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

#include "orzcore/calendar.h"
#include "orzcore/platform.h"

/// Installed from construction to destruction.
class FakeHost : public OZHost {
 public:
  FakeHost() : before_(Install(this)) {}
  ~FakeHost() override { Install(before_); }
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  void SetNow(int year, int month, int day, int hour = 0, int minute = 0) {
    now_ = {};
    now_.tm_year = year - 1900;
    now_.tm_mon = month - 1;
    now_.tm_mday = day;
    now_.tm_hour = hour;
    now_.tm_min = minute;
    now_.tm_sec = 59;
  }

  std::tm LocalTime() override {
    ++clock_reads;
    return now_;
  }

  int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                        int size) override {
    ++setting_reads;
    const bool known = short_date && std::string(section) + "/" + key == "Intl/sShortDate";
    const std::string text = known ? *short_date : fallback;
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    return static_cast<int>(count);
  }

  int GetProfileIntA(const char* section, const char* key, int fallback) override {
    ++setting_reads;
    const bool known = clock_24hour && std::string(section) + "/" + key == "Intl/iTime";
    return known ? *clock_24hour : fallback;
  }

  int clock_reads = 0;
  int setting_reads = 0;
  std::optional<std::string> short_date;  // none: no entry
  std::optional<int> clock_24hour;

 private:
  OZHost* before_;
  std::tm now_ = {};
};
