// Copies of paths.
#pragma once

#include <cstring>
#include <memory>
#include <new>

#include "orzcore/file.h"

namespace orzcore::file {

/// A copy of the path of a spec. If the path is too long, the copy is empty: a cut path could name
/// another file.
class SpecPath {
 public:
  explicit SpecPath(const OZFileSpec& spec) {
    const bool fits = std::strlen(spec.GetFullPath()) < OZFile::kPathSize - 1;
    if (fits) spec.GetFullPath(path_);
  }

  const char* Get() const { return path_; }

 private:
  char path_[OZFile::kPathSize] = {};
};

/// Returns a copy of a path, or null if there is no memory. `CloseFile` frees `mFileName`, so code
/// that reopens the file needs a copy.
inline std::unique_ptr<char[]> CopyPath(const char* path) {
  const std::size_t size = std::strlen(path) + 1;
  std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
  if (copy != nullptr) std::memcpy(copy.get(), path, size);
  return copy;
}

}  // namespace orzcore::file
