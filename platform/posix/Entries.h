// Entries of directories: what the host's calls act on.
#pragma once

#include <fcntl.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/Paths.h"

namespace orzcore::platform {

/// A name, and the directory that it is looked up in.
struct Entry {
  int directory;
  const char* name;
};

/// What a path names at the moment of each call.
inline Entry ByPath(const NativePath& path) { return {AT_FDCWD, path.Text()}; }

/// The last component of a path, in a directory that is held.
///
/// A path may lead elsewhere from one call to the next, when directories in it are renamed; what was
/// found out about the entry of a held directory stays true of it. The path must outlive this.
class HeldEntry {
 public:
  explicit HeldEntry(const NativePath& path);

  /// 0, or the host's reason: there is no such directory, or the path is empty or too long.
  int Error() const { return error_; }
  const Entry& Get() const { return entry_; }

 private:
  int error_;
  Descriptor directory_;
  Entry entry_ = {AT_FDCWD, ""};
};

/// Whether two entries are the same one. Separators that follow the names make no difference.
bool IsSameEntry(const Entry& one, const Entry& other);

/// Whether a separator follows the name. The host takes such a name for a directory's alone.
bool EndsInSeparator(const Entry& entry);

/// Whether the entry is a symbolic link, whatever that leads to.
bool IsLink(const Entry& entry);

}  // namespace orzcore::platform
