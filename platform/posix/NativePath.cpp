// Paths with the host's separators.
#include "platform/posix/NativePath.h"

#include <cerrno>
#include <cstring>

namespace orzcore::platform {

NativePath::NativePath(const char* path) {
  std::size_t length = 0;
  for (; path[length] != '\0' && length < sizeof(text_) - 1; ++length) {
    text_[length] = path[length] == '\\' ? '/' : path[length];
  }
  if (path[length] != '\0') {
    error_ = ENAMETOOLONG;
    length = 0;
  } else if (length == 0) {
    error_ = ENOENT;
  }
  text_[length] = '\0';
}

SplitPath::SplitPath(const char* path) : path_(path), last_component_(path + std::strlen(path)) {
  while (last_component_ != path && last_component_[-1] == '/') --last_component_;
  while (last_component_ != path && last_component_[-1] != '/') --last_component_;
  const auto length = static_cast<std::size_t>(last_component_ - path);
  if (length == 0 || length >= sizeof(directory_)) {
    std::memcpy(directory_, ".", 2);
    return;
  }
  std::memcpy(directory_, path, length);
  directory_[length] = '\0';
}

}  // namespace orzcore::platform
