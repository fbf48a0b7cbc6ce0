// Ctrl-C during work that must not end in the middle.
#pragma once

#include <memory>

/// Thrown when work ends because the user pressed Ctrl-C.
struct Stopped {};

/// During its lifetime, Ctrl-C does not end the program but is remembered. A second Ctrl-C ends the
/// program at once.
class Interrupt {
 public:
  Interrupt();
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  /// Whether the user pressed Ctrl-C during the lifetime of such an object.
  static bool Came();

 private:
  struct Previous;  // what the system did with Ctrl-C before
  std::unique_ptr<Previous> previous_;
};
