// Failed operations, and their message to the user.
#pragma once

#include <string>

#include "orzcore/frame.h"

/// An operation that failed. It is thrown, and `Program::Run` shows it.
struct Failure {
  OZError error;
  std::string subject;  ///< the operation, as the message names it
  const char* file;     ///< the source file that reports it
  int line;
  std::string about = {};  ///< the file that it is about, by its last name; may be empty
};

/// Shows a failure in a message box.
void ShowFailure(const Failure& failure);
