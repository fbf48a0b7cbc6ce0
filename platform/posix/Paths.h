// Paths on their way to the host.
#pragma once

#include <climits>
#include <cstddef>

namespace platform {

/// A path with the host's separators.
class NativePath {
 public:
  explicit NativePath(const char* path);
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;

  /// 0, or the host's number for a path that is empty or too long. Such a path is empty here.
  int Error() const { return error_; }
  const char* Text() const { return text_; }

  /// The last component; empty if the path ends in a separator.
  const char* Name() const { return name_; }

 private:
  int error_ = 0;
  const char* name_ = text_;
  char text_[PATH_MAX];  // not cleared: an open would pay for it
};

/// The directory that the last component of a path is in.
class DirectoryPath {
 public:
  explicit DirectoryPath(const NativePath& path);
  const char* Text() const { return text_; }

 private:
  char text_[PATH_MAX];
};

/// Whether two paths name the same entry of the same directory.
bool IsSameEntry(const NativePath& one, const NativePath& other);

}  // namespace platform
