// What the host's calls need on a volume that other machines change, too.
//
// A network volume keeps names, lengths and contents that another machine may have changed since,
// and it answers some calls about locks in a way of its own. Each function here does nothing on a
// local volume, and costs nothing there. docs/internals.md, "Network volumes", tells what was seen
// on which volume.
#pragma once

#include <sys/types.h>

#include <cerrno>
#include <cstdint>

#include "platform/posix/DirectoryEntry.h"

namespace orzcore::platform {

enum class VolumeKind : unsigned char {
  kLocal,
  kNfs,
  kSmb,
  kFuse,         // GlusterFS and others, by a process of this machine
  kOtherNetwork  // Ceph, AFS, 9P, Lustre
};

/// The kind of the volume of an open file.
///
/// @param device_major  of the file's device; a disk of this machine has one, so that the host need
///                      not be asked
VolumeKind KindOfVolume(int descriptor, std::uint32_t device_major);

/// The kind of the volume of an entry's directory.
VolumeKind KindOfVolume(const DirectoryEntry& entry);

/// Makes the host look at the directory again, so that the next call finds what the entry names
/// now.
void RefreshName(VolumeKind kind, const DirectoryEntry& entry);

/// Makes the host forget the length and the content that it keeps of an open file.
void RefreshData(VolumeKind kind, int descriptor);

/// Makes written bytes visible to other machines.
///
/// @return 0 or the host's error
int PublishData(VolumeKind kind, int descriptor, off_t start, off_t length);

/// Whether a file with this mode may be one that another machine is creating now: it gets its mode
/// a moment later.
bool IsBeingCreated(VolumeKind kind, mode_t mode);

/// Whether a close releases locks only after it has returned.
inline bool ReleasesLocksLate(VolumeKind kind) { return kind == VolumeKind::kFuse; }

/// Pauses before another attempt, for 20 to 120 microseconds, doubled `doublings` times. The length
/// differs from one call to the next: two users who collided would collide again after equal
/// pauses.
void PauseBeforeRetry(int doublings = 0);

/// Repeats a call that was refused because of a lock. On SMB, a user who asks for locks holds one
/// for a moment, which refuses the locks, queries and transfers of other users for nothing.
template <typename Attempt, typename IsRefused>
auto RetryMomentaryRefusal(VolumeKind kind, Attempt attempt, IsRefused is_refused) {
  constexpr int kMaxPauses = 8;
  auto result = attempt();
  for (int i = 0; i < kMaxPauses && kind == VolumeKind::kSmb && is_refused(result); ++i) {
    PauseBeforeRetry(i);
    result = attempt();
  }
  return result;
}

/// Repeats an open or a creation that has failed with `error`. The host may have known an old name,
/// or another machine may be creating the file at this moment.
///
/// @return `error` on a local volume; else the result of the last attempt
template <typename Attempt>
int RetryOnNetwork(const DirectoryEntry& entry, int error, Attempt attempt) {
  constexpr int kMaxPauses = 8;
  const VolumeKind kind = KindOfVolume(entry);
  if (kind == VolumeKind::kLocal) return error;
  RefreshName(kind, entry);
  int result = attempt();
  for (int i = 0; i < kMaxPauses && result == EACCES && kind == VolumeKind::kNfs; ++i) {
    PauseBeforeRetry(i);
    result = attempt();
  }
  return result;
}

}  // namespace orzcore::platform
