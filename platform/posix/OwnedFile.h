// Files that are opened, or created, together with their share state.
//
// Results are host error numbers, 0 for success.
#pragma once

#include "platform/posix/Descriptor.h"
#include "platform/posix/Entries.h"
#include "platform/posix/Paths.h"

namespace orzcore::platform {

struct OwnedFile {
  Descriptor descriptor;
  bool is_writable = false;  // the descriptor
  bool has_locks = false;    // the volume, as the share state has shown
};

/// What a user wants of a file.
struct Wish {
  bool shares;          // with everybody who shares
  bool takes_readonly;  // a descriptor that cannot write will do
  bool needs_mode;      // refuse a file that its mode forbids everybody to write
};

/// Opens the regular file that an entry names, takes its share state, and makes sure that the entry
/// still names it then. Links are followed.
///
/// @return 0 or a host error: `kInUse` if the share state is refused, EISDIR for a directory,
///         EACCES for anything else that is not a file, `kNameMoved` if the entry went to another
///         file
int OpenOwned(const Entry& entry, const Wish& wish, OwnedFile& file);

/// Creates a file that is owned before it has its name.
///
/// @return 0 or a host error: EEXIST if the path exists, also if somebody was faster on a volume
///         where the name has to come first; `kNameMoved` if the new file has lost its name there
int CreateOwned(const NativePath& path, bool shares, OwnedFile& file);

/// Makes an attempt until it ends otherwise than in `starts_over`; too many, and that is the
/// result.
template <typename Attempt, typename StartsOver>
int Repeat(Attempt attempt, StartsOver starts_over) {
  constexpr int kMaxAttempts = 100;
  int error = attempt();
  for (int i = 1; i < kMaxAttempts && starts_over(error); ++i) error = attempt();
  return error;
}

}  // namespace orzcore::platform
