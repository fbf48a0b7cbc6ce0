// Names in directories. The host's calls take a directory and a name in it.
#pragma once

#include <fcntl.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileIdentity.h"
#include "platform/posix/NativePath.h"

namespace orzcore::platform {

struct DirectoryEntry {
  int directory;     // a descriptor, or AT_FDCWD
  const char* name;  // looked up in it
};

/// The entry that a path leads to. Each call of the host looks the whole path up again.
inline DirectoryEntry ByPath(const NativePath& path) { return {AT_FDCWD, path.Text()}; }

/// The last component of a path, in a directory that is kept open.
///
/// If somebody renames a directory of a path, the path leads elsewhere at the next call. An entry
/// of a directory that is kept open stays the same entry. The path must outlive this object.
class HeldEntry {
 public:
  explicit HeldEntry(const NativePath& path);

  /// 0, or the host's reason: there is no such directory, or the path is empty or too long.
  int Error() const { return error_; }
  const DirectoryEntry& Get() const { return entry_; }

 private:
  int error_;
  Descriptor directory_;
  DirectoryEntry entry_ = {AT_FDCWD, ""};
};

/// Opens the directory of an entry, for `SyncDirectory`. If the user may not read the directory,
/// this succeeds, but `directory` is not open.
///
/// @return 0 or the host's error
int OpenDirectoryOf(const DirectoryEntry& entry, Descriptor& directory);

/// Writes the names in a directory to the disk. It does nothing if the descriptor is not open.
///
/// @return 0, also if the volume cannot sync a directory; else the host's error
int SyncDirectory(const Descriptor& directory);

/// Returns true if two entries are in the same directory. Their names must have no separators
/// inside.
bool IsSameDirectory(const DirectoryEntry& one, const DirectoryEntry& other);

/// Returns true if two entries are the same. Separators at the end of a name are ignored.
bool IsSameEntry(const DirectoryEntry& one, const DirectoryEntry& other);

/// Returns true if the entry leads to this file, directly or by a link.
bool IsNameOf(const DirectoryEntry& entry, const FileIdentity& file);

/// Returns true if the name ends in a separator. To the host, such a name means a directory.
bool EndsInSeparator(const DirectoryEntry& entry);

/// Returns true if the entry is a symbolic link, wherever it leads.
bool IsLink(const DirectoryEntry& entry);

}  // namespace orzcore::platform
