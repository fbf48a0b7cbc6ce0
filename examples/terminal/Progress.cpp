#include "terminal/Progress.h"

#include <algorithm>
#include <iostream>

#include "terminal/Terminal.h"

using namespace std::chrono_literals;

static constexpr auto kPatience = 200ms;  // a shorter task shows no bar
static constexpr auto kInterval = 100ms;  // between two drawings

Progress::Progress()
    : OZTaskFeedbackProtocol(1, 0),
      shows_(IsTerminal(Stream::kError) && !IsTerminal(Stream::kOutput)),
      next_drawing_(Clock::now() + kPatience) {}

void Progress::FinishFeedback() {
  if (drawn_) EraseLine();
}

int Progress::TrackPhase(const char* text, short /*number*/, short /*value*/) {
  text_ = text;
  return 0;
}

int Progress::TrackCycle(std::int32_t done, std::int32_t total) {
  if (shows_ && Clock::now() >= next_drawing_) Draw(done, total);
  return 0;
}

void Progress::Draw(std::int32_t done, std::int32_t total) {
  constexpr int kMost = 40;
  const int around =
      static_cast<int>(text_.size()) + 11;  // " [", "] 100%", and room for "^C" and a blank
  const int length = std::clamp(TerminalWidth(Stream::kError) - around, 0, kMost);
  const double part = static_cast<double>(done) / total;
  std::string bar(static_cast<std::size_t>(part * length), '#');
  bar.resize(static_cast<std::size_t>(length), '.');
  const std::string percent = std::to_string(static_cast<int>(part * 100));
  std::cerr << '\r' + text_ + " [" + bar + "] " + percent + '%';
  drawn_ = true;
  next_drawing_ = Clock::now() + kInterval;
}
