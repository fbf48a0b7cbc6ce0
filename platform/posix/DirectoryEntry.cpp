// Names in directories: opening the directory, syncing it, and comparing names.
#include "platform/posix/DirectoryEntry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace orzcore::platform {
namespace {

std::string_view BareName(const DirectoryEntry& entry) {
  std::string_view name(entry.name);
  while (!name.empty() && name.back() == '/') name.remove_suffix(1);
  return name;
}

}  // namespace

// A path without a directory needs no descriptor: it is looked up in the current directory, which
// does not change when somebody renames it. O_PATH works without permission to read the directory.
HeldEntry::HeldEntry(const NativePath& path) : error_(path.Error()) {
  if (error_ != 0) return;
  const SplitPath parts(path.Text());
  entry_.name = parts.LastComponent();
  if (!parts.HasDirectory()) return;
  directory_ = Descriptor(
      Uninterrupted([&] { return ::open(parts.Directory(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
  if (directory_.IsOpen()) {
    entry_.directory = directory_.Number();
  } else {
    error_ = errno;
  }
}

int OpenDirectoryOf(const DirectoryEntry& entry, Descriptor& directory) {
  const SplitPath parts(entry.name);
  constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  directory = Descriptor(
      Uninterrupted([&] { return ::openat(entry.directory, parts.Directory(), kFlags); }));
  return directory.IsOpen() || errno == EACCES ? 0 : errno;
}

int SyncDirectory(const Descriptor& directory) {
  if (!directory.IsOpen()) return 0;
  const int result = Uninterrupted([&] { return ::fsync(directory.Number()); });
  return result == 0 || errno == EINVAL || errno == EROFS ? 0 : errno;
}

bool IsSameDirectory(const DirectoryEntry& one, const DirectoryEntry& other) {
  struct stat first = {};
  struct stat second = {};
  return ::fstatat(one.directory, "", &first, AT_EMPTY_PATH) == 0 &&
         ::fstatat(other.directory, "", &second, AT_EMPTY_PATH) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

bool IsSameEntry(const DirectoryEntry& one, const DirectoryEntry& other) {
  return BareName(one) == BareName(other) && IsSameDirectory(one, other);
}

bool IsNameOf(const DirectoryEntry& entry, const FileIdentity& file) {
  FileIdentity named = {};
  return Identify(entry.directory, entry.name, named) == 0 && named.IsSameFile(file);
}

bool EndsInSeparator(const DirectoryEntry& entry) {
  return std::string_view(entry.name).ends_with('/');
}

bool IsLink(const DirectoryEntry& entry) {
  struct stat status = {};
  return ::fstatat(entry.directory, entry.name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISLNK(status.st_mode);
}

}  // namespace orzcore::platform
