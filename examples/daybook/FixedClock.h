// A clock that stands still, so that a demonstration or a test says the same on every day.
#pragma once

#include <ctime>
#include <string>

#include "orzcore/platform.h"

/// A host whose local time never changes. It is in force as long as it lives.
class FixedClock : public OZHost {
 public:
  /// @param now  a date of the calendar and a time, such as "2026-11-18 09:30"; throws `UsageError`
  ///             for any other text
  explicit FixedClock(const std::string& now);
  ~FixedClock() override;
  FixedClock(const FixedClock&) = delete;
  FixedClock& operator=(const FixedClock&) = delete;

  std::tm LocalTime() override { return now_; }

 private:
  std::tm now_{};
  OZHost* previous_ = nullptr;
};
