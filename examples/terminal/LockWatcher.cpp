#include "terminal/LockWatcher.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>

#include "terminal/Terminal.h"

// After the first refusal, the library tries again at once. The user need not see that.
constexpr std::int32_t kFirstDelay = 2;

LockWatcher::LockWatcher(OZFile& file, bool shows) : file_(file), shows_(shows) {
  file_.SetLockFailureCallbackFunctor(this);
}

LockWatcher::~LockWatcher() { file_.SetLockFailureCallbackFunctor(nullptr); }

void LockWatcher::NotifyLockBlocked(std::int32_t attempt) {
  if (!interrupt_) {
    interrupt_.emplace();
    ++waits_;
  }
  const bool terminal = isatty(STDERR_FILENO) != 0;
  erases_ = shows_ && terminal && attempt >= kFirstDelay;
  if (erases_ || (shows_ && attempt == kFirstDelay)) {
    std::string text =
        "in use by another user, waiting (" + std::to_string(attempt - kFirstDelay + 1) + ')';
    if (terminal) {  // a line that is wrapped could not be written over
      const auto columns = static_cast<std::size_t>(TerminalWidth(STDERR_FILENO) - 1);
      text.resize(std::min(text.size(), columns));
    }
    std::cerr << (terminal ? '\r' + text : text + '\n');
  }
  if (Interrupt::Came()) file_.SetLockMode(OZ_LOCK_NOWAIT);
}

void LockWatcher::NotifyLockWaitOver() {
  if (erases_) EraseLine();
  erases_ = false;
  interrupt_.reset();
  file_.ClearLockMode();
}
