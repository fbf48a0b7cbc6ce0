// Opening and creating files together with their share state.
#include "platform/posix/OpenOwned.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <utility>

#include "platform/posix/HostErrors.h"
#include "platform/posix/HostLocks.h"
#include "platform/posix/ShareState.h"
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {
namespace {

// O_NONBLOCK: an open of a pipe must not wait for the other end of the pipe.
constexpr int kOpenFlags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
constexpr mode_t kNewMode = 0666;  // the host removes the bits of the user's umask
constexpr mode_t kOwnerBits = S_IRUSR | S_IWUSR;
constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kPermissionBits = 07777;

// The errors of the host that mean: this user may not write to the file.
constexpr int kNoWritingErrors[] = {EACCES, EROFS, ETXTBSY, EPERM};

// A path that leads to an open file, whatever its name is now.
struct PathOfOpen {
  explicit PathOfOpen(int number) { std::snprintf(text, sizeof(text), "/proc/self/fd/%d", number); }
  char text[sizeof("/proc/self/fd/") + 3 * sizeof(int)];
};

// If the program has closed a standard stream, the next open gets its number, and the program's
// messages would go into the file.
int MoveOffStandardStreams(int number) {
  if (number < 0 || number > STDERR_FILENO) return number;
  const int higher = ::fcntl(number, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  ::close(number);
  errno = error;
  return higher;
}

Descriptor OpenDescriptor(const DirectoryEntry& entry, int flags) {
  return Descriptor(MoveOffStandardStreams(Uninterrupted(
      [&] { return ::openat(entry.directory, entry.name, kOpenFlags | flags, kNewMode); })));
}

// Even a user who only wants to read gets a writable descriptor if the file's mode allows it:
// exclusive locks need one.
OwnedFile OpenWritableIfAllowed(const DirectoryEntry& entry, bool accepts_readonly) {
  OwnedFile file(OpenDescriptor(entry, O_RDWR), true);
  if (file.descriptor.IsOpen() || !accepts_readonly) return file;
  const bool is_no_writing =
      std::ranges::find(kNoWritingErrors, errno) != std::end(kNoWritingErrors);
  return is_no_writing ? OwnedFile(OpenDescriptor(entry, O_RDONLY), false) : std::move(file);
}

// Stores the identity of an open file and the kind of its volume. If the open has failed, returns
// the reason, which is in `errno`. EAGAIN: another program has a lease on the file.
int IdentifyOpen(OwnedFile& file) {
  if (!file.descriptor.IsOpen()) return errno == EAGAIN ? kInUse : errno;
  const int error = Identify(file.Number(), "", file.identity);
  if (error == 0) file.volume = KindOfVolume(file.Number(), file.identity.device_major);
  return error;
}

// Lets the user have a handle of the server alone. If users on this machine share one, a lock that
// a killed user was just taking stays as long as any of them has the file open.
//
// The host shares the handle of the newest open of a file with an open that has the same flags. The
// newest is `file`, so that an open with another flag gets a new handle, unless somebody else does
// the same at this moment. Without O_CREAT, O_EXCL has no other effect on a regular file.
void LeaveSharedHandle(OwnedFile& file) {
  const int flags = O_EXCL | (file.is_writable ? O_RDWR : O_RDONLY);
  Descriptor own = OpenDescriptor({AT_FDCWD, PathOfOpen(file.Number()).text}, flags);
  if (own.IsOpen()) file.descriptor = std::move(own);
}

int CheckKind(const OwnedFile& file, bool needs_write_bit) {
  const mode_t mode = file.identity.mode;
  if (S_ISDIR(mode)) return EISDIR;
  if (!S_ISREG(mode)) return EACCES;
  if (IsBeingCreated(file.volume, mode)) return EACCES;  // `OpenOwned` tries again
  // The host itself would let root write to a read-only file.
  return needs_write_bit && (mode & kAnyWriteBit) == 0 ? EACCES : 0;
}

// Until the share state was taken, somebody could delete the file or give its name to another file.
// No other file gets the inode number of an open file, so equal numbers mean the same file.
int CheckName(const DirectoryEntry& entry, const OwnedFile& file) {
  RefreshName(file.volume, entry);
  FileIdentity named = {};
  if (const int error = Identify(entry.directory, entry.name, named); error != 0) {
    return error == ENOENT ? kNameMoved : error;
  }
  return named.IsSameFile(file.identity) && named.link_count != 0 ? 0 : kNameMoved;
}

int TakeShareStateAndCheckName(OwnedFile& file, bool shares, const DirectoryEntry& entry) {
  const int error = TakeShareState(file, shares);
  return error == 0 ? CheckName(entry, file) : error;
}

// The user's umask may remove the owner's bits from a new file. Its owner could then not open it
// again.
void GiveOwnerBits(const OwnedFile& file) {
  const mode_t mode = file.identity.mode & kPermissionBits;
  if ((mode & kOwnerBits) != kOwnerBits) ::fchmod(file.Number(), mode | kOwnerBits);
}

// For a volume that cannot create a file without a name. Somebody else may open the new file before
// this user has the share state.
int CreateNamed(const NativePath& path, bool shares, OwnedFile& file) {
  const HeldEntry entry(path);  // so that both steps use the same directory
  if (entry.Error() != 0) return entry.Error();
  OwnedFile created(OpenDescriptor(entry.Get(), O_RDWR | O_CREAT | O_EXCL), true);
  if (const int error = IdentifyOpen(created); error != 0) return error;
  GiveOwnerBits(created);
  const int error = TakeShareStateAndCheckName(created, shares, entry.Get());
  if (error != 0) return error == kInUse ? EEXIST : error;  // somebody was first
  file = std::move(created);
  return 0;
}

// Gives a file without a name the name that the path says. It never replaces a file.
int GiveName(const OwnedFile& file, const NativePath& path) {
  const PathOfOpen link(file.Number());
  return ErrorOfRepeated(
      [&] { return ::linkat(AT_FDCWD, link.text, AT_FDCWD, path.Text(), AT_SYMLINK_FOLLOW); },
      EEXIST, [&] { return IsNameOf(ByPath(path), file.identity); });
}

// Returns 0; EEXIST if the path exists; or another number, for example if the volume cannot do
// this.
int CreateUnnamed(const NativePath& path, bool shares, OwnedFile& file) {
  if (!gVolumeAbilities.has_unnamed_files) return EOPNOTSUPP;
  const SplitPath parts(path.Text());
  OwnedFile created(OpenDescriptor({AT_FDCWD, parts.Directory()}, O_RDWR | O_TMPFILE), true);
  // This open does not look the name up, so it must not report EEXIST, which means that it exists.
  if (const int error = IdentifyOpen(created); error != 0) return error == EEXIST ? EIO : error;
  GiveOwnerBits(created);
  if (const int error = TakeShareState(created, shares); error != 0) return error;
  if (const int error = GiveName(created, path); error != 0) return error;
  file = std::move(created);
  return 0;
}

int CreateOnce(const NativePath& path, bool shares, OwnedFile& file) {
  const int error = CreateUnnamed(path, shares, file);
  // After any other failure, the second way works or finds the true reason.
  return error == 0 || error == EEXIST ? error : CreateNamed(path, shares, file);
}

int OpenOnce(const DirectoryEntry& entry, const OpenRequirements& requirements, OwnedFile& file) {
  OwnedFile opened = OpenWritableIfAllowed(entry, requirements.accepts_readonly);
  if (const int error = IdentifyOpen(opened); error != 0) return error;
  if (const int error = CheckKind(opened, requirements.needs_write_bit); error != 0) return error;
  if (SharesServerHandles(opened.volume)) LeaveSharedHandle(opened);
  const int error = TakeShareStateAndCheckName(opened, requirements.shares, entry);
  if (error != 0) return error;
  file = std::move(opened);
  return 0;
}

// ESTALE: the host's cache had an old name, of a file that is gone from a network volume.
int StaleMeansMoved(int error) { return error == ESTALE ? kNameMoved : error; }

}  // namespace

bool OwnedFile::Close() {
  if (descriptor.IsOpen() && has_locks && ReleasesLocksLate(volume)) UnlockAll(*this);
  return descriptor.Close();
}

int OpenOwned(const DirectoryEntry& entry, const OpenRequirements& requirements, OwnedFile& file) {
  const auto attempt = [&] { return OpenOnce(entry, requirements, file); };
  int error = attempt();
  if (error == ENOENT || error == EACCES || error == ESTALE || error == kNameMoved) {
    error = RetryOnNetwork(entry, error, attempt);
  }
  return StaleMeansMoved(error);
}

int CreateOwned(const NativePath& path, bool shares, OwnedFile& file) {
  const auto attempt = [&] { return CreateOnce(path, shares, file); };
  int error = attempt();
  if (error == EEXIST) error = RetryOnNetwork(ByPath(path), error, attempt);
  return StaleMeansMoved(error);
}

}  // namespace orzcore::platform
