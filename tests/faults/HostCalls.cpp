#include "faults/HostCalls.h"

#include <fcntl.h>
#include <locale.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <new>

namespace {

constexpr int kEndless = 100'000;  // calls of one name; a search for a free name makes 65,535

const Fault* gFault = nullptr;
const NetworkHost* gNetwork = nullptr;
std::set<std::string> gCalls;
int gCount = 0;  // of the calls whose name the fault has
int gSyncs = 0;
const void* gLiveBlocks[256];

bool Fails(const char* call) {
  if (gFault == nullptr) return false;
  gCalls.insert(call);
  if (gFault->call != call) return false;
  if (++gCount > kEndless) {
    std::fprintf(stderr, "%s is called without an end\n", call);
    std::abort();
  }
  if (gCount < gFault->first || (gCount > gFault->first && !gFault->goes_on)) return false;
  errno = gFault->host_error;
  return true;
}

// Record that a block was allocated or freed. Null is no block.
template <typename Block>
Block AddLive(Block block) {
  if (block != nullptr) *std::find(std::begin(gLiveBlocks), std::end(gLiveBlocks), nullptr) = block;
  return block;
}
template <typename Block>
Block RemoveLive(Block block) {
  const void** const place = std::find(std::begin(gLiveBlocks), std::end(gLiveBlocks), block);
  if (place != std::end(gLiveBlocks)) *place = nullptr;
  return block;
}

template <typename Call>
ssize_t Transfer(const char* name, size_t count, Call call) {
  if (!Fails(name)) return call(count);
  if (gFault->host_error == kHalf) return call((count + 1) / 2);
  return gFault->host_error == kNothing ? 0 : -1;
}

int Sync(const char* call) {
  if (Fails(call)) return -1;
  ++gSyncs;
  return 0;
}

}  // namespace

Injection::Injection(const Fault& fault) : fault_(fault) {
  gCalls.clear();
  gCount = 0;
  gFault = &fault_;
}
Injection::~Injection() { gFault = nullptr; }
NetworkHost::NetworkHost() { gNetwork = this; }
NetworkHost::~NetworkHost() { gNetwork = nullptr; }
bool Injection::HasHappened() { return gCount >= gFault->first; }
const std::set<std::string>& Injection::Calls() { return gCalls; }

int LiveBlocks() {
  return static_cast<int>(std::ssize(gLiveBlocks) -
                          std::count(std::begin(gLiveBlocks), std::end(gLiveBlocks), nullptr));
}
int Syncs() { return gSyncs; }

// Begins a stand-in. The linker calls it instead of the host's call, which is then `Real_...`.
#define STAND_IN(result, name, parameters)              \
  result Real_##name parameters asm("__real_" #name);   \
  result Faulty_##name parameters asm("__wrap_" #name); \
  result Faulty_##name parameters

