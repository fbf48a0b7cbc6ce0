#include "faults/HostCalls.h"

#include <fcntl.h>
#include <locale.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <new>

namespace {

Injection* gInjection = nullptr;
const Hooks* gHooks = nullptr;
const void* gLiveBlocks[256];

bool Fails(const char* call) {
  if (gInjection == nullptr) return false;
  const Fault& fault = gInjection->fault;
  gInjection->calls.insert(call);
  if (fault.call != call) return false;
  const int later_calls = ++gInjection->count - fault.first;
  if (later_calls < 0 || later_calls >= fault.count) return false;
  errno = fault.host_error;
  return true;
}

// Fails if the fault says so; otherwise calls the host.
template <typename Call>
auto FailOr(const char* name, Call call) -> decltype(call()) {
  if (!Fails(name)) return call();
  if (errno == kDoneInterrupted && call() == 0) errno = EINTR;
  return -1;
}

template <typename Hook, typename... Arguments>
void CallHook(Hook Hooks::*hook, Arguments... arguments) {
  if (gHooks != nullptr && gHooks->*hook) (gHooks->*hook)(arguments...);
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
  if (errno == kHalf) return call((count + 1) / 2);
  return errno == kNothing ? 0 : -1;
}

template <typename Call>
int ReportVolume(const char* name, struct statfs* status, Call call) {
  if (gHooks != nullptr && gHooks->statfs) return gHooks->statfs(status);
  return FailOr(name, call);
}

}  // namespace

Injection::Injection(const Fault& f) : fault(f) { gInjection = this; }
Injection::~Injection() { gInjection = nullptr; }
Hooks::Hooks() { gHooks = this; }
Hooks::~Hooks() { gHooks = nullptr; }

int LiveBlocks() {
  return static_cast<int>(std::ssize(gLiveBlocks) -
                          std::count(std::begin(gLiveBlocks), std::end(gLiveBlocks), nullptr));
}

// Begins a stand-in. The linker calls it instead of the host's call, which is then `Real_...`.
#define STAND_IN(result, name, parameters)              \
  result Real_##name parameters asm("__real_" #name);   \
  result Faulty_##name parameters asm("__wrap_" #name); \
  result Faulty_##name parameters

// A stand-in that only may fail.
#define FAULTY(result, name, parameters, arguments)              \
  STAND_IN(result, name, parameters) {                           \
    return FailOr(#name, [&] { return Real_##name arguments; }); \
  }

FAULTY(int, fstatat, (int directory, const char* path, struct stat* status, int flags),
       (directory, path, status, flags))
FAULTY(int, ftruncate, (int file, off_t size), (file, size))
FAULTY(off_t, lseek, (int file, off_t distance, int origin), (file, distance, origin))
FAULTY(int, mkdirat, (int directory, const char* path, mode_t mode), (directory, path, mode))
FAULTY(int, open, (const char* path, int flags, mode_t mode), (path, flags, mode))
FAULTY(int, renameat, (int from_in, const char* from, int to_in, const char* to),
       (from_in, from, to_in, to))
FAULTY(int, renameat2,
       (int from_in, const char* from, int to_in, const char* to, unsigned int flags),
       (from_in, from, to_in, to, flags))
FAULTY(int, unlinkat, (int directory, const char* path, int flags), (directory, path, flags))

STAND_IN(int, close, (int file)) {
  const int result = Real_close(file);  // a close that fails frees the descriptor, too
  return FailOr("close", [&] { return result; });
}
STAND_IN(int, fcntl, (int file, int command, void* argument)) {
  const bool is_lock = command == F_OFD_SETLK || command == F_OFD_GETLK;
  auto* const lock = static_cast<struct flock*>(argument);
  const bool releases = command == F_OFD_SETLK && lock->l_type == F_UNLCK;
  const int result =
      FailOr(releases ? "unlock" : "fcntl", [&] { return Real_fcntl(file, command, argument); });
  if (result == 0 && is_lock) CallHook(&Hooks::after_lock, command, lock);
  return result;
}
STAND_IN(int, fstatfs, (int file, struct statfs* status)) {
  return ReportVolume("fstatfs", status, [&] { return Real_fstatfs(file, status); });
}
STAND_IN(int, statfs, (const char* path, struct statfs* status)) {
  return ReportVolume("statfs", status, [&] { return Real_statfs(path, status); });
}
STAND_IN(int, linkat, (int from_in, const char* from, int to_in, const char* to, int flags)) {
  CallHook(&Hooks::before_link, from, to);
  return FailOr("linkat", [&] { return Real_linkat(from_in, from, to_in, to, flags); });
}
STAND_IN(int, openat, (int directory, const char* path, int flags, mode_t mode)) {
  const int file = FailOr("openat", [&] { return Real_openat(directory, path, flags, mode); });
  if (file >= 0) CallHook(&Hooks::after_open, path, flags, file);
  return file;
}
STAND_IN(int, posix_fadvise, (int file, off_t start, off_t length, int advice)) {
  CallHook(&Hooks::before_advice, advice);
  return Real_posix_fadvise(file, start, length, advice);
}
STAND_IN(int, statx,
         (int directory, const char* path, int flags, unsigned int wanted, struct statx* status)) {
  const int result =
      FailOr("statx", [&] { return Real_statx(directory, path, flags, wanted, status); });
  if (result == 0) CallHook(&Hooks::after_statx, path, flags, wanted, status);
  return result;
}
STAND_IN(int, sync_file_range, (int file, off_t start, off_t length, unsigned int flags)) {
  CallHook(&Hooks::before_range_sync, start, length, flags);
  return FailOr("sync_file_range",
                [&] { return Real_sync_file_range(file, start, length, flags); });
}

// The next two do not call the host, because thousands of real syncs would take a minute.
STAND_IN(int, fdatasync, (int /*file*/)) { return Fails("fdatasync") ? -1 : 0; }
STAND_IN(int, fsync, (int /*file*/)) { return Fails("fsync") ? -1 : 0; }
STAND_IN(ssize_t, pread, (int file, void* bytes, size_t count, off_t position)) {
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
