// New names for files, and the end of files.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/files.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/OwnedFile.h"
#include "platform/posix/Paths.h"
#include "platform/posix/Volume.h"

namespace platform {
namespace {

// Owns a file alone, which proves that nobody has it open.
int OwnAlone(const NativePath& path, bool needs_mode, OwnedFile& file) {
  if (path.Error() != 0) return path.Error();
  const Wish wish = {.shares = false, .takes_readonly = true, .needs_mode = needs_mode};
  return Repeat([&] { return OpenOwned(path, wish, file); },
                [](int error) { return error == kNameMoved; });
}

// For a volume that cannot rename without the risk of replacing; a second name never replaces.
int RenameByLink(const char* from, const char* to) {
  if (::link(from, to) != 0) return errno;
  if (::unlink(from) == 0) return 0;
  const int error = errno;
  ::unlink(to);
  return error;
}

int RenameWithoutLoss(const char* from, const char* to) {
  if (!gVolume.has_rename_without_loss) return RenameByLink(from, to);
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  return errno == EINVAL ? RenameByLink(from, to) : errno;
}

int Rename(const NativePath& from, const NativePath& to) {
  OwnedFile file;
  const int error = OwnAlone(from, false, file);
  if (error != 0 && error != EISDIR) return error;  // nobody has a directory open
  if (to.Error() != 0) return to.Error();
  if (IsSameEntry(from, to)) return 0;
  return RenameWithoutLoss(from.Text(), to.Text());
}

// Not the runtime's `remove`, which deletes empty directories too.
int Delete(const NativePath& path) {
  OwnedFile file;
  if (const int error = OwnAlone(path, true, file); error != 0) return error;
  return ::unlink(path.Text()) == 0 ? 0 : errno;
}

}  // namespace

int rename(const char* from, const char* to) {
  return RuntimeResult(Rename(NativePath(from), NativePath(to)));
}

int remove(const char* path) { return RuntimeResult(Delete(NativePath(path))); }

int unlink(const char* path) { return RuntimeResult(Delete(NativePath(path))); }

}  // namespace platform
