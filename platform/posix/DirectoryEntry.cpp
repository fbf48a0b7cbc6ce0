// Entries of directories.
#include "platform/posix/DirectoryEntry.h"

#include <sys/stat.h>

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

// A path without a directory needs no descriptor: the current directory stays the same by itself.
// O_PATH needs no permission to read the directory.
HeldEntry::HeldEntry(const NativePath& path) : error_(path.Error()) {
  if (error_ != 0) return;
  entry_.name = path.LastComponent();
  if (entry_.name == path.Text()) return;
  const DirectoryPath directory(path, entry_.name);
  directory_ = Descriptor(
      Uninterrupted([&] { return ::open(directory.Text(), O_PATH | O_DIRECTORY | O_CLOEXEC); }));
  if (directory_.IsOpen()) {
    entry_.directory = directory_.Number();
  } else {
    error_ = errno;
  }
}

bool IsSameEntry(const DirectoryEntry& one, const DirectoryEntry& other) {
  struct stat first = {};
  struct stat second = {};
  return BareName(one) == BareName(other) &&
         ::fstatat(one.directory, "", &first, AT_EMPTY_PATH) == 0 &&
         ::fstatat(other.directory, "", &second, AT_EMPTY_PATH) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
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
