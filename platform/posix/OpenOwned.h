// Opening and creating files together with their share state.
//
// The functions return 0, a `HostResult`, or the host's error number. docs/internals.md, "Opening a
// file", lists the steps and the race that each step prevents.
#pragma once

#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/NativePath.h"
#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {

struct OpenRequirements {
  bool shares;            // others who also share may have the file open
  bool accepts_readonly;  // a read-only descriptor is enough
  bool needs_write_bit;   // fail if the file's mode lets nobody write
};

/// Opens the regular file that an entry names, takes its share state, and then makes sure that the
/// entry still names this file. Links are followed.
///
/// @return 0; `kInUse` if the share state is refused; `kNameMoved` if meanwhile the entry names
///         another file or none; EISDIR for a directory; EACCES for anything else that is not a
///         regular file; or the host's error
int OpenOwned(const DirectoryEntry& entry, const OpenRequirements& requirements, OwnedFile& file);

/// Creates a file and takes its share state. Nobody else can take it before, except on a volume
/// that cannot create a file without a name.
///
/// @return 0; EEXIST if the path exists, or if somebody else has taken the share state first;
///         `kNameMoved` if the new file has lost its name; or the host's error
int CreateOwned(const NativePath& path, bool shares, OwnedFile& file);

/// Calls `attempt` until `should_retry(result)` is false, at most 100 times. Returns the last
/// result.
template <typename Attempt, typename ShouldRetry>
int RetryWhile(Attempt attempt, ShouldRetry should_retry) {
  constexpr int kMaxAttempts = 100;
  int result = attempt();
  for (int i = 1; i < kMaxAttempts && should_retry(result); ++i) result = attempt();
  return result;
}

}  // namespace orzcore::platform
