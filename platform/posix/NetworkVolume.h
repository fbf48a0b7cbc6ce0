// Help for the host's calls on volumes that other machines change, too.
//
// For a network volume, the host caches names, lengths and contents, which another machine may have
// changed since. Some calls for locks also behave differently there. docs/internals.md, "Network
// volumes", lists what was seen on which volume. On a local volume, the functions that take a
// `VolumeKind` make no calls of their own.
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
  kFuse,         // GlusterFS and others: a process of this machine serves the volume
  kOtherNetwork  // Ceph, AFS, 9P, Lustre
};

/// Returns the kind of the volume of an open file.
///
/// @param device_major  the major number of the file's device. If it is not 0, the volume is on a
///                      disk of this machine, and the host is not called
VolumeKind KindOfVolume(int descriptor, std::uint32_t device_major);

/// Returns the kind of the volume of an entry's directory.
VolumeKind KindOfVolume(const DirectoryEntry& entry);

/// Makes the host look the name up on the server, so that the next call finds what it leads to now.
void RefreshName(VolumeKind kind, const DirectoryEntry& entry);

/// Makes the host drop the cached length and content of an open file.
void RefreshData(VolumeKind kind, int descriptor);

/// Makes written bytes visible to other machines.
///
/// @return 0 or the host's error
int PublishData(VolumeKind kind, int descriptor, off_t start, off_t length);

/// Returns true if another machine may be creating the file at this moment: on NFS a new file has
/// the mode 0 first.
bool IsBeingCreated(VolumeKind kind, mode_t mode);

/// Returns true if a close returns before its locks are released.
inline bool ReleasesLocksLate(VolumeKind kind) { return kind == VolumeKind::kFuse; }

/// Returns true if several opens of a file on this machine can get the same handle of the server.
inline bool SharesServerHandles(VolumeKind kind) { return kind == VolumeKind::kSmb; }

/// Returns true if a query for locks also reports those of the handle that asks.
inline bool ReportsOwnLocks(VolumeKind kind) { return kind == VolumeKind::kSmb; }

/// Pauses before another attempt, for 20 to 120 microseconds, doubled `doublings` times. The length
/// changes from call to call: after equal pauses, two users would collide again.
void PauseBeforeRetry(int doublings = 0);

/// Repeats a call that was refused because of a lock. On SMB, a query takes the lock for a moment,
/// so that the locks, queries and transfers of other users are refused although nobody has a lock.
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

/// Repeats an open or a creation that has failed with `error`. The host may have used an old name
/// from its cache, or another machine may be creating the file at this moment.
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
