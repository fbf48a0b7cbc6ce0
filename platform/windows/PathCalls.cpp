// The calls on paths that open no file.
#include <algorithm>
#include <iterator>

#include "platform/files.h"
#include "platform/windows/FailedFlush.h"

namespace orzcore::platform {
namespace {

struct RuntimeRow {
  DWORD system;
  RuntimeError runtime;
};

constexpr RuntimeRow kRuntimeErrors[] = {
    {ERROR_FILE_NOT_FOUND, kRuntimeNoSuchFile},
    {ERROR_PATH_NOT_FOUND, kRuntimeNoSuchFile},
    {ERROR_INVALID_NAME, kRuntimeNoSuchFile},
    {ERROR_BAD_PATHNAME, kRuntimeNoSuchFile},
    {ERROR_DIRECTORY, kRuntimeNoSuchFile},
    {ERROR_FILENAME_EXCED_RANGE, kRuntimeNoSuchFile},
    {ERROR_TOO_MANY_OPEN_FILES, kRuntimeTooManyOpenFiles},
    {ERROR_ACCESS_DENIED, kRuntimeAccessDenied},
    {ERROR_CURRENT_DIRECTORY, kRuntimeAccessDenied},
    {ERROR_WRITE_PROTECT, kRuntimeAccessDenied},
    {ERROR_SHARING_VIOLATION, kRuntimeAccessDenied},
    {ERROR_LOCK_VIOLATION, kRuntimeAccessDenied},
    {ERROR_BAD_NETPATH, kRuntimeAccessDenied},
    {ERROR_NETNAME_DELETED, kRuntimeAccessDenied},
    {ERROR_BAD_NET_NAME, kRuntimeAccessDenied},
    {ERROR_NOT_ENOUGH_MEMORY, kRuntimeNotEnoughMemory},
    {ERROR_NOT_SAME_DEVICE, kRuntimeOtherDevice},
    {ERROR_INVALID_PARAMETER, kRuntimeInvalidArgument},
    {ERROR_DISK_FULL, kRuntimeDiskFull},
    {ERROR_FILE_EXISTS, kRuntimeFileExists},
    {ERROR_ALREADY_EXISTS, kRuntimeFileExists},
};

constinit RuntimeError gLastRuntimeError = kRuntimeNone;

int RuntimeResult(BOOL success) {
  if (success != 0) return 0;
  const DWORD error = ::GetLastError();
  const auto* const row =
      std::find_if(std::begin(kRuntimeErrors), std::end(kRuntimeErrors),
                   [&](const RuntimeRow& candidate) { return candidate.system == error; });
  gLastRuntimeError = row == std::end(kRuntimeErrors) ? kRuntimeUnknown : row->runtime;
  return -1;
}

}  // namespace

// Not the runtime's `rename`, which copies a file to another volume, and numbers errors otherwise.
int rename(const char* from, const char* to) {
  TakeFailedFlush();
  return RuntimeResult(::MoveFileExA(from, to, 0));
}

int remove(const char* path) {
  TakeFailedFlush();
  return RuntimeResult(::DeleteFileA(path));
}

int unlink(const char* path) { return remove(path); }

int errno_() { return gLastRuntimeError; }

int access(const char* path, int /*mode*/) {
  return ::GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES ? -1 : 0;
}

std::uint32_t GetTempPathA(std::uint32_t size, char* buffer) {
  const std::uint32_t length = ::GetTempPathA(size, buffer);
  if (length >= size && size > 0) *buffer = '\0';
  return length;
}

int OemToCharA(const char* source, char* target) { return ::OemToCharA(source, target); }

}  // namespace orzcore::platform
