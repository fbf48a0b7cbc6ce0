// A host for tests: the test sets its clock and its regional settings, and sees its message boxes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "orzcore/calendar.h"
#include "orzcore/platform.h"

/// A message box that was shown.
struct Box {
  std::string text;
  std::optional<std::string> caption;
  unsigned int style;
  void* owner;
};

/// Installed from construction to destruction.
class FakeHost : public OZHost {
 public:
  FakeHost() : before_(Install(this)) {}
  ~FakeHost() override { Install(before_); }
  FakeHost(const FakeHost&) = delete;
  FakeHost& operator=(const FakeHost&) = delete;

  void SetNow(int year, int month, int day, int hour = 0, int minute = 0) {
    now_ = {};
    std::tie(now_.tm_year, now_.tm_mon, now_.tm_mday) = std::tuple(year - 1900, month - 1, day);
    std::tie(now_.tm_hour, now_.tm_min, now_.tm_sec) = std::tuple(hour, minute, 59);
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
    const std::size_t count = text.copy(buffer, static_cast<std::size_t>(size) - 1);
    buffer[count] = '\0';
    return static_cast<int>(count);
  }

  int GetProfileIntA(const char* section, const char* key, int fallback) override {
    ++setting_reads;
    const bool known = clock_24hour && std::string(section) + "/" + key == "Intl/iTime";
    return known ? *clock_24hour : fallback;
  }

  int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) override {
    boxes.push_back({text, caption == nullptr ? std::nullopt : std::optional<std::string>(caption),
                     style, owner});
    if (while_box_is_open) while_box_is_open();
    return answer;
  }
  void* GetActiveWindow() override { return this; }
  void MessageBeep(unsigned int type) override { beeps.push_back(type); }

  std::vector<Box> boxes;
  std::vector<unsigned int> beeps;
  int answer = 1;                           // of every box
  std::function<void()> while_box_is_open;  // called from inside each box

  // Each reading adds ten milliseconds to the tick counter, so that a wait takes no real time.
  std::uint32_t GetTickCount() override { return ticks += 10; }
  std::uint32_t Clock() override { return clock; }
  std::uint32_t ticks = 0;
  std::uint32_t clock = 0;

  int clock_reads = 0;
  int setting_reads = 0;
  std::optional<std::string> short_date;  // empty: there is no such setting
  std::optional<int> clock_24hour;

 private:
  OZHost* before_;
  std::tm now_ = {};
};
