// The library's host in a terminal.
#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "orzcore/platform.h"

/// A host that draws message boxes on standard error, and whose clock can be stopped. The library
/// uses it during its lifetime.
class TerminalHost : public OZHost {
 public:
  TerminalHost() : previous_(Install(this)) {}
  ~TerminalHost() override { Install(previous_); }
  TerminalHost(const TerminalHost&) = delete;
  TerminalHost& operator=(const TerminalHost&) = delete;

  /// Stops the clock at a time such as "2026-11-18 09:30", so that a demonstration or a test has
  /// the same output on every day. Returns false for any other text.
  bool StopClock(const std::string& text);

  /// Does not wait for an answer, since the boxes of the library have only an OK button.
  int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) override;
  std::tm LocalTime() override { return now_ ? *now_ : OZHost::LocalTime(); }

  /// Sleeps for a moment: the library calls it all the time while it waits for a lock.
  std::uint32_t GetTickCount() override;

 private:
  std::optional<std::tm> now_;
  OZHost* previous_;
};
