// Paths with the host's separators.
#pragma once

#include <climits>

namespace orzcore::platform {

/// A path in which every `\` is replaced by the host's separator, `/`.
class NativePath {
 public:
  explicit NativePath(const char* path);
  NativePath(const NativePath&) = delete;
  NativePath& operator=(const NativePath&) = delete;

  /// 0; ENOENT for an empty path; ENAMETOOLONG for one that is too long, and `Text` is then empty.
  int Error() const { return error_; }
  const char* Text() const { return text_; }

 private:
  int error_ = 0;
  char text_[PATH_MAX];  // not cleared, which would make every open slower
};

/// A native path, split before its last component. The path must outlive this object.
class SplitPath {
 public:
  explicit SplitPath(const char* path);

  /// The text before the last component, with its separator; "." if there is none.
  const char* Directory() const { return directory_; }
  bool HasDirectory() const { return last_component_ != path_; }

  /// The last component, with the separators that follow it. A path that has only separators is one
  /// component.
  const char* LastComponent() const { return last_component_; }

 private:
  const char* path_;
  const char* last_component_;
  char directory_[PATH_MAX];
};

}  // namespace orzcore::platform
