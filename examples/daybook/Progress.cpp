#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "Terminal.h"

namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 200ms;  // a task that is over sooner shows no bar
constexpr auto kInterval = 100ms;  // between two drawings

volatile std::sig_atomic_t interrupted = 0;

extern "C" void OnInterrupt(int /*signal*/) { interrupted = 1; }

}  // namespace

Progress::Progress()
    : OZTaskFeedbackProtocol(1, 0),
      shows_(isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0) {}

int Progress::InitializeFeedback() {
  next_drawing_ = Clock::now() + kPatience;
  interrupted = 0;
  struct sigaction stop {};
  stop.sa_handler = OnInterrupt;
  stop.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);  // restarted, no line is cut short
  sigaction(SIGINT, &stop, &previous_);
  // A shell has the signal ignored by what it runs in the background; so it stays.
  if (previous_.sa_handler == SIG_IGN) sigaction(SIGINT, &previous_, nullptr);
  return 0;
}

void Progress::FinishFeedback() {
  if (drawn_) Erase();
  sigaction(SIGINT, &previous_, nullptr);
}

int Progress::TrackPhase(const char* text, short /*number*/, short /*value*/) {
  text_ = text;
  return 0;
}

int Progress::TrackCycle(std::int32_t done, std::int32_t total) {
  if (shows_ && Clock::now() >= next_drawing_) Draw(done, total);
  return 0;
}

int Progress::TrackUserInput() { return interrupted; }

void Progress::Draw(std::int32_t done, std::int32_t total) {
  constexpr int kMost = 40;
  const int around = static_cast<int>(text_.size()) + 11;  // " [", "] 100%", "^C" and a blank
  const int length = std::clamp(TerminalWidth(STDERR_FILENO) - around, 0, kMost);
  const double part = static_cast<double>(done) / total;
  std::string bar(static_cast<std::size_t>(part * length), '#');
  bar.resize(static_cast<std::size_t>(length), '.');
  const std::string percent = std::to_string(static_cast<int>(part * 100));
  std::cerr << '\r' + text_ + " [" + bar + "] " + percent + '%';
  drawn_ = true;
  next_drawing_ = Clock::now() + kInterval;
}

// With blanks, since not every terminal knows how to clear a line.
void Progress::Erase() {
  const auto columns = static_cast<std::size_t>(TerminalWidth(STDERR_FILENO) - 1);
  std::cerr << '\r' + std::string(columns, ' ') + '\r';
  drawn_ = false;
}
