// The tables of error numbers, and the numbers of the last failures.
#include "platform/posix/HostErrors.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>

namespace orzcore::platform {
namespace {

struct SystemRow {
  int host;
  SystemError system;
};

constexpr SystemRow kSystemErrors[] = {
    {kInUse, kSharingViolation}, {kNameMoved, kSharingViolation},
    {ENOENT, kFileNotFound},     {ENOTDIR, kPathNotFound},
    {EMFILE, kTooManyOpenFiles}, {ENFILE, kTooManyOpenFiles},
    {EISDIR, kAccessDenied},     {EACCES, kAccessDenied},
    {EPERM, kAccessDenied},      {ETXTBSY, kAccessDenied},
    {ENXIO, kAccessDenied},      {ELOOP, kAccessDenied},
    {EBUSY, kAccessDenied},      {EBADF, kBadHandle},
    {ENOMEM, kNotEnoughMemory},  {EROFS, kWriteProtected},
    {EEXIST, kFileExists},       {EINVAL, kBadParameter},
    {ENOSPC, kDiskFull},         {EDQUOT, kDiskFull},
    {EFBIG, kDiskFull},          {ENAMETOOLONG, kPathTooLong},
};

struct RuntimeRow {
  int host;
  RuntimeError runtime;
};

constexpr RuntimeRow kRuntimeErrors[] = {
    {ENOENT, kRuntimeNoSuchFile},
    {ENAMETOOLONG, kRuntimeNoSuchFile},
    {ENOTDIR, kRuntimeNoSuchFile},
    {EMFILE, kRuntimeTooManyOpenFiles},
    {EACCES, kRuntimeAccessDenied},
    {EPERM, kRuntimeAccessDenied},
    {EROFS, kRuntimeAccessDenied},
    {EISDIR, kRuntimeAccessDenied},
    {EBUSY, kRuntimeAccessDenied},
    {ETXTBSY, kRuntimeAccessDenied},
    {ENXIO, kRuntimeAccessDenied},
    {ELOOP, kRuntimeAccessDenied},
    {kInUse, kRuntimeAccessDenied},
    {kNameMoved, kRuntimeAccessDenied},
    {ENOTCONN, kRuntimeAccessDenied},
    {EHOSTDOWN, kRuntimeAccessDenied},
    {EHOSTUNREACH, kRuntimeAccessDenied},
    {ETIMEDOUT, kRuntimeAccessDenied},
    {EBADFD, kRuntimeAccessDenied},
    {ENOMEM, kRuntimeNotEnoughMemory},
    {EXDEV, kRuntimeOtherDevice},
    {EINVAL, kRuntimeInvalidArgument},
    {ENFILE, kRuntimeTooManyFilesInSystem},
    {ENOSPC, kRuntimeDiskFull},
    {EDQUOT, kRuntimeDiskFull},
    {EEXIST, kRuntimeFileExists},
    {ENOTEMPTY, kRuntimeFileExists},
};

constinit SystemError gLastError = kNoError;
constinit RuntimeError gLastRuntimeError = kRuntimeNone;

template <typename Row, std::size_t N>
const Row* Find(const Row (&table)[N], int host_error) {
  const Row* const row = std::find_if(std::begin(table), std::end(table),
                                      [&](const Row& r) { return r.host == host_error; });
  return row == std::end(table) ? nullptr : row;
}

}  // namespace

int Fail(SystemError error) {
  gLastError = error;
  return 0;
}

int FailWithHost(int host_error, SystemError fault) {
  const SystemRow* const row = Find(kSystemErrors, host_error);
  return Fail(row == nullptr ? fault : row->system);
}

int RuntimeResult(int host_error) {
  if (host_error == 0) return 0;
  const RuntimeRow* const row = Find(kRuntimeErrors, host_error);
  gLastRuntimeError = row == nullptr ? kRuntimeUnknown : row->runtime;
  return -1;
}

std::uint32_t GetLastError() { return gLastError; }

int errno_() { return gLastRuntimeError; }

}  // namespace orzcore::platform
