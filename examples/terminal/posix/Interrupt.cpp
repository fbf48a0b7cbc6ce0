#include "terminal/Interrupt.h"

#include <csignal>

namespace {

volatile std::sig_atomic_t came = 0;

extern "C" void OnInterrupt(int /*signal*/) { came = 1; }

}  // namespace

struct Interrupt::Previous {
  struct sigaction action;
};

Interrupt::Interrupt() : previous_(new Previous{}) {
  struct sigaction notice {};
  notice.sa_handler = OnInterrupt;
  notice.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);  // SA_RESTART: no line is cut off
  sigaction(SIGINT, &notice, &previous_->action);
  // In a command that a shell runs in the background, the signal is ignored, and stays so.
  if (previous_->action.sa_handler == SIG_IGN) sigaction(SIGINT, &previous_->action, nullptr);
}

Interrupt::~Interrupt() { sigaction(SIGINT, &previous_->action, nullptr); }

bool Interrupt::Came() { return came != 0; }
