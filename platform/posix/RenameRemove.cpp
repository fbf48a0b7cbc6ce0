// New names for files, and the end of files.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/files.h"
#include "platform/posix/Entries.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/OwnedFile.h"
#include "platform/posix/Paths.h"
#include "platform/posix/Volume.h"

namespace platform {
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

// For a volume that cannot rename without the risk of replacing; a second name never replaces.
int RenameByLink(const Entry& from, const Entry& to) {
  if (::linkat(from.directory, from.name, to.directory, to.name, 0) != 0) return errno;
  const int error = Delete(from, 0);
  if (error != 0) Delete(to, 0);
  return error;
}

int RenameWithoutLoss(const Entry& from, const Entry& to) {
  if (!gVolume.has_rename_without_loss) return RenameByLink(from, to);
  constexpr unsigned kFlags = RENAME_NOREPLACE;
  if (::renameat2(from.directory, from.name, to.directory, to.name, kFlags) == 0) return 0;
  return errno == EINVAL ? RenameByLink(from, to) : errno;
}

int RenameOnce(const NativePath& from, const NativePath& to) {
  const HeldEntry source(from);
  if (source.Error() != 0) return source.Error();
  OwnedFile file;
  const int error = OwnAlone(source.Get(), false, file);
  if (error != 0 && error != EISDIR) return error;  // nobody has a directory open

  const HeldEntry target(to);
  if (target.Error() != 0) return target.Error();
  if (IsSameEntry(source.Get(), target.Get())) return 0;
  return RenameWithoutLoss(source.Get(), target.Get());
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

}  // namespace platform
