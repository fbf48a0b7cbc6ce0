// Paths on their way to the host.
#pragma once

#include <climits>
#include <cstddef>

namespace orzcore::platform {

/// A path with the host's separators.
class NativePath {
 public:
  explicit NativePath(const char* path);
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;

  /// 0, or the host's number for a path that is empty or too long. Such a path is empty here.
  int Error() const { return error_; }
  const char* Text() const { return text_; }

  /// What follows the last separator; empty if the path ends in one.
  const char* Name() const { return name_; }

  /// The last component, with all separators that follow it. A path of nothing but separators is
  /// one.
  const char* LastComponent() const;

 private:
  int error_ = 0;
  const char* name_ = text_;
  char text_[PATH_MAX];  // not cleared: an open would pay for it
};

/// The part of a path before a name in it: the directory that it is in.
class DirectoryPath {
 public:
  DirectoryPath(const NativePath& path, const char* name);
  const char* Text() const { return text_; }

 private:
  char text_[PATH_MAX];
};

}  // namespace orzcore::platform
