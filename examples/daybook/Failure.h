// What daybook could not do, and how it tells the user.
#pragma once

#include "orzcore/frame.h"

/// An operation that failed; it is thrown, and `main` shows it. All texts are literals.
struct Failure {
  OZError error;
  const char* subject;  ///< the words that name the operation, or null
  const char* file;     ///< source file that reports it
  int line;
};

/// Explains a failure in a message box.
void ShowFailure(const Failure& failure);
