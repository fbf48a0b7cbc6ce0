// Stand-ins for the host's calls and for the allocations of the library, which fail when a test
// wants it.
//
// In this program, the linker replaces each of these calls by its stand-in. If the library begins
// to use another call of the host, add a stand-in to HostCalls.cpp, the call's name to
// tests/CMakeLists.txt, and rows to the table of failures in FaultsTest.cpp.
#pragma once

#include <sys/types.h>

#include <functional>
#include <set>
#include <string>

struct statfs;
struct statx;

/// Used in the place of error numbers: the call succeeds with half of the bytes; it succeeds with
/// no bytes; it does its work, but reports that a signal interrupted it.
inline constexpr int kHalf = -1;
inline constexpr int kNothing = -2;
inline constexpr int kDoneInterrupted = -3;

/// Which calls of one name fail.
struct Fault {
  std::string call = "";
  int host_error = 0;
  int first = 1;         // the number of the first call that fails, counted from 1
  bool goes_on = false;  // all later calls fail, too
};

/// As long as an object of this class exists, the library's calls fail as its fault says.
class Injection {
 public:
  explicit Injection(const Fault& fault);
  ~Injection();
  Injection(const Injection&) = delete;
  Injection& operator=(const Injection&) = delete;

  /// Returns true if at least one call has failed.
  static bool HasHappened();

  /// The names of the calls that were made.
  static const std::set<std::string>& Calls();

 private:
  Fault fault_;
};

/// As long as an object of this class exists, the functions that are set in it replace the host's
/// calls. With them, a local volume behaves like a network volume, or other users act at a certain
/// moment.
struct NetworkHost {
  NetworkHost();
  ~NetworkHost();
  NetworkHost(const NetworkHost&) = delete;
  NetworkHost& operator=(const NetworkHost&) = delete;

  std::function<int(const char*, int)> access;
  std::function<int(int, struct statfs*)> fstatfs;
  std::function<int(const char*, struct statfs*)> statfs;
  std::function<int(int, int, void*)> fcntl;
  std::function<int(int, const char*, int, mode_t)> openat;
  std::function<int(int)> close;
  std::function<int(int, const char*, int, unsigned int, struct statx*)> statx;
  std::function<int(int, const char*, int, const char*, int)> linkat;
  std::function<off_t(int, off_t, int)> lseek;
  std::function<ssize_t(int, void*, size_t, off_t)> pread;
  std::function<int(int, off_t, off_t, int)> posix_fadvise;
  std::function<int(int, off_t, off_t, unsigned int)> sync_file_range;
  std::function<void()> before_rename;  // called before the host renames something
};

/// The real calls of the host, for the functions of a `NetworkHost`.
int RealFcntl(int file, int command, void* lock) asm("__real_fcntl");
int RealOpenat(int directory, const char* path, int flags, mode_t mode) asm("__real_openat");
int RealStatx(int directory, const char* path, int flags, unsigned int wanted,
              struct statx* status) asm("__real_statx");

/// Returns the number of memory blocks, mappings and locales that the library has not freed yet.
int LiveBlocks();

/// Returns how many syncs of files and directories have succeeded.
int Syncs();
