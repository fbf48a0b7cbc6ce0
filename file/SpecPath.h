// Copies of paths.
#pragma once

#include <cstring>
#include <memory>
#include <new>

#include "orzcore/file.h"

namespace orzcore::file {

/// The path of a spec. If it is too long for a full path, it is empty here: a cut path would name
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

/// Returns a copy of a path, or null if there is no memory. A close frees the path of its file, so
/// whoever reopens the file needs a copy.
inline std::unique_ptr<char[]> CopyPath(const char* path) {
  const std::size_t size = std::strlen(path) + 1;
  std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
  if (copy != nullptr) std::memcpy(copy.get(), path, size);
  return copy;
}

}  // namespace orzcore::file
