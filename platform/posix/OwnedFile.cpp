// Files that are opened or created together with their share state.
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
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {
namespace {

// O_NONBLOCK: if the path does not name a file, the open must not wait either.
constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kNewMode = 0666;  // without the bits of the user's mask
constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

// The host's errors if this user may not write.
constexpr int kNoWritingErrors[] = {EACCES, EROFS, ETXTBSY, EPERM};

// If a file took the number of a closed standard stream, the program's messages would go into it.
int MoveOffStandardStreams(int number) {
  if (number < 0 || number > STDERR_FILENO) return number;
  const int higher = ::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  ::close(number);
  errno = error;
  return higher;
}

Descriptor Open(const DirectoryEntry& entry, int flags) {
  return Descriptor(MoveOffStandardStreams(Uninterrupted(
      [&] { return ::openat(entry.directory, entry.name, kOpenFlags | flags, kNewMode); })));
}

// Even a user who only reads gets a writable descriptor if he may, since exclusive locks need one.
OwnedFile OpenBest(const DirectoryEntry& entry, bool accepts_readonly) {
  OwnedFile file = {Open(entry, O_RDWR), true};
  if (file.descriptor.IsOpen() || !accepts_readonly) return file;
  const bool is_no_writing = std::find(std::begin(kNoWritingErrors), std::end(kNoWritingErrors),
                                       errno) != std::end(kNoWritingErrors);
  return is_no_writing ? OwnedFile{Open(entry, O_RDONLY), false} : std::move(file);
}

// What an open needs to know of a file. It does not ask for the times: after the host has reported
// them, the next write changes them, and a flush has more to force out.
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

// For a sandbox that forbids `statx`.
int IdentifyByStat(int descriptor, const char* path, int flags, Identity& identity) {
  struct stat status = {};
  const int result = Uninterrupted([&] { return ::fstatat(descriptor, path, &status, flags); });
  if (result != 0) return errno;
  identity = {status.st_mode, static_cast<std::uint32_t>(status.st_nlink), status.st_ino,
              major(status.st_dev), minor(status.st_dev)};
  return 0;
}

// Identifies what a path names, or the open file itself if the path is empty.
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

// `errno` is that of the open. EAGAIN: another program has a lease on the file. ESTALE: a network
// volume finds that the name went to another file.
int IdentifyOpen(const Descriptor& descriptor, Identity& identity) {
  if (descriptor.IsOpen()) return Identify(descriptor.Number(), "", identity);
  if (errno == EAGAIN) return kInUse;
  return errno == ESTALE ? kNameMoved : errno;
}

int CheckKind(const Identity& identity, bool needs_write_bit) {
  if (S_ISDIR(identity.mode)) return EISDIR;
  if (!S_ISREG(identity.mode)) return EACCES;
  // The host itself lets a privileged user write.
  return needs_write_bit && (identity.mode & kAnyWriteBit) == 0 ? EACCES : 0;
}

// Takes the share state. A volume without locks refuses it to nobody.
bool ClaimShareState(OwnedFile& file, bool shares) {
  const LockResult result = TakeShareState(file.descriptor.Number(), file.is_writable, shares);
  file.has_locks = result == LockResult::kDone;
  return file.has_locks || result == LockResult::kNoLocks;
}

// Before the share state was taken, the file could lose its name, or its name could go to another
// file. An open file keeps its number, so equal numbers mean the same file.
int CheckName(const DirectoryEntry& entry, const Identity& opened) {
  Identity named = {};
  if (const int error = Identify(entry.directory, entry.name, named); error != 0) {
    return error == ENOENT || error == ESTALE ? kNameMoved : error;
  }
  return named.IsSameFile(opened) && named.names != 0 ? 0 : kNameMoved;
}

// For a volume that cannot create a file without a name: others may open the file first.
int CreateNamed(const NativePath& path, bool shares, OwnedFile& file) {
  const HeldEntry entry(path);  // so that both steps use the same directory
  if (entry.Error() != 0) return entry.Error();
  OwnedFile created = {Open(entry.Get(), O_RDWR | O_CREAT | O_EXCL), true};
  Identity identity = {};
  if (const int error = IdentifyOpen(created.descriptor, identity); error != 0) return error;
  if (!ClaimShareState(created, shares)) return EEXIST;  // somebody was first, and owns it
  if (const int error = CheckName(entry.Get(), identity); error != 0) return error;
  file = std::move(created);
  return 0;
}

OwnedFile CreateUnnamed(const NativePath& path, bool shares) {
  if (!gVolumeAbilities.has_unnamed_files) return {};
  const DirectoryPath directory(path, path.Name());
  OwnedFile file = {Open({AT_FDCWD, directory.Text()}, O_RDWR | O_TMPFILE), true};
  if (!file.descriptor.IsOpen()) return {};
  return ClaimShareState(file, shares) ? std::move(file) : OwnedFile{};
}

// Names the file in the directory that the path leads to now. It never replaces a file.
bool GiveName(const Descriptor& descriptor, const NativePath& path) {
  char link[sizeof("/proc/self/fd/") + 3 * sizeof(int)];
  std::snprintf(link, sizeof(link), "/proc/self/fd/%d", descriptor.Number());
  return ::linkat(AT_FDCWD, link, AT_FDCWD, path.Text(), AT_SYMLINK_FOLLOW) == 0;
}

}  // namespace

int OpenOwned(const DirectoryEntry& entry, const OpenRequirements& requirements, OwnedFile& file) {
  OwnedFile opened = OpenBest(entry, requirements.accepts_readonly);
  Identity identity = {};
  if (const int error = IdentifyOpen(opened.descriptor, identity); error != 0) return error;
  if (const int error = CheckKind(identity, requirements.needs_write_bit); error != 0) return error;
  if (!ClaimShareState(opened, requirements.shares)) return kInUse;
  if (const int error = CheckName(entry, identity); error != 0) return error;
  file = std::move(opened);
  return 0;
}

int CreateOwned(const NativePath& path, bool shares, OwnedFile& file) {
  OwnedFile created = CreateUnnamed(path, shares);
  if (!created.descriptor.IsOpen()) return CreateNamed(path, shares, file);
  if (!GiveName(created.descriptor, path)) {
    if (errno == EEXIST) return EEXIST;
    return CreateNamed(path, shares, file);  // works, or finds the true reason
  }
  file = std::move(created);
  return 0;
}

}  // namespace orzcore::platform
