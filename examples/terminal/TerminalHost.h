// The library's host in a terminal.
#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "orzcore/platform.h"

/// A host that draws message boxes on standard error, and whose clock can be stopped. It is in
/// force as long as it lives.
class TerminalHost : public OZHost {
 public:
  TerminalHost() : previous_(Install(this)) {}
  ~TerminalHost() override { Install(previous_); }
  TerminalHost(const TerminalHost&) = delete;
  TerminalHost& operator=(const TerminalHost&) = delete;

  /// From now on it is the time that a text says, such as "2026-11-18 09:30", so that a
  /// demonstration or a test can say the same on every day. Returns false for any other text.
  bool StopClock(const std::string& text);

  /// The library shows boxes with an OK button alone, so it does not wait for an answer.
  int MessageBoxA(void* owner, const char* text, const char* caption, unsigned int style) override;
  std::tm LocalTime() override { return now_ ? *now_ : OZHost::LocalTime(); }

  /// Naps. The library waits for a lock by watching the ticks, which would keep a processor busy.
  std::uint32_t GetTickCount() override;

 private:
  std::optional<std::tm> now_;
  OZHost* previous_;
};