// Fails if the fault says so; otherwise calls the host.
#define FAIL_OR_CALL(result, name, arguments)                                              \
  if (!Fails(#name)) return Real_##name arguments;                                         \
  if (gFault->host_error == kDoneInterrupted && Real_##name arguments == 0) errno = EINTR; \
  return result { -1 }

// A stand-in for a call that returns -1 on failure.
#define FAULTY(result, name, parameters, arguments) \
  STAND_IN(result, name, parameters) { FAIL_OR_CALL(result, name, arguments); }

// The same for a call that a `NetworkHost` may answer.
#define NETWORKED(result, name, parameters, arguments)                          \
  STAND_IN(result, name, parameters) {                                          \
    if (gNetwork != nullptr && gNetwork->name) return gNetwork->name arguments; \
    FAIL_OR_CALL(result, name, arguments);                                      \
  }

NETWORKED(int, access, (const char* path, int mode), (path, mode))
FAULTY(int, clock_gettime, (clockid_t clock, timespec* now), (clock, now))
NETWORKED(int, fcntl, (int file, int command, void* lock), (file, command, lock))
FAULTY(int, fchmod, (int file, mode_t mode), (file, mode))
FAULTY(int, fstatat, (int directory, const char* path, struct stat* status, int flags),
       (directory, path, status, flags))
NETWORKED(int, fstatfs, (int file, struct statfs* status), (file, status))
FAULTY(int, ftruncate, (int file, off_t size), (file, size))
NETWORKED(int, linkat, (int from_in, const char* from, int to_in, const char* to, int flags),
          (from_in, from, to_in, to, flags))
NETWORKED(off_t, lseek, (int file, off_t distance, int origin), (file, distance, origin))
FAULTY(int, madvise, (void* address, size_t size, int advice), (address, size, advice))
FAULTY(int, mkdirat, (int directory, const char* path, mode_t mode), (directory, path, mode))
FAULTY(int, nanosleep, (const timespec* time, timespec* left), (time, left))
FAULTY(int, open, (const char* path, int flags, mode_t mode), (path, flags, mode))
NETWORKED(int, openat, (int directory, const char* path, int flags, mode_t mode),
          (directory, path, flags, mode))
STAND_IN(int, renameat, (int from_in, const char* from, int to_in, const char* to)) {
  if (gNetwork != nullptr && gNetwork->before_rename) gNetwork->before_rename();
  FAIL_OR_CALL(int, renameat, (from_in, from, to_in, to));
}
STAND_IN(int, renameat2,
         (int from_in, const char* from, int to_in, const char* to, unsigned int flags)) {
  if (gNetwork != nullptr && gNetwork->before_rename) gNetwork->before_rename();
  FAIL_OR_CALL(int, renameat2, (from_in, from, to_in, to, flags));
}
FAULTY(int, stat, (const char* path, struct stat* status), (path, status))
NETWORKED(int, statfs, (const char* path, struct statfs* status), (path, status))
NETWORKED(int, statx,
          (int directory, const char* path, int flags, unsigned int wanted, struct statx* status),
          (directory, path, flags, wanted, status))
FAULTY(int, unlinkat, (int directory, const char* path, int flags), (directory, path, flags))

NETWORKED(int, posix_fadvise, (int file, off_t start, off_t length, int advice),
          (file, start, length, advice))
NETWORKED(int, sync_file_range, (int file, off_t start, off_t length, unsigned int flags),
          (file, start, length, flags))

STAND_IN(int, close, (int file)) {
  if (gNetwork != nullptr && gNetwork->close && gNetwork->close(file) != 0) return -1;
  const int result = Real_close(file);  // a close that fails frees the descriptor, too
  return Fails("close") ? -1 : result;
}
// The next two do not call the host, because thousands of real syncs would take a minute.
STAND_IN(int, fdatasync, (int /*file*/)) { return Sync("fdatasync"); }
STAND_IN(int, fsync, (int /*file*/)) { return Sync("fsync"); }
STAND_IN(ssize_t, pread, (int file, void* bytes, size_t count, off_t position)) {
  if (gNetwork != nullptr && gNetwork->pread) return gNetwork->pread(file, bytes, count, position);
  return Transfer("pread", count, [&](size_t n) { return Real_pread(file, bytes, n, position); });
}
STAND_IN(ssize_t, pwrite, (int file, const void* bytes, size_t count, off_t position)) {
  return Transfer("pwrite", count, [&](size_t n) { return Real_pwrite(file, bytes, n, position); });
}
STAND_IN(void*, mmap, (void* wish, size_t size, int use, int kind, int file, off_t offset)) {
  if (Fails("mmap")) return MAP_FAILED;
  void* const address = Real_mmap(wish, size, use, kind, file, offset);
  return address == MAP_FAILED ? address : AddLive(address);
}
STAND_IN(int, munmap, (void* address, size_t size)) {
  return Real_munmap(RemoveLive(address), size);
}
STAND_IN(locale_t, newlocale, (int mask, const char* name, locale_t base)) {
  return Fails("newlocale") ? nullptr : AddLive(Real_newlocale(mask, name, base));
}
STAND_IN(void, freelocale, (locale_t locale)) { Real_freelocale(RemoveLive(locale)); }

// `new` and `delete` as the library uses them.
STAND_IN(void*, _ZnwmRKSt9nothrow_t, (size_t size, const std::nothrow_t& tag)) {
  return Fails("new") ? nullptr : AddLive(Real__ZnwmRKSt9nothrow_t(size, tag));
}
STAND_IN(void*, _ZnamRKSt9nothrow_t, (size_t size, const std::nothrow_t& tag)) {
  return Fails("new") ? nullptr : AddLive(Real__ZnamRKSt9nothrow_t(size, tag));
}
STAND_IN(void, _ZdlPv, (void* block)) { Real__ZdlPv(RemoveLive(block)); }
STAND_IN(void, _ZdaPv, (void* block)) { Real__ZdaPv(RemoveLive(block)); }
STAND_IN(void, _ZdlPvm, (void* block, size_t size)) { Real__ZdlPvm(RemoveLive(block), size); }
