// What the volumes of this machine can do, as far as some cannot.
#pragma once

#include <cstdint>

namespace orzcore::platform {

/// Everything is tried on the volume itself. Tests take an ability away to see what follows, since
/// no local volume lacks it.
struct Volume {
  bool has_locks = true;
  bool has_unnamed_files = true;             // created without a name, and named later
  bool has_rename_without_loss = true;       // a rename that refuses to replace
  std::uint32_t longest_write = UINT32_MAX;  // bytes that it takes at once; the rest is not written
};

extern constinit Volume gVolume;

}  // namespace orzcore::platform
