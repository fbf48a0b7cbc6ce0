// Files that are opened, or created, together with their share state.
#include "platform/posix/OwnedFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <utility>

#include "platform/posix/HostErrors.h"
#include "platform/posix/ShareState.h"
#include "platform/posix/Volume.h"

namespace platform {
namespace {

// O_NONBLOCK is for what turns out not to be a file: an open of it must not wait either.
constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kNewMode = 0666;  // less the user's mask
constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

// What the host says when it refuses to let this user write.
constexpr int kNoWritingErrors[] = {EACCES, EROFS, ETXTBSY, EPERM};

Descriptor Open(const char* path, int flags) {
  return Descriptor(Uninterrupted([&] { return ::open(path, kOpenFlags | flags, kNewMode); }));
}

// A descriptor that can write is wanted even by those who only read, since it locks for good.
OwnedFile OpenBest(const char* path, bool takes_readonly) {
  OwnedFile file = {Open(path, O_RDWR), true};
  if (file.descriptor.IsOpen() || !takes_readonly) return file;
  const bool is_no_writing = std::find(std::begin(kNoWritingErrors), std::end(kNoWritingErrors),
                                       errno) != std::end(kNoWritingErrors);
  return is_no_writing ? OwnedFile{Open(path, O_RDONLY), false} : std::move(file);
}

int CheckKind(const struct stat& status, bool needs_mode) {
  if (S_ISDIR(status.st_mode)) return EISDIR;
  if (!S_ISREG(status.st_mode)) return EACCES;
  // The host itself would let a privileged user write.
  return needs_mode && (status.st_mode & kAnyWriteBit) == 0 ? EACCES : 0;
}

// Before the share state was ours, the file could lose its name, or the name go to another file. One
// that is open keeps its number, so equal numbers mean the same file.
int CheckName(const char* path, const struct stat& opened) {
  struct stat named = {};
  if (::stat(path, &named) != 0) return errno == ENOENT ? kNameMoved : errno;
  return named.st_dev == opened.st_dev && named.st_ino == opened.st_ino ? 0 : kNameMoved;
}

// For a volume where a file is visible from its creation on, so that others may be faster.
int CreateNamed(const NativePath& path, bool shares, OwnedFile& file) {
  OwnedFile created = {Open(path.Text(), O_RDWR | O_CREAT | O_EXCL), true};
  struct stat status = {};
  if (!created.descriptor.IsOpen() || ::fstat(created.descriptor.Number(), &status) != 0) {
    return errno;
  }
  if (!TakeShareState(created.descriptor.Number(), true, shares)) return kInUse;
  if (const int error = CheckName(path.Text(), status); error != 0) return error;
  file = std::move(created);
  return 0;
}

OwnedFile CreateUnnamed(const NativePath& path, bool shares) {
  if (!gVolume.has_unnamed_files) return {};
  OwnedFile file = {Open(DirectoryPath(path).Text(), O_RDWR | O_TMPFILE), true};
  if (!file.descriptor.IsOpen()) return {};
  const bool is_taken = TakeShareState(file.descriptor.Number(), true, shares);
  return is_taken ? std::move(file) : OwnedFile{};
}

bool GiveName(const Descriptor& descriptor, const char* path) {
  char link[sizeof("/proc/self/fd/") + 3 * sizeof(int)];
  std::snprintf(link, sizeof(link), "/proc/self/fd/%d", descriptor.Number());
  return ::linkat(AT_FDCWD, link, AT_FDCWD, path, AT_SYMLINK_FOLLOW) == 0;
}

}  // namespace

int OpenOwned(const NativePath& path, const Wish& wish, OwnedFile& file) {
  OwnedFile opened = OpenBest(path.Text(), wish.takes_readonly);
  struct stat status = {};
  if (!opened.descriptor.IsOpen() || ::fstat(opened.descriptor.Number(), &status) != 0) {
    return errno;
  }
  if (const int error = CheckKind(status, wish.needs_mode); error != 0) return error;
  if (!TakeShareState(opened.descriptor.Number(), opened.is_writable, wish.shares)) return kInUse;
  if (const int error = CheckName(path.Text(), status); error != 0) return error;
  file = std::move(opened);
  return 0;
}

int CreateOwned(const NativePath& path, bool shares, OwnedFile& file) {
  OwnedFile created = CreateUnnamed(path, shares);
  if (!created.descriptor.IsOpen()) return CreateNamed(path, shares, file);
  if (!GiveName(created.descriptor, path.Text())) {
    if (errno == EEXIST) return EEXIST;
    return CreateNamed(path, shares, file);  // it knows the true reason, or it works
  }
  file = std::move(created);
  return 0;
}

}  // namespace platform
