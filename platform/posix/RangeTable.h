// The ranges that one handle has locked.
#pragma once

#include <cstddef>
#include <memory>

#include "platform/posix/ByteRange.h"

namespace orzcore::platform {

/// The ranges, in order and without overlaps. The host merges and splits the locks of a descriptor
/// silently, so only this table knows which ranges were locked.
class RangeTable {
 public:
  /// Makes room for one more range. Returns false if there is no memory.
  bool Reserve();

  /// Returns true if a range of the table overlaps `range`. An empty range overlaps a range that
  /// begins before it and ends after it.
  bool Overlaps(ByteRange range) const;

  /// Adds a range that overlaps no other. The caller has called `Reserve`.
  void Add(ByteRange range);

  bool Contains(ByteRange range) const;

  /// Finds the first part of `range` that no range of the table covers. Returns an empty range if
  /// there is none.
  ByteRange FirstGap(ByteRange range) const;

  /// Removes a range that the table contains.
  void Remove(ByteRange range);

 private:
  ByteRange* Begin() const { return ranges_.get(); }
  ByteRange* End() const { return Begin() + count_; }
  ByteRange* LowerBound(ByteRange range) const;  // the first range that is not below `range`

  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
  std::unique_ptr<ByteRange[]> ranges_;
};

}  // namespace orzcore::platform
