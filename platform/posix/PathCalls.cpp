// Calls on paths that open no file.
#include <unistd.h>

#include <cstring>

#include "platform/files.h"
#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/NativePath.h"
#include "platform/posix/NetworkVolume.h"

namespace orzcore::platform {

// On a network volume, the host may have cached the name of a file that is gone.
int access(const char* path, int mode) {
  const NativePath native(path);
  const int result = ::access(native.Text(), mode);
  const VolumeKind kind = result == 0 ? KindOfVolume(ByPath(native)) : VolumeKind::kLocal;
  if (kind == VolumeKind::kLocal) return result;
  RefreshName(kind, ByPath(native));
  return ::access(native.Text(), mode);
}

int OemToCharA(const char* source, char* target) {
  std::memmove(target, source, std::strlen(source) + 1);
  return 1;
}

}  // namespace orzcore::platform
