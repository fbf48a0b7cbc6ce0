// Abilities that some volumes lack.
#pragma once

#include <cstdint>

namespace orzcore::platform {

/// Whether a volume has an ability is found out by trying, not here. Local volumes have all of
/// them, so tests switch an ability off here to see what happens without it.
struct VolumeAbilities {
  bool has_locks = true;
  bool has_unnamed_files = true;  // files that are created without a name, and named later
  bool has_safe_rename = true;    // a rename that never replaces a file
  std::uint32_t longest_write = UINT32_MAX;  // bytes; a longer write is cut to it
};

extern constinit VolumeAbilities gVolumeAbilities;

}  // namespace orzcore::platform
