// Paths with the host's separators.
#pragma once

#include <climits>
#include <cstddef>

namespace orzcore::platform {

/// A path in which every `\` and `/` has become the host's separator.
class NativePath {
 public:
  explicit NativePath(const char* path);
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;

  /// 0, or the host's number for a path that is empty or too long. `Text` is then empty.
  int Error() const { return error_; }
  const char* Text() const { return text_; }

  /// The text after the last separator; empty if the path ends in one.
  const char* Name() const { return name_; }

  /// The last component, with the separators that follow it. A path of separators alone is one
  /// component.
  const char* LastComponent() const;

 private:
  int error_ = 0;
  const char* name_ = text_;
  char text_[PATH_MAX];  // not cleared, which would make every open slower
};

/// The directory of a path: the text before `name`, which points into the path.
class DirectoryPath {
 public:
  DirectoryPath(const NativePath& path, const char* name);
  const char* Text() const { return text_; }

 private:
  char text_[PATH_MAX];
};

}  // namespace orzcore::platform
