// The calls that the library makes of its host, allocations among them, and failures of them.
//
// The linker leads each of these calls in this program to a stand-in. A call of the host that is
// new to the library needs a stand-in here, its name in `tests/CMakeLists.txt`, and rows in the
// table of failures.
#pragma once

#include <sys/types.h>

#include <functional>
#include <set>
#include <string>

struct statfs;
struct statx;

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

/// While one of these lives, the functions that are set answer in the place of the host's calls.
/// They make a local volume behave as a network volume does.
struct NetworkHost {
  NetworkHost();
  ~NetworkHost();
  NetworkHost(const NetworkHost&) = delete;
  NetworkHost& operator=(const NetworkHost&) = delete;

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
};

/// The host's own calls, past the functions of a `NetworkHost`.
int RealFcntl(int file, int command, void* lock);
int RealOpenat(int directory, const char* path, int flags, mode_t mode);
int RealStatx(int directory, const char* path, int flags, unsigned int wanted,
              struct statx* status);

/// Blocks, mappings and locales that the library has and has not given back.
int LiveBlocks();

/// Times that the host was asked to force data out, and did not fail.
int Syncs();
