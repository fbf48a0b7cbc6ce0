// The calls on open files.
#include "platform/files.h"

#include <memory>
#include <new>

#include "platform/windows/FailedFlush.h"

namespace orzcore::platform {
namespace {

constinit DWORD gLastError = kNoError;

struct FileHandle {
  HANDLE native = INVALID_HANDLE_VALUE;
  bool may_write = false;
  bool is_dirty = false;  // the close must write something to the disk
};

FileHandle* FileOf(void* handle) {
  return handle == InvalidHandle() ? nullptr : static_cast<FileHandle*>(handle);
}

int Fail(DWORD error) {
  gLastError = error;
  return 0;
}

// Stores the error of a native call that has failed. A success leaves the last error as it is.
int Finish(BOOL success) { return success != 0 ? 1 : Fail(::GetLastError()); }

void* FailToOpen(DWORD error) {
  Fail(error);
  return InvalidHandle();
}

std::uint32_t FailToMove(DWORD error) {
  Fail(error);
  return kInvalidFilePosition;
}

// Writes to the disk what a handle has changed. A thing that cannot be flushed, such as a device,
// is no failure. Returns 0 or the error.
DWORD Flush(const FileHandle& opened) {
  if (!opened.is_dirty || !opened.may_write) return 0;
  if (::FlushFileBuffers(opened.native) != 0) return 0;
  const DWORD error = ::GetLastError();
  if (error == kInvalidFunction) return 0;
  return error == kDiskFull ? kDiskFull : kWriteFault;
}

}  // namespace

void* CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, void* /*security*/,
                  std::uint32_t disposition, std::uint32_t /*flags*/, void* /*template_file*/) {
  constexpr std::uint32_t kShareAll = kFileShareRead | kFileShareWrite;
  const FailedFlush failed_flush = TakeFailedFlush();
  std::unique_ptr<FileHandle> opened(new (std::nothrow) FileHandle);
  if (opened == nullptr) return FailToOpen(kNotEnoughMemory);
  const DWORD sharing = (share & kShareAll) == kShareAll ? kShareAll : 0;
  opened->native =
      ::CreateFileA(path, access, sharing, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened->native == INVALID_HANDLE_VALUE) return FailToOpen(::GetLastError());
  opened->may_write = (access & kGenericWrite) != 0;
  const bool existed = ::GetLastError() == ERROR_ALREADY_EXISTS;  // set by `kOpenAlways`
  const bool keeps = disposition == kOpenExisting || (disposition == kOpenAlways && existed);
  opened->is_dirty = !keeps;
  if (failed_flush.error != 0 && keeps && failed_flush.file == FileIdentity(opened->native)) {
    ::CloseHandle(opened->native);
    return FailToOpen(failed_flush.error);
  }
  return opened.release();
}

int CloseHandle(void* handle) {
  const std::unique_ptr<FileHandle> opened(FileOf(handle));
  if (opened == nullptr) return Fail(kBadHandle);
  const DWORD error = Flush(*opened);
  if (error != 0) NoteFailedFlush({error, FileIdentity(opened->native)});
  const int closed = Finish(::CloseHandle(opened->native));
  return error != 0 ? Fail(error) : closed;
}

int ReadFile(void* handle, void* buffer, std::uint32_t count, std::uint32_t* done,
             void* /*overlapped*/) {
  *done = 0;
  const FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  DWORD moved = 0;
  if (::ReadFile(opened->native, buffer, count, &moved, nullptr) == 0) return Finish(FALSE);
  *done = moved;
  return 1;
}

int WriteFile(void* handle, const void* buffer, std::uint32_t count, std::uint32_t* done,
              void* /*overlapped*/) {
  *done = 0;
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (count > 0) opened->is_dirty = true;  // even if the call fails
  DWORD moved = 0;
  if (::WriteFile(opened->native, buffer, count, &moved, nullptr) == 0) return Finish(FALSE);
  *done = moved;
  return 1;
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's call has this shape
std::uint32_t SetFilePointer(void* handle, std::int32_t distance, std::int32_t* distance_high,
                             std::uint32_t origin) {
  const FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return FailToMove(kBadHandle);
  if (distance_high != nullptr || origin > kFileEnd) return FailToMove(kBadParameter);
  const DWORD position = ::SetFilePointer(opened->native, distance, nullptr, origin);
  // This position is also a valid one. The native call then reports no error.
  if (position == kInvalidFilePosition) Fail(::GetLastError());
  return position;
}

int SetEndOfFile(void* handle) {
  FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (!opened->may_write) return Fail(kAccessDenied);
  opened->is_dirty = true;
  return Finish(::SetEndOfFile(opened->native));
}

int LockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
             std::uint32_t length_low, std::uint32_t length_high) {
  const FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  return Finish(::LockFile(opened->native, offset_low, 0, length_low, 0));
}

int UnlockFile(void* handle, std::uint32_t offset_low, std::uint32_t offset_high,
               std::uint32_t length_low, std::uint32_t length_high) {
  const FileHandle* const opened = FileOf(handle);
  if (opened == nullptr) return Fail(kBadHandle);
  if (offset_high != 0 || length_high != 0) return Fail(kBadParameter);
  return Finish(::UnlockFile(opened->native, offset_low, 0, length_low, 0));
}

std::uint32_t GetTempFileNameA(const char* directory, const char* prefix, std::uint32_t unique,
                               char* buffer) {
  char start[4] = {};  // the first three characters of the prefix, without separators
  for (char* end = start; *prefix != '\0' && end != start + 3; ++prefix) {
    if (*prefix != '/' && *prefix != '\\') *end++ = *prefix;
  }
  const std::uint32_t number = ::GetTempFileNameA(directory, start, unique & 0xFFFF, buffer);
  if (number != 0) return number;
  *buffer = '\0';
  return static_cast<std::uint32_t>(Finish(FALSE));
}

std::uint32_t GetLastError() { return gLastError; }

}  // namespace orzcore::platform
