// Paths in memory of the file layer's own.
#pragma once

#include <cstring>
#include <memory>
#include <new>

#include "orzcore/file.h"

/// The path of a spec. One that is too long for a full path is left empty, since its beginning
/// would name another file.
class SpecPath {
 public:
  explicit SpecPath(const OZFileSpec& spec)
      : fits_(std::strlen(spec.GetFullPath()) < OZFile::kPathSize - 1) {
    if (Fits()) spec.GetFullPath(path_);
  }

  bool Fits() const { return fits_; }

  const char* Get() const { return path_; }

 private:
  bool fits_;
  char path_[OZFile::kPathSize] = {};
};

/// Returns a copy of a path, which outlives the close of its file, or null if there is no memory.
inline std::unique_ptr<char[]> CopyPath(const char* path) {
  const std::size_t size = std::strlen(path) + 1;
  std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
  if (copy != nullptr) std::memcpy(copy.get(), path, size);
  return copy;
}
