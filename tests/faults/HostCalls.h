// Stand-ins for the host's calls and for the allocations of the library. They fail when a test
// wants it, and let the test act at certain moments.
//
// In this program, the linker replaces each of these calls by its stand-in. If the library begins
// to use another call of the host whose result matters, add a stand-in to HostCalls.cpp, the call's
// name to tests/CMakeLists.txt, and rows to the table of failures in docs/internals.md.
#pragma once

#include <sys/types.h>

#include <functional>
#include <limits>
#include <set>
#include <string>

struct flock;
struct statfs;
struct statx;

/// Used in the place of error numbers: the call succeeds with half of the bytes; it succeeds with
/// no bytes; it does its work, but reports that a signal interrupted it.
inline constexpr int kHalf = -1;
inline constexpr int kNothing = -2;
inline constexpr int kDoneInterrupted = -3;

/// Used as the count of a fault: all calls from the first one on fail.
inline constexpr int kAllLater = std::numeric_limits<int>::max();

/// Which calls of one name fail. The name of a call of `fcntl` that releases a lock is "unlock".
struct Fault {
  std::string call = "";
  int host_error = 0;
  int first = 1;  // the number of the first call that fails, counted from 1
  int count = 1;  // so many calls fail
};

/// As long as an object of this class exists, the library's calls fail as its fault says.
struct Injection {
  explicit Injection(const Fault& fault);
  ~Injection();
  Injection(const Injection&) = delete;

  const Fault fault;
  int count = 0;                // of the calls whose name the fault has
  std::set<std::string> calls;  // the names of all calls
};

/// As long as an object of this class exists, the stand-ins call the functions that are set in it.
/// With them, a local volume behaves like a network volume, or other users act at a certain moment.
/// A function "after" a call is called only if the call succeeds.
struct Hooks {
  Hooks();
  ~Hooks();
  Hooks(const Hooks&) = delete;

  std::function<int(struct statfs*)> statfs;  // in the place of `statfs` and `fstatfs`
  std::function<void(const char* path, int flags, int file)> after_open;
  std::function<void(const char* path, int flags, unsigned wanted, struct statx*)> after_statx;
  std::function<void(int command, struct flock*)> after_lock;  // or query, or release
  std::function<void(const char* from, const char* to)> before_link;
  std::function<void(int advice)> before_advice;
  std::function<void(off_t start, off_t length, unsigned flags)> before_range_sync;
};

/// The real call of the host, for another user who acts in one of the hooks.
int RealFcntl(int file, int command, void* lock) asm("__real_fcntl");

/// Returns the number of memory blocks, mappings and locales that the library has not freed yet.
int LiveBlocks();
