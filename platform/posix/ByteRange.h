// A range of bytes of a file.
#pragma once

#include <cstdint>

namespace orzcore::platform {

struct ByteRange {
  std::uint64_t start;
  std::uint64_t length;

  std::uint64_t End() const { return start + length; }
  bool operator==(const ByteRange&) const = default;
  bool operator<(const ByteRange& other) const {
    return start < other.start || (start == other.start && length < other.length);
  }
};

}  // namespace orzcore::platform
