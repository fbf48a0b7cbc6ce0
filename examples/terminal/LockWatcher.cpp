#include "terminal/LockWatcher.h"

#include <algorithm>
#include <iostream>
#include <string>

#include "terminal/Terminal.h"

// After the first refusal, the library tries again at once. The user need not see that.
constexpr std::int32_t kFirstDelay = 2;

std::optional<std::chrono::seconds> LongestWait(const Options& options) {
  constexpr int kMost = 86400;
  if (!options.Has("--wait")) return std::nullopt;
  return std::chrono::seconds(options.Number("--wait", 0, kMost, 0));
}

LockWatcher::LockWatcher(OZFile& file, bool shows, std::optional<std::chrono::seconds> most)
    : file_(file), shows_(shows), most_(most) {
  if (RefusesAtOnce()) file_.SetLockMode(OZ_LOCK_NOWAIT);
  file_.SetLockFailureCallbackFunctor(this);
}

LockWatcher::~LockWatcher() {
  file_.SetLockFailureCallbackFunctor(nullptr);
  if (RefusesAtOnce()) file_.ClearLockMode();
}

void LockWatcher::NotifyLockBlocked(std::int32_t attempt) {
  if (!interrupt_) {
    interrupt_.emplace();
    ++waits_;
    began_ = Clock::now();
  }
  const bool terminal = IsTerminal(Stream::kError);
  erases_ = shows_ && terminal && attempt >= kFirstDelay;
  if (erases_ || (shows_ && attempt == kFirstDelay)) {
    std::string text =
        "in use by another user, waiting (" + std::to_string(attempt - kFirstDelay + 1) + ')';
    if (terminal) {  // a line that is wrapped could not be written over
      const auto columns = static_cast<std::size_t>(TerminalWidth(Stream::kError) - 1);
      text.resize(std::min(text.size(), columns));
    }
    std::cerr << (terminal ? '\r' + text : text + '\n');
  }
  const bool late = most_ && Clock::now() - began_ >= *most_;
  if (late || Interrupt::Came()) file_.SetLockMode(OZ_LOCK_NOWAIT);
}

void LockWatcher::NotifyLockWaitOver() {
  if (erases_) EraseLine();
  erases_ = false;
  interrupt_.reset();
  if (!RefusesAtOnce()) file_.ClearLockMode();
}
