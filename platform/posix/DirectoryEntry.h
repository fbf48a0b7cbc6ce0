// Entries of directories, which the host's calls take as a directory and a name.
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

/// The entry that a path leads to at the moment of each call.
inline DirectoryEntry ByPath(const NativePath& path) { return {AT_FDCWD, path.Text()}; }

/// The last component of a path, in a directory that is kept open.
///
/// A path may lead elsewhere from one call to the next, when a directory in it is renamed. An entry
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

/// Forces the names in a directory to the disk. It does nothing if the descriptor is not open.
///
/// @return 0, also if the volume cannot do it; else the host's error
int SyncDirectory(const Descriptor& directory);

/// Whether two entries are the same. Separators at the end of a name are ignored.
bool IsSameEntry(const DirectoryEntry& one, const DirectoryEntry& other);

/// Whether the entry names a file, itself or by a link.
bool IsNameOf(const DirectoryEntry& entry, const FileIdentity& file);

/// Whether the name ends in a separator. The host accepts such a name for a directory only.
bool EndsInSeparator(const DirectoryEntry& entry);

/// Whether the entry is a symbolic link. Where the link leads makes no difference.
bool IsLink(const DirectoryEntry& entry);

}  // namespace orzcore::platform
