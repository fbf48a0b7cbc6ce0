// Opening and closing.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <utility>

#include "platform/files.h"
#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {
namespace {

struct Disposition {
  bool opens;
  bool empties;
  bool creates;
};

constexpr Disposition kDispositions[] = {
    {false, false, true},  // kCreateNew
    {true, true, true},    // kCreateAlways
    {true, false, false},  // kOpenExisting
    {true, false, true},   // kOpenAlways
    {true, true, false},   // kTruncateExisting
};

struct Request {
  bool writes;
  bool shares;
  Disposition disposition;
};

int OpenExisting(const NativePath& path, const Request& request, FileHandle& handle) {
  const bool empties = request.disposition.empties;
  const bool changes = request.writes || empties;
  OwnedFile file;
  const OpenRequirements requirements = {
      .shares = request.shares, .accepts_readonly = !changes, .needs_write_bit = changes};
  if (const int error = OpenOwned(ByPath(path), requirements, file); error != 0) return error;
  // Only now: before its share state was taken, the file could be somebody else's.
  const int number = file.descriptor.Number();
  if (empties && Uninterrupted([&] { return ::ftruncate(number, 0); }) != 0) return errno;
  handle.descriptor = std::move(file.descriptor);
  handle.is_writable = file.is_writable;
  handle.has_locks = file.has_locks;
  handle.is_dirty = empties;
  return 0;
}

int CreateNew(const NativePath& path, const Request& request, FileHandle& handle) {
  OwnedFile file;
  if (const int error = CreateOwned(path, request.shares, file); error != 0) return error;
  handle.descriptor = std::move(file.descriptor);
  handle.is_writable = file.is_writable;
  handle.has_locks = file.has_locks;
  return 0;
}

int OpenOnce(const NativePath& path, const Request& request, FileHandle& handle) {
  if (request.disposition.opens) {
    const int error = OpenExisting(path, request, handle);
    if (error != ENOENT || !request.disposition.creates) return error;
  }
  return CreateNew(path, request, handle);
}

// Whether the path is a link to nothing. Such a path can neither be opened nor created.
bool IsDangling(const NativePath& path) {
  struct stat status = {};
  return IsLink(ByPath(path)) && ::stat(path.Text(), &status) != 0 && errno == ENOENT;
}

int Open(const NativePath& path, const Request& request, FileHandle& handle) {
  return RetryWhile([&] { return OpenOnce(path, request, handle); },
                    [&](int error) {
                      // Somebody has just created it, so the next attempt opens it.
                      if (error == EEXIST) return request.disposition.opens && !IsDangling(path);
                      return error == kNameMoved;
                    });
}

void* FailToOpen(SystemError error) {
  Fail(error);
  return InvalidHandle();
}

}  // namespace

void* CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, void* /*security*/,
                  std::uint32_t disposition, std::uint32_t /*flags*/, void* /*template_file*/) {
  constexpr std::uint32_t kShareAll = kFileShareRead | kFileShareWrite;
  const NativePath native(path);
  if (native.Error() == ENOENT) return FailToOpen(kPathNotFound);
  if (native.Error() == ENAMETOOLONG) return FailToOpen(kPathTooLong);
  if (disposition < kCreateNew || disposition > kTruncateExisting) return FailToOpen(kBadParameter);

  std::unique_ptr<FileHandle> file(new (std::nothrow) FileHandle);
  if (file == nullptr) return FailToOpen(kNotEnoughMemory);
  file->may_read = (access & kGenericRead) != 0;
  file->may_write = (access & kGenericWrite) != 0;
  const Request request = {file->may_write, (share & kShareAll) == kShareAll,
                           kDispositions[disposition - kCreateNew]};
  const int error = Open(native, request, *file);
  if (error == 0) return file.release();
  FailWithHost(error);
  return InvalidHandle();
}

int CloseHandle(void* handle) {
  const std::unique_ptr<FileHandle> file(FileOf(handle));
  if (file == nullptr) return Fail(kBadHandle);
  const int number = file->descriptor.Number();
  if (file->is_dirty && Uninterrupted([&] { return ::fdatasync(number); }) != 0) {
    return FailWithHost(errno, kWriteFault);
  }
  return file->descriptor.Close() ? 1 : FailWithHost(errno, kWriteFault);
}

}  // namespace orzcore::platform
