// Opening and creating files together with their share state.
//
// Results are 0, a `HostResult`, or a host's error number. The order of the steps, and the race
// that each of them prevents, are told in docs/internals.md, "Opening a file".
#pragma once

#include "platform/posix/DirectoryEntry.h"
#include "platform/posix/NativePath.h"
#include "platform/posix/OwnedFile.h"

namespace orzcore::platform {

struct OpenRequirements {
  bool shares;            // with everybody who shares, too
  bool accepts_readonly;  // a descriptor that cannot write will do
  bool needs_write_bit;   // fail if the file's mode lets nobody write
};

/// Opens the regular file that an entry names, takes its share state, and then makes sure that the
/// entry still names this file. Links are followed.
///
/// @return 0; `kInUse` if the share state is refused; `kNameMoved` if the entry names another file
///         by now; EISDIR for a directory; EACCES for another thing that is not a file; or the
///         host's error
int OpenOwned(const DirectoryEntry& entry, const OpenRequirements& requirements, OwnedFile& file);

/// Creates a file, and takes its share state before anybody else can.
///
/// @return 0; EEXIST if the path exists, or if somebody opened the new file first on a volume that
///         cannot create a file without a name; `kNameMoved` if the new file has lost its name; or
///         the host's error
int CreateOwned(const NativePath& path, bool shares, OwnedFile& file);

/// Calls `attempt` until `should_retry(result)` is false, but not for ever. Returns the last
/// result.
template <typename Attempt, typename ShouldRetry>
int RetryWhile(Attempt attempt, ShouldRetry should_retry) {
  constexpr int kMaxAttempts = 100;
  int result = attempt();
  for (int i = 1; i < kMaxAttempts && should_retry(result); ++i) result = attempt();
  return result;
}

}  // namespace orzcore::platform
