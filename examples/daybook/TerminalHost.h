// The library's host in a terminal.
#pragma once

#include <ctime>
#include <optional>

#include "orzcore/platform.h"

/// A host that draws message boxes on standard error, and whose clock can be stopped. It is in
/// force as long as it lives.
class TerminalHost : public OZHost {
 public:
  TerminalHost() : previous_(Install(this)) {}
  ~TerminalHost() override { Install(previous_); }
  TerminalHost(const TerminalHost&) = delete;
  TerminalHost& operator=(const TerminalHost&) = delete;

  /// From now on it is `now`.
  void StopClock(const std::tm& now) { now_ = now; }

  /// If the user can be asked, waits for an answer to a box with several buttons; without a user,
  /// returns 1 for a box with an OK button alone, and 0 for any other.
  int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) override;
  std::tm LocalTime() override { return now_ ? *now_ : OZHost::LocalTime(); }

 private:
  std::optional<std::tm> now_;
  OZHost* previous_;
};
