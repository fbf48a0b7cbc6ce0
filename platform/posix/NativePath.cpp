// Paths with the host's separators, and two calls on paths.
#include "platform/posix/NativePath.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/files.h"

namespace orzcore::platform {

NativePath::NativePath(const char* path) {
  std::size_t length = 0;
  for (; path[length] != '\0' && length < sizeof(text_) - 1; ++length) {
    const bool separates = path[length] == '/' || path[length] == '\\';
    text_[length] = separates ? '/' : path[length];
    if (separates) name_ = text_ + length + 1;
  }
  if (path[length] != '\0') {
    error_ = ENAMETOOLONG;
    length = 0;
    name_ = text_;
  } else if (length == 0) {
    error_ = ENOENT;
  }
  text_[length] = '\0';
}

const char* NativePath::LastComponent() const {
  const char* start = name_;
  if (*start != '\0') return start;
  while (start != text_ && start[-1] == '/') --start;
  while (start != text_ && start[-1] != '/') --start;
  return start;
}

DirectoryPath::DirectoryPath(const NativePath& path, const char* name) {
  const auto length = static_cast<std::size_t>(name - path.Text());
  if (length == 0) {
    std::memcpy(text_, ".", 2);
    return;
  }
  std::memcpy(text_, path.Text(), length);  // with the separator, which may be all there is
  text_[length] = '\0';
}

int access(const char* path, int mode) { return ::access(NativePath(path).Text(), mode); }

int OemToCharA(const char* source, char* target) {
  std::memmove(target, source, std::strlen(source) + 1);
  return 1;
}

}  // namespace orzcore::platform
