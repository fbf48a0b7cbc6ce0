// Renaming and deleting files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "platform/files.h"
#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/NativePath.h"
#include "platform/posix/OwnedFile.h"
#include "platform/posix/VolumeAbilities.h"

namespace orzcore::platform {
namespace {

// Each operation first opens the directory of its entry and keeps it open. So the entry that it
// checks is the entry that it then changes, even if the path leads elsewhere by then.

// Opens a file that nobody else has open. While it is open, nobody else can rename or delete it.
int OpenAlone(const DirectoryEntry& entry, bool needs_write_bit, OwnedFile& file) {
  const OpenRequirements requirements = {
      .shares = false, .accepts_readonly = true, .needs_write_bit = needs_write_bit};
  return OpenOwned(entry, requirements, file);
}

int Delete(const DirectoryEntry& entry, int flags) {
  return ::unlinkat(entry.directory, entry.name, flags) == 0 ? 0 : errno;
}

// Never replaces a file. EINVAL: the volume cannot promise that, or a directory would move into
// itself.
int RenameSafely(const DirectoryEntry& from, const DirectoryEntry& to) {
  if (!gVolumeAbilities.has_safe_rename) return EINVAL;
  constexpr unsigned kFlags = RENAME_NOREPLACE;
  return ::renameat2(from.directory, from.name, to.directory, to.name, kFlags) == 0 ? 0 : errno;
}

// `linkat` never replaces a file.
int RenameByLink(const DirectoryEntry& from, const DirectoryEntry& to) {
  if (::linkat(from.directory, from.name, to.directory, to.name, 0) != 0) return errno;
  const int error = Delete(from, 0);
  if (error != 0) Delete(to, 0);
  return error;
}

// `mkdirat` never replaces a file, and a directory can only replace an empty directory.
int RenameByDirectory(const DirectoryEntry& from, const DirectoryEntry& to) {
  constexpr mode_t kPrivateMode = 0700;
  if (::mkdirat(to.directory, to.name, kPrivateMode) != 0) return errno;
  if (::renameat(from.directory, from.name, to.directory, to.name) == 0) return 0;
  const int error = errno;
  Delete(to, AT_REMOVEDIR);
  return error;
}

int RenameFile(const DirectoryEntry& from, const DirectoryEntry& to) {
  const int error = RenameSafely(from, to);
  return error == EINVAL ? RenameByLink(from, to) : error;
}

// A directory has no share state, so its name may have gone to a file by now, which may be open. With
// a separator after the name, the host accepts a directory only.
int RenameDirectory(const DirectoryEntry& from, const DirectoryEntry& to) {
  char name[PATH_MAX];
  std::snprintf(name, sizeof(name), "%s/", from.name);
  const DirectoryEntry directory = {from.directory, name};
  int error = RenameSafely(directory, to);
  if (error == EINVAL) error = RenameByDirectory(directory, to);
  if (error == EINVAL) return EPERM;  // into itself
  if (error != ENOTDIR || EndsInSeparator(from)) return error;
  return IsLink(from) ? RenameFile(from, to) : kNameMoved;
}

int RenameOnce(const NativePath& from, const NativePath& to) {
  const HeldEntry source(from);
  if (source.Error() != 0) return source.Error();
  OwnedFile file;
  const int error = OpenAlone(source.Get(), false, file);
  const bool is_directory = error == EISDIR;
  if (error != 0 && !is_directory) return error;

  const HeldEntry target(to);
  if (target.Error() != 0) return target.Error();
  const bool may_be_same = is_directory || !EndsInSeparator(target.Get());
  if (may_be_same && IsSameEntry(source.Get(), target.Get())) return 0;
  return is_directory ? RenameDirectory(source.Get(), target.Get())
                      : RenameFile(source.Get(), target.Get());
}

// Not by the runtime's `remove`, which also deletes empty directories.
int DeleteOnce(const NativePath& path) {
  const HeldEntry entry(path);
  if (entry.Error() != 0) return entry.Error();
  OwnedFile file;
  const int error = OpenAlone(entry.Get(), true, file);
  return error == 0 ? Delete(entry.Get(), 0) : error;
}

template <typename Attempt>
int ResultOf(Attempt attempt) {
  return RuntimeResult(RetryWhile(attempt, [](int error) { return error == kNameMoved; }));
}

}  // namespace

int rename(const char* from, const char* to) {
  const NativePath source(from);
  const NativePath target(to);
  return ResultOf([&] { return RenameOnce(source, target); });
}

int remove(const char* path) {
  const NativePath native(path);
  return ResultOf([&] { return DeleteOnce(native); });
}

int unlink(const char* path) { return remove(path); }

}  // namespace orzcore::platform
