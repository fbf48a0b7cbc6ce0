// Which file a descriptor or a name leads to.
#include "platform/posix/FileIdentity.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>

#include "platform/posix/Descriptor.h"

namespace orzcore::platform {
namespace {

// For sandboxes that forbid `statx`.
int IdentifyByStat(int descriptor, const char* path, int flags, FileIdentity& identity) {
  struct stat status = {};
  const int result = Uninterrupted([&] { return ::fstatat(descriptor, path, &status, flags); });
  if (result != 0) return errno;
  identity = {status.st_mode, static_cast<std::uint32_t>(status.st_nlink), status.st_ino,
              major(status.st_dev), minor(status.st_dev)};
  return 0;
}

}  // namespace

int Identify(int descriptor, const char* path, FileIdentity& identity) {
  struct statx status = {};
  constexpr unsigned kWanted = STATX_TYPE | STATX_MODE | STATX_INO | STATX_NLINK;
  constexpr int kFlags = AT_EMPTY_PATH | AT_NO_AUTOMOUNT;
  const int result =
      Uninterrupted([&] { return ::statx(descriptor, path, kFlags, kWanted, &status); });
  const bool is_forbidden = result != 0 && (errno == ENOSYS || errno == EPERM);
  if (is_forbidden) return IdentifyByStat(descriptor, path, kFlags, identity);
  if (result != 0) return errno;
  identity = {status.stx_mode, status.stx_nlink, status.stx_ino, status.stx_dev_major,
              status.stx_dev_minor};
  return 0;
}

}  // namespace orzcore::platform
