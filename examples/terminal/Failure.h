// What a program could not do, and how it tells the user.
#pragma once

#include <string>

#include "orzcore/frame.h"

/// An operation that failed; it is thrown, and `main` shows it.
struct Failure {
  OZError error;
  std::string subject;  ///< the words that name the operation
  const char* file;     ///< source file that reports it
  int line;
};

/// Explains a failure in a message box.
void ShowFailure(const Failure& failure);
