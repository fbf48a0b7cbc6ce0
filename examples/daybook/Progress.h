// The progress of a long task in the terminal.
#pragma once

#include <chrono>
#include <csignal>
#include <string>

#include "orzcore/feedback.h"

/// Shows a bar on standard error if that is a terminal and the output goes elsewhere, and stops the
/// task when the user presses Ctrl-C. A second Ctrl-C ends the program at once.
///
/// The numbers of `Cycle` are what is done and what there is to do, which is above 0.
class Progress final : public OZTaskFeedbackProtocol {
 public:
  Progress();
  ~Progress() { Finish(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  int InitializeFeedback() override;
  void FinishFeedback() override;
  int TrackPhase(const char* text, short number, short value) override;
  int TrackCycle(std::int32_t done, std::int32_t total) override;
  int TrackUserInput() override;

 private:
  using Clock = std::chrono::steady_clock;

  void Draw(std::int32_t done, std::int32_t total);
  void Erase();

  const bool shows_;  // whether the user would see a bar
  bool drawn_ = false;
  std::string text_;
  Clock::time_point next_drawing_;
  struct sigaction previous_ {};  // what Ctrl-C did before the task
};
