// Files that are opened, or created, together with their share state.
#include "platform/posix/OwnedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <utility>

#include "platform/posix/HostErrors.h"
#include "platform/posix/ShareState.h"
#include "platform/posix/Volume.h"

namespace orzcore::platform {
namespace {

// O_NONBLOCK is for what turns out not to be a file: an open of it must not wait either.
constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kNewMode = 0666;  // less the user's mask
constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

// What the host says when it refuses to let this user write.
constexpr int kNoWritingErrors[] = {EACCES, EROFS, ETXTBSY, EPERM};

// A file that took the place of a closed standard stream would get what the program writes there.
int ClearOfStandardStreams(int number) {
  if (number < 0 || number > STDERR_FILENO) return number;
  const int higher = ::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  ::close(number);
  errno = error;
  return higher;
}

Descriptor Open(const Entry& entry, int flags) {
  return Descriptor(ClearOfStandardStreams(Uninterrupted(
      [&] { return ::openat(entry.directory, entry.name, kOpenFlags | flags, kNewMode); })));
}

// A descriptor that can write is wanted even by those who only read, since it locks for good.
OwnedFile OpenBest(const Entry& entry, bool takes_readonly) {
  OwnedFile file = {Open(entry, O_RDWR), true};
  if (file.descriptor.IsOpen() || !takes_readonly) return file;
  const bool is_no_writing = std::find(std::begin(kNoWritingErrors), std::end(kNoWritingErrors),
                                       errno) != std::end(kNoWritingErrors);
  return is_no_writing ? OwnedFile{Open(entry, O_RDONLY), false} : std::move(file);
}

// What an open asks of a file. The times are left out: once they have been read, the next write
// stamps the file anew, and a flush then has more to force out.
struct Identity {
  mode_t mode;
  std::uint32_t names;
  std::uint64_t number;
  std::uint32_t major;
  std::uint32_t minor;

  bool IsSameFile(const Identity& other) const {
    return number == other.number && major == other.major && minor == other.minor;
  }
};

// What `statx` finds out, where a sandbox does not let it through.
int IdentifyByStat(int descriptor, const char* path, int flags, Identity& identity) {
  struct stat status = {};
  const int result = Uninterrupted([&] { return ::fstatat(descriptor, path, &status, flags); });
  if (result != 0) return errno;
  identity = {status.st_mode, static_cast<std::uint32_t>(status.st_nlink), status.st_ino,
              major(status.st_dev), minor(status.st_dev)};
  return 0;
}

// Of an open file if the path is empty. Returns 0 or the reason.
int Identify(int descriptor, const char* path, Identity& identity) {
  struct statx status = {};
  constexpr unsigned kWanted = STATX_TYPE | STATX_MODE | STATX_INO | STATX_NLINK;
  constexpr int kFlags = AT_EMPTY_PATH | AT_NO_AUTOMOUNT;
  const int result =
      Uninterrupted([&] { return ::statx(descriptor, path, kFlags, kWanted, &status); });
  const bool is_forbidden = result != 0 && (errno == ENOSYS || errno == EPERM);
  if (is_forbidden) return IdentifyByStat(descriptor, path, kFlags, identity);
  if (result != 0) return errno;
  identity = {status.stx_mode, status.stx_nlink, status.stx_ino, status.stx_dev_major,
              status.stx_dev_minor};
  return 0;
}

int IdentifyOpen(const Descriptor& descriptor, Identity& identity) {
  return descriptor.IsOpen() ? Identify(descriptor.Number(), "", identity) : errno;
}

int CheckKind(const Identity& identity, bool needs_mode) {
  if (S_ISDIR(identity.mode)) return EISDIR;
  if (!S_ISREG(identity.mode)) return EACCES;
  // The host itself would let a privileged user write.
  return needs_mode && (identity.mode & kAnyWriteBit) == 0 ? EACCES : 0;
}

// Takes the share state. On a volume without locks it is granted as well.
bool Own(OwnedFile& file, bool shares) {
  const LockAnswer answer = TakeShareState(file.descriptor.Number(), file.is_writable, shares);
  file.has_locks = answer == LockAnswer::kGranted;
  return file.has_locks || answer == LockAnswer::kNoLocks;
}

// Before the share state was ours, the file could lose its name, or the name go to another file. One
// that is open keeps its number, so equal numbers mean the same file.
int CheckName(const Entry& entry, const Identity& opened) {
  Identity named = {};
  if (const int error = Identify(entry.directory, entry.name, named); error != 0) {
    return error == ENOENT ? kNameMoved : error;
  }
  return named.IsSameFile(opened) && named.names != 0 ? 0 : kNameMoved;
}

// For a volume where a file is visible from its creation on, so that others may be faster.
int CreateNamed(const NativePath& path, bool shares, OwnedFile& file) {
  const HeldEntry entry(path);  // else a file could stay behind where the path no longer leads
  if (entry.Error() != 0) return entry.Error();
  OwnedFile created = {Open(entry.Get(), O_RDWR | O_CREAT | O_EXCL), true};
  Identity identity = {};
  if (const int error = IdentifyOpen(created.descriptor, identity); error != 0) return error;
  // Somebody has opened it at once, and to him it was there before.
  if (!Own(created, shares)) return EEXIST;
  if (const int error = CheckName(entry.Get(), identity); error != 0) return error;
  file = std::move(created);
  return 0;
}

OwnedFile CreateUnnamed(const NativePath& path, bool shares) {
  if (!gVolume.has_unnamed_files) return {};
  const DirectoryPath directory(path, path.Name());
  OwnedFile file = {Open({AT_FDCWD, directory.Text()}, O_RDWR | O_TMPFILE), true};
  if (!file.descriptor.IsOpen()) return {};
  return Own(file, shares) ? std::move(file) : OwnedFile{};
}

// In whatever directory the path leads to by now: this never replaces, and the file is ours.
bool GiveName(const Descriptor& descriptor, const NativePath& path) {
  char link[sizeof("/proc/self/fd/") + 3 * sizeof(int)];
  std::snprintf(link, sizeof(link), "/proc/self/fd/%d", descriptor.Number());
  return ::linkat(AT_FDCWD, link, AT_FDCWD, path.Text(), AT_SYMLINK_FOLLOW) == 0;
}

}  // namespace

int OpenOwned(const Entry& entry, const Wish& wish, OwnedFile& file) {
  OwnedFile opened = OpenBest(entry, wish.takes_readonly);
  Identity identity = {};
  if (const int error = IdentifyOpen(opened.descriptor, identity); error != 0) return error;
  if (const int error = CheckKind(identity, wish.needs_mode); error != 0) return error;
  if (!Own(opened, wish.shares)) return kInUse;
  if (const int error = CheckName(entry, identity); error != 0) return error;
  file = std::move(opened);
  return 0;
}

int CreateOwned(const NativePath& path, bool shares, OwnedFile& file) {
  OwnedFile created = CreateUnnamed(path, shares);
  if (!created.descriptor.IsOpen()) return CreateNamed(path, shares, file);
  if (!GiveName(created.descriptor, path)) {
    if (errno == EEXIST) return EEXIST;
    return CreateNamed(path, shares, file);  // it knows the true reason, or it works
  }
  file = std::move(created);
  return 0;
}

}  // namespace orzcore::platform
