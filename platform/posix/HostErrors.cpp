// The tables of error numbers, and the last numbers.
#include "platform/posix/HostErrors.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "platform/files.h"

namespace orzcore::platform {
namespace {

struct SystemRow {
  int host;
  SystemError system;
};

constexpr SystemRow kSystemErrors[] = {
    {ENOENT, kFileNotFound},     {ENOTDIR, kPathNotFound},     {EMFILE, kTooManyOpenFiles},
    {ENFILE, kTooManyOpenFiles}, {EISDIR, kAccessDenied},      {EACCES, kAccessDenied},
    {EPERM, kAccessDenied},      {ETXTBSY, kAccessDenied},     {ENXIO, kAccessDenied},
    {ELOOP, kAccessDenied},      {EBUSY, kAccessDenied},       {EBADF, kBadHandle},
    {ENOMEM, kNotEnoughMemory},  {EROFS, kWriteProtected},     {EEXIST, kFileExists},
    {EINVAL, kBadParameter},     {ENOSPC, kDiskFull},          {EDQUOT, kDiskFull},
    {EFBIG, kDiskFull},          {ENAMETOOLONG, kNameTooLong},
};

constexpr int kUnknownReason = -1;

struct RuntimeRow {
  int host;
  int runtime;
};

constexpr RuntimeRow kRuntimeErrors[] = {
    {ENOENT, 2},  {ENAMETOOLONG, 2}, {ENOTDIR, 3}, {EMFILE, 4},     {EACCES, 5},  {EPERM, 5},
    {EROFS, 5},   {EISDIR, 5},       {EBUSY, 5},   {ETXTBSY, 5},    {ENXIO, 5},   {ELOOP, 5},
    {kInUse, 5},  {kNameMoved, 5},   {ENOMEM, 8},  {EXDEV, 17},     {EINVAL, 19}, {ENFILE, 23},
    {ENOSPC, 28}, {EDQUOT, 28},      {EEXIST, 35}, {ENOTEMPTY, 35},
};

constinit std::uint32_t last_error = kNoError;
constinit int last_runtime_error = 0;

template <typename Row, std::size_t N>
const Row* Find(const Row (&table)[N], int host_error) {
  const Row* const row = std::find_if(std::begin(table), std::end(table),
                                      [&](const Row& r) { return r.host == host_error; });
  return row == std::end(table) ? nullptr : row;
}

}  // namespace

int Fail(SystemError error) {
  last_error = error;
  return 0;
}

int FailWithHost(int host_error, SystemError fault) {
  const SystemRow* const row = Find(kSystemErrors, host_error);
  return Fail(row == nullptr ? fault : row->system);
}

int RuntimeResult(int host_error) {
  if (host_error == 0) return 0;
  const RuntimeRow* const row = Find(kRuntimeErrors, host_error);
  last_runtime_error = row == nullptr ? kUnknownReason : row->runtime;
  return -1;
}

std::uint32_t GetLastError() { return last_error; }

int errno_() { return last_runtime_error; }

}  // namespace orzcore::platform
