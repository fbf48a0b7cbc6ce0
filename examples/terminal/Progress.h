// The progress of a long task in the terminal.
#pragma once

#include <chrono>
#include <string>

#include "orzcore/feedback.h"
#include "terminal/Interrupt.h"

/// Shows a bar if standard error is a terminal and standard output is not. Stops the task when the
/// user presses Ctrl-C.
///
/// The arguments of `Cycle` are the amount of work that is done and the whole amount, above 0.
class Progress final : public OZTaskFeedbackProtocol {
 public:
  Progress();
  ~Progress() override { Finish(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void FinishFeedback() override;
  int TrackPhase(const char* text, short number, short value) override;
  int TrackCycle(std::int32_t done, std::int32_t total) override;
  int TrackUserInput() override { return Interrupt::Came() ? 1 : 0; }

 private:
  using Clock = std::chrono::steady_clock;

  void Draw(std::int32_t done, std::int32_t total);

  const Interrupt interrupt_;
  const bool shows_;  // whether the user would see a bar
  bool drawn_ = false;
  std::string text_;
  Clock::time_point next_drawing_;
};
