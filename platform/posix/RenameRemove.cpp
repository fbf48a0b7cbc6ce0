// New names for files, and the end of files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "platform/files.h"
#include "platform/posix/Entries.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/OwnedFile.h"
#include "platform/posix/Paths.h"
#include "platform/posix/Volume.h"

namespace orzcore::platform {
namespace {

// Every deed holds the directory first: what is proved of an entry there is proved of the entry that
// the deed then changes, whatever becomes of the path.

// Owns a file alone, which proves that nobody has it open, and keeps others from moving its entry.
int OwnAlone(const Entry& entry, bool needs_mode, OwnedFile& file) {
  const Wish wish = {.shares = false, .takes_readonly = true, .needs_mode = needs_mode};
  return OpenOwned(entry, wish, file);
}

int Delete(const Entry& entry, int flags) {
  return ::unlinkat(entry.directory, entry.name, flags) == 0 ? 0 : errno;
}

// Refuses to replace. EINVAL: the volume cannot promise that, or a directory would go into itself.
int RenameWithoutLoss(const Entry& from, const Entry& to) {
  if (!gVolume.has_rename_without_loss) return EINVAL;
  constexpr unsigned kFlags = RENAME_NOREPLACE;
  return ::renameat2(from.directory, from.name, to.directory, to.name, kFlags) == 0 ? 0 : errno;
}

// A second name never replaces.
int RenameByLink(const Entry& from, const Entry& to) {
  if (::linkat(from.directory, from.name, to.directory, to.name, 0) != 0) return errno;
  const int error = Delete(from, 0);
  if (error != 0) Delete(to, 0);
  return error;
}

// A new directory never replaces, and a directory can replace nothing but an empty one.
int RenameByDirectory(const Entry& from, const Entry& to) {
  constexpr mode_t kPrivateMode = 0700;
  if (::mkdirat(to.directory, to.name, kPrivateMode) != 0) return errno;
  if (::renameat(from.directory, from.name, to.directory, to.name) == 0) return 0;
  const int error = errno;
  Delete(to, AT_REMOVEDIR);
  return error;
}

int RenameFile(const Entry& from, const Entry& to) {
  const int error = RenameWithoutLoss(from, to);
  return error == EINVAL ? RenameByLink(from, to) : error;
}

// Nobody can own a directory, and so its name may have gone to a file by now, which may be open. The
// host takes a name that a separator follows for a directory's alone.
int RenameDirectory(const Entry& from, const Entry& to) {
  char name[PATH_MAX];
  std::snprintf(name, sizeof(name), "%s/", from.name);
  const Entry directory = {from.directory, name};
  int error = RenameWithoutLoss(directory, to);
  if (error == EINVAL) error = RenameByDirectory(directory, to);
  if (error == EINVAL) return EPERM;  // into itself
  if (error != ENOTDIR || EndsInSeparator(from)) return error;
  return IsLink(from) ? RenameFile(from, to) : kNameMoved;
}

int RenameOnce(const NativePath& from, const NativePath& to) {
  const HeldEntry source(from);
  if (source.Error() != 0) return source.Error();
  OwnedFile file;
  const int error = OwnAlone(source.Get(), false, file);
  const bool is_directory = error == EISDIR;
  if (error != 0 && !is_directory) return error;

  const HeldEntry target(to);
  if (target.Error() != 0) return target.Error();
  const bool may_be_same = is_directory || !EndsInSeparator(target.Get());
  if (may_be_same && IsSameEntry(source.Get(), target.Get())) return 0;
  return is_directory ? RenameDirectory(source.Get(), target.Get())
                      : RenameFile(source.Get(), target.Get());
}

// Not the runtime's `remove`, which deletes empty directories too.
int DeleteOnce(const NativePath& path) {
  const HeldEntry entry(path);
  if (entry.Error() != 0) return entry.Error();
  OwnedFile file;
  const int error = OwnAlone(entry.Get(), true, file);
  return error == 0 ? Delete(entry.Get(), 0) : error;
}

template <typename Attempt>
int ResultOf(Attempt attempt) {
  return RuntimeResult(Repeat(attempt, [](int error) { return error == kNameMoved; }));
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
