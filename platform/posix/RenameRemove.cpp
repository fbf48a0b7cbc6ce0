// Renaming and deleting files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "platform/files.h"
#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/FailedSync.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/NativePath.h"
#include "platform/posix/OpenOwned.h"
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {
namespace {

// Each operation first opens the directory of its entry and keeps it open. So it checks and changes
// the same entry, even if the path leads elsewhere in between.

// Opens a file that nobody else has open. While it is open, nobody else can rename or delete it.
int OpenAlone(const DirectoryEntry& entry, bool needs_write_bit, OwnedFile& file) {
  const OpenRequirements requirements = {
      .shares = false, .accepts_readonly = true, .needs_write_bit = needs_write_bit};
  return OpenOwned(entry, requirements, file);
}

// ENOENT after an interruption: the interrupted call has deleted the entry.
int Delete(const DirectoryEntry& entry, int flags) {
  return ErrorOfRepeated([&] { return ::unlinkat(entry.directory, entry.name, flags); }, ENOENT,
                         [] { return true; });
}

struct Renaming {
  DirectoryEntry from;
  DirectoryEntry to;
  FileIdentity identity;  // of the file or directory

  bool IsDone() const { return IsNameOf(to, identity); }
};

// Never replaces a file. Returns EINVAL if the volume cannot promise that, or if a directory would
// move into itself.
int RenameSafely(const Renaming& renaming) {
  if (!gVolumeAbilities.has_safe_rename) return EINVAL;
  const DirectoryEntry& from = renaming.from;
  const DirectoryEntry& to = renaming.to;
  return ErrorOfRepeated(
      [&] {
        return ::renameat2(from.directory, from.name, to.directory, to.name, RENAME_NOREPLACE);
      },
      ENOENT, [&] { return renaming.IsDone(); });
}

// `linkat` never replaces a file.
int RenameByLink(const Renaming& renaming) {
  const DirectoryEntry& from = renaming.from;
  const DirectoryEntry& to = renaming.to;
  const int link_error =
      ErrorOfRepeated([&] { return ::linkat(from.directory, from.name, to.directory, to.name, 0); },
                      EEXIST, [&] { return renaming.IsDone(); });
  if (link_error != 0) return link_error;
  const int error = Delete(from, 0);
  if (error != 0) Delete(to, 0);
  return error;
}

// Makes a new, empty directory and renames the other one over it. `mkdirat` never replaces a file,
// and the host renames a directory only over an empty directory.
int RenameByDirectory(const Renaming& renaming) {
  constexpr mode_t kPrivateMode = 0700;
  const DirectoryEntry& from = renaming.from;
  const DirectoryEntry& to = renaming.to;
  if (Uninterrupted([&] { return ::mkdirat(to.directory, to.name, kPrivateMode); }) != 0) {
    return errno;
  }
  const int error =
      ErrorOfRepeated([&] { return ::renameat(from.directory, from.name, to.directory, to.name); },
                      ENOENT, [&] { return renaming.IsDone(); });
  if (error != 0) Delete(to, AT_REMOVEDIR);
  return error;
}

int RenameFile(const Renaming& renaming) {
  const int error = RenameSafely(renaming);
  return error == EINVAL ? RenameByLink(renaming) : error;
}

// A directory has no share state. So since the check, its name may have gone to a file that
// somebody has open. With a separator after the name, the host renames only a directory.
int RenameDirectory(const Renaming& renaming) {
  char name[PATH_MAX];
  std::snprintf(name, sizeof(name), "%s/", renaming.from.name);
  Renaming directory = renaming;
  directory.from.name = name;
  int error = RenameSafely(directory);
  if (error == EINVAL) error = RenameByDirectory(directory);
  if (error == EINVAL) return EPERM;  // it would move into itself
  if (error != ENOTDIR || EndsInSeparator(renaming.from)) return error;
  return IsLink(renaming.from) ? RenameFile(renaming) : kNameMoved;
}

// Writes both names to the disk. The rename itself has succeeded, so a failure leaves a note for
// the next open of the file.
void SyncNames(const Renaming& renaming) {
  const auto sync = [&](const DirectoryEntry& entry) {
    Descriptor directory;
    int error = OpenDirectoryOf(entry, directory);
    if (error == 0) error = SyncDirectory(directory);
    if (error != 0) NoteFailedSync(renaming.identity, error);
  };
  sync(renaming.to);
  if (!IsSameDirectory(renaming.from, renaming.to)) sync(renaming.from);
}

int RenameOnce(const NativePath& from, const NativePath& to) {
  const HeldEntry source(from);
  if (source.Error() != 0) return source.Error();
  OwnedFile file;
  int error = OpenAlone(source.Get(), false, file);
  const bool is_directory = error == EISDIR;
  if (error != 0 && !is_directory) return error;

  const HeldEntry target(to);
  if (target.Error() != 0) return target.Error();
  const bool may_be_same = is_directory || !EndsInSeparator(target.Get());
  if (may_be_same && IsSameEntry(source.Get(), target.Get())) return 0;
  RefreshName(KindOfVolume(target.Get()), target.Get());

  Renaming renaming = {source.Get(), target.Get(), file.identity};
  if (is_directory) {
    error = Identify(renaming.from.directory, renaming.from.name, renaming.identity);
    if (error == 0) error = RenameDirectory(renaming);
  } else {
    error = RenameFile(renaming);
  }
  if (error == 0) SyncNames(renaming);
  return error;
}

// Does not call the C library's `remove`, which also deletes empty directories.
int DeleteOnce(const NativePath& path) {
  const HeldEntry entry(path);
  if (entry.Error() != 0) return entry.Error();
  OwnedFile file;
  const int error = OpenAlone(entry.Get(), true, file);
  return error == 0 ? Delete(entry.Get(), 0) : error;
}

template <typename Attempt>
int RunWithRetries(Attempt attempt) {
  TakeFailedSync();
  return RuntimeResult(RetryWhile(attempt, [](int error) { return error == kNameMoved; }));
}

}  // namespace

int rename(const char* from, const char* to) {
  const NativePath source(from);
  const NativePath target(to);
  return RunWithRetries([&] { return RenameOnce(source, target); });
}

int remove(const char* path) {
  const NativePath native(path);
  return RunWithRetries([&] { return DeleteOnce(native); });
}

int unlink(const char* path) { return remove(path); }

}  // namespace orzcore::platform
