// Another process of the same program.
#pragma once

#include <memory>
#include <string>
#include <vector>

/// Another process of this program, whose standard output its parent reads. When the parent ends,
/// the output of the process is closed, so its next write fails or ends it.
class UserProcess {
 public:
  /// Starts a process. Throws `Failure` if the system refuses.
  ///
  /// @param arguments  of the command line, without the name of the program
  explicit UserProcess(const std::vector<std::string>& arguments);

  /// Kills the process if it still runs.
  ~UserProcess();
  UserProcess(UserProcess&& other) noexcept;
  UserProcess(const UserProcess&) = delete;
  UserProcess& operator=(const UserProcess&) = delete;

  enum class State { kRuns, kSucceeded, kFailed, kInterrupted };  ///< the last one by Ctrl-C

  /// Returns how the process is now, without waiting.
  State Look();

  /// Ends the process at once, whatever it is doing, and waits until it has ended.
  void Kill();

  /// Returns what the process has written since the last call, without waiting. After the process
  /// has ended, it returns all the rest.
  std::string TakeOutput();

 private:
  struct Handles;  // of the system
  std::unique_ptr<Handles> handles_;
};
