// Opening and closing.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>
#include <utility>

#include "platform/files.h"
#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/FailedSync.h"
#include "platform/posix/FileHandle.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/OpenOwned.h"

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
  // Only now: before this user had the share state, somebody else could have the file open.
  if (empties && Uninterrupted([&] { return ::ftruncate(file.Number(), 0); }) != 0) return errno;
  handle.file = std::move(file);
  handle.is_dirty = empties;
  return 0;
}

int CreateNew(const NativePath& path, const Request& request, FileHandle& handle) {
  Descriptor directory;
  if (const int error = OpenDirectoryOf(ByPath(path), directory); error != 0) return error;
  if (const int error = CreateOwned(path, request.shares, handle.file); error != 0) return error;
  handle.new_directory = std::move(directory);
  return 0;
}

int OpenOrCreate(const NativePath& path, const Request& request, FileHandle& handle) {
  if (request.disposition.opens) {
    const int error = OpenExisting(path, request, handle);
    if (error != ENOENT || !request.disposition.creates) return error;
  }
  return CreateNew(path, request, handle);
}

// Returns true if the path is a link to a missing file. Opening such a path fails with ENOENT, and
// creating it with EEXIST, so another attempt would fail as well.
bool IsDangling(const NativePath& path) {
  struct stat status = {};
  return IsLink(ByPath(path)) && ::stat(path.Text(), &status) != 0 && errno == ENOENT;
}

int OpenWithRetries(const NativePath& path, const Request& request, FileHandle& handle) {
  return RetryWhile([&] { return OpenOrCreate(path, request, handle); },
                    [&](int error) {
                      // Somebody has just created the file, so the next attempt opens it.
                      if (error == EEXIST) return request.disposition.opens && !IsDangling(path);
                      return error == kNameMoved;
                    });
}

void* FailToOpen(SystemError error) {
  Fail(error);
  return InvalidHandle();
}

// Writes to the disk what a handle has changed, and the name of a file that it created. EINVAL
// means that the volume cannot sync, which is no failure. Returns 0 or the host's error.
int Sync(const FileHandle& opened) {
  const int number = opened.file.Number();
  if (opened.is_dirty && Uninterrupted([&] { return ::fdatasync(number); }) != 0 &&
      errno != EINVAL) {
    return errno;
  }
  return SyncDirectory(opened.new_directory);
}

}  // namespace

void* CreateFileA(const char* path, std::uint32_t access, std::uint32_t share, void* /*security*/,
                  std::uint32_t disposition, std::uint32_t /*flags*/, void* /*template_file*/) {
  constexpr std::uint32_t kShareAll = kFileShareRead | kFileShareWrite;
  const FailedSync failed_sync = TakeFailedSync();
  const NativePath native(path);
  if (native.Error() == ENOENT) return FailToOpen(kPathNotFound);
  if (native.Error() == ENAMETOOLONG) return FailToOpen(kPathTooLong);
  if (disposition < kCreateNew || disposition > kTruncateExisting) return FailToOpen(kBadParameter);

  std::unique_ptr<FileHandle> opened(new (std::nothrow) FileHandle);
  if (opened == nullptr) return FailToOpen(kNotEnoughMemory);
  opened->shares = (share & kShareAll) == kShareAll;
  opened->may_read = (access & kGenericRead) != 0;
  opened->may_write = (access & kGenericWrite) != 0;
  const Request request = {opened->may_write, opened->shares,
                           kDispositions[disposition - kCreateNew]};
  if (const int error = OpenWithRetries(native, request, *opened); error != 0) {
    FailWithHost(error);
    return InvalidHandle();
  }
  const bool lost_data = failed_sync.host_error != 0 && !request.disposition.empties &&
                         failed_sync.file.IsSameFile(opened->file.identity);
  if (lost_data) {
    FailWithHost(failed_sync.host_error, kWriteFault);
    return InvalidHandle();
  }
  return opened.release();
}

int CloseHandle(void* handle) {
  const std::unique_ptr<FileHandle> opened(FileOf(handle));
  if (opened == nullptr) return Fail(kBadHandle);
  int error = Sync(*opened);
  const bool is_closed_well = opened->file.Close();
  if (error == 0 && !is_closed_well && opened->is_dirty) error = errno;
  if (error == 0) return 1;
  NoteFailedSync(opened->file.identity, error);
  return FailWithHost(error, kWriteFault);
}

}  // namespace orzcore::platform
