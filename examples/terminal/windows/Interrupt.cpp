#include "terminal/Interrupt.h"

#include <windows.h>

#include <atomic>

namespace {

std::atomic<bool> came = false;

// Windows calls it in a thread of its own. After FALSE, the second Ctrl-C ends the program.
BOOL WINAPI OnInterrupt(DWORD event) {
  return event == CTRL_C_EVENT && !came.exchange(true) ? TRUE : FALSE;
}

}  // namespace

// Windows itself remembers the handlers in their order.
struct Interrupt::Previous {};

Interrupt::Interrupt() { SetConsoleCtrlHandler(OnInterrupt, TRUE); }

Interrupt::~Interrupt() { SetConsoleCtrlHandler(OnInterrupt, FALSE); }

bool Interrupt::Came() { return came; }
