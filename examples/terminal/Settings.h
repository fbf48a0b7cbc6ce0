// The user's order of day and month, clock and first weekday.
#pragma once

#include "orzcore/calendar.h"
#include "orzcore/platform.h"
#include "terminal/Options.h"

/// The host's settings, with the options that override them. During its lifetime, the library reads
/// the settings here, so it shows dates and times as this object says.
class Settings final : public OZHost {
 public:
  explicit Settings(const Options& options);
  ~Settings() override { Install(host_); }
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  bool DayFirst() const { return day_first_; }
  bool Hours24() const { return hours24_; }

  /// Monday where the day comes before the month, unless the host has a setting of its own.
  eCalWeekStart WeekStart() const { return week_start_; }

  int GetProfileStringA(const char* section, const char* key, const char* fallback, char* buffer,
                        int size) override;
  int GetProfileIntA(const char* section, const char* key, int fallback) override;

  // All other operations are those of the host before.
  int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) override {
    return host_->MessageBoxA(owner, text, caption, style);
  }
  std::tm LocalTime() override { return host_->LocalTime(); }
  std::uint32_t GetTickCount() override { return host_->GetTickCount(); }

 private:
  OZHost* host_;
  bool day_first_ = false;
  bool hours24_ = false;
  eCalWeekStart week_start_ = eCalWeekStartSunday;
};
