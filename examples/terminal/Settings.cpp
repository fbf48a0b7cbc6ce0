#include "terminal/Settings.h"

#include <string_view>

#include "orzcore/foundation.h"

static constexpr const char* kSection = "Intl";
static constexpr const char* kDateKey = "sShortDate";
static constexpr const char* kClockKey = "iTime";

// The value of two options of which at most one may be given.
static bool Choice(const Options& options, const char* yes, const char* no, bool otherwise) {
  if (options.Has(yes) && options.Has(no)) {
    throw UsageError(std::string(yes) + " and " + no + " exclude each other");
  }
  return options.Has(yes) || (otherwise && !options.Has(no));
}

Settings::Settings(const Options& options) : host_(Install(nullptr)) {
  Install(host_);
  char pattern[80] = {};
  host_->GetProfileStringA(kSection, kDateKey, "M/d/yyyy", pattern, sizeof pattern);
  const std::string_view order = pattern;
  day_first_ = Choice(options, "--day-first", "--month-first", order.find('d') < order.find('M'));
  hours24_ =
      Choice(options, "--24-hour", "--12-hour", host_->GetProfileIntA(kSection, kClockKey, 0) != 0);
  // The setting counts from 0 for Monday to 6 for Sunday.
  constexpr int kSunday = 6;
  const int first = host_->GetProfileIntA(kSection, "iFirstDayOfWeek", day_first_ ? 0 : kSunday);
  week_start_ = first == kSunday ? eCalWeekStartSunday : eCalWeekStartMonday;
  Install(this);
}

int Settings::GetProfileStringA(const char* section, const char* key, const char* fallback,
                                char* buffer, int size) {
  if (stricmp(key, kDateKey) != 0) {
    return host_->GetProfileStringA(section, key, fallback, buffer, size);
  }
  const std::string_view pattern = day_first_ ? "d/M/yyyy" : "M/d/yyyy";
  if (size <= 0) return 0;
  const std::size_t length = pattern.copy(buffer, static_cast<std::size_t>(size) - 1);
  buffer[length] = '\0';
  return static_cast<int>(length);
}

int Settings::GetProfileIntA(const char* section, const char* key, int fallback) {
  if (stricmp(key, kClockKey) == 0) return hours24_ ? 1 : 0;
  return host_->GetProfileIntA(section, key, fallback);
}
