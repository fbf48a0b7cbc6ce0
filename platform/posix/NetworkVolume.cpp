// Help for the host's calls on volumes that other machines change, too.
#include "platform/posix/NetworkVolume.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

namespace orzcore::platform {
namespace {

struct KindRow {
  std::uint32_t magic;  // the type that `statfs` reports
  VolumeKind kind;
};

constexpr KindRow kKinds[] = {
    {0x6969, VolumeKind::kNfs},
    {0x517B, VolumeKind::kSmb},      // SMB, oldest client
    {0xFF534D42, VolumeKind::kSmb},  // SMB 1
    {0xFE534D42, VolumeKind::kSmb},  // SMB 2 and 3
    {0x65735546, VolumeKind::kFuse},
    {0x00C36400, VolumeKind::kOtherNetwork},  // Ceph
    {0x5346414F, VolumeKind::kOtherNetwork},  // AFS
    {0x01021997, VolumeKind::kOtherNetwork},  // 9P
    {0x0BD00BD0, VolumeKind::kOtherNetwork},  // Lustre
};

// Returns the kind that `statfs` or `fstatfs` reports.
template <typename Call>
VolumeKind KindByCall(Call call) {
  struct statfs status = {};
  if (Uninterrupted([&] { return call(&status); }) != 0) {
    // ESTALE: another machine has deleted the file. This cannot happen on a local volume.
    return errno == ESTALE ? VolumeKind::kOtherNetwork : VolumeKind::kLocal;
  }
  const auto magic = static_cast<std::uint32_t>(status.f_type);
  for (const KindRow& row : kKinds) {
    if (row.magic == magic) return row.kind;
  }
  return VolumeKind::kLocal;
}

// Makes the host read the attributes from the server, and replace those that it has cached.
void ForceAttributes(int descriptor, const char* path) {
  struct statx status = {};
  ::statx(descriptor, path, AT_EMPTY_PATH | AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &status);
}

}  // namespace

VolumeKind KindOfVolume(int descriptor, std::uint32_t device_major) {
  if (device_major != 0) return VolumeKind::kLocal;
  return KindByCall([&](struct statfs* status) { return ::fstatfs(descriptor, status); });
}

VolumeKind KindOfVolume(const DirectoryEntry& entry) {
  if (entry.directory != AT_FDCWD) return KindOfVolume(entry.directory, 0);
  const SplitPath parts(entry.name);
  return KindByCall([&](struct statfs* status) { return ::statfs(parts.Directory(), status); });
}

void RefreshName(VolumeKind kind, const DirectoryEntry& entry) {
  if (kind == VolumeKind::kLocal) return;
  if (kind == VolumeKind::kNfs) {
    ForceAttributes(entry.directory, SplitPath(entry.name).Directory());
  } else {
    // This call always fails, because a directory cannot get a second name. But before it fails,
    // the host asks the server whether the name is free, and so refreshes the name.
    ::linkat(AT_FDCWD, "/", entry.directory, entry.name, 0);
  }
}

void RefreshData(VolumeKind kind, int descriptor) {
  if (kind == VolumeKind::kLocal) return;
  ForceAttributes(descriptor, "");
  ::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
}

int PublishData(VolumeKind kind, int descriptor, off_t start, off_t length) {
  if (kind == VolumeKind::kLocal) return 0;
  constexpr unsigned kWriteAndWait =
      SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
  const int result =
      Uninterrupted([&] { return ::sync_file_range(descriptor, start, length, kWriteAndWait); });
  const bool is_unsupported =
      result != 0 && (errno == EINVAL || errno == ENOSYS || errno == ESPIPE);
  return result == 0 || is_unsupported ? 0 : errno;
}

bool IsBeingCreated(VolumeKind kind, mode_t mode) {
  constexpr mode_t kPermissionBits = 07777;
  return kind == VolumeKind::kNfs && S_ISREG(mode) && (mode & kPermissionBits) == 0;
}

void PauseBeforeRetry(int doublings) {
  constexpr long kShortestPause = 20000;  // nanoseconds
  constexpr long kPauseSpread = 100000;
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const timespec pause = {0, (kShortestPause + now.tv_nsec % kPauseSpread) << doublings};
  nanosleep(&pause, nullptr);
}

}  // namespace orzcore::platform
