// The calls that the library makes of its host, allocations among them, and failures of them.
//
// The linker leads each of these calls in this program to a stand-in. A call of the host that is new
// to the library needs a stand-in here, its name in `tests/CMakeLists.txt`, and rows in the table of
// failures.
#pragma once

#include <set>
#include <string>

/// Not error numbers: the call succeeds with half of the bytes, or with none; or it is done, but
/// reports that a signal interrupted it.
inline constexpr int kHalf = -1;
inline constexpr int kNothing = -2;
inline constexpr int kDoneInterrupted = -3;

/// Calls of one name that fail, counted from 1.
struct Fault {
  std::string call;
  int host_error;
  int first;
  bool goes_on;  // all later ones fail as well
};

/// While one of these lives, the library's host fails as told.
class Injection {
 public:
  explicit Injection(const Fault& fault);
  ~Injection();
  Injection(const Injection&) = delete;
  Injection& operator=(const Injection&) = delete;

  /// Whether the operation came as far as the first failure.
  static bool HasHappened();

  /// The names of the calls that were made.
  static const std::set<std::string>& Calls();

 private:
  Fault fault_;
};

/// Blocks, mappings and locales that the library has and has not given back.
int LiveBlocks();

/// Times that the host was asked to force data out, and did not fail.
int Syncs();
