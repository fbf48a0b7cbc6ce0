// Ctrl-C, for work that must not end in the middle.
#pragma once

#include <csignal>

/// Thrown by work that ends because the user pressed Ctrl-C.
struct Stopped {};

/// As long as one lives, Ctrl-C ends nothing but is noticed. A second one ends the program at once.
class Interrupt {
 public:
  Interrupt();
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  /// Tells whether Ctrl-C was pressed while an object lived.
  static bool Came();

 private:
  struct sigaction previous_ {};
};
