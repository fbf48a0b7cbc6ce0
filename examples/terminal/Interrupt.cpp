#include "terminal/Interrupt.h"

namespace {

volatile std::sig_atomic_t came = 0;

extern "C" void OnInterrupt(int /*signal*/) { came = 1; }

}  // namespace

Interrupt::Interrupt() {
  struct sigaction notice {};
  notice.sa_handler = OnInterrupt;
  notice.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);  // SA_RESTART: no line is cut off
  sigaction(SIGINT, &notice, &previous_);
  // In a command that a shell runs in the background, the signal is ignored, and stays so.
  if (previous_.sa_handler == SIG_IGN) sigaction(SIGINT, &previous_, nullptr);
}

Interrupt::~Interrupt() { sigaction(SIGINT, &previous_, nullptr); }

bool Interrupt::Came() { return came != 0; }
