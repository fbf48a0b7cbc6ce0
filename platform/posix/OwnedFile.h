// An open file with its share state.
#pragma once

#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileIdentity.h"
#include "platform/posix/NetworkVolume.h"

namespace orzcore::platform {

/// An open file. Closing it releases its share state and all its locks.
struct OwnedFile {
  OwnedFile() = default;
  OwnedFile(Descriptor opened, bool can_write)
      : descriptor(std::move(opened)), is_writable(can_write) {}
  ~OwnedFile() { Close(); }
  OwnedFile(OwnedFile&&) = default;
  OwnedFile& operator=(OwnedFile&&) = default;

  int Number() const { return descriptor.Number(); }

  /// Returns false and sets `errno` if the host lost data. The file is closed in any case.
  bool Close();

  Descriptor descriptor;
  bool is_writable = false;  // the descriptor can write, and take exclusive locks
  bool has_locks = false;    // the volume has locks
  VolumeKind volume = VolumeKind::kLocal;
  FileIdentity identity = {};
};

}  // namespace orzcore::platform
