// The ranges that one handle has locked.
#pragma once

#include <cstddef>
#include <memory>

#include "platform/posix/HostLocks.h"

namespace orzcore::platform {

/// Ranges in order, none over another. The host merges and splits the locks of a handle without a
/// word, so only this table knows which ones were taken.
class RangeTable {
 public:
  /// Makes room for one more range; false if there is no memory.
  bool Reserve();

  /// Whether a range of the table overlaps `range`. An empty range overlaps what it lies inside of.
  bool Overlaps(ByteRange range) const;

  /// Adds a range that overlaps none, in the room that `Reserve` made.
  void Add(ByteRange range);

  bool Contains(ByteRange range) const;

  /// Removes a range that the table contains.
  void Remove(ByteRange range);

 private:
  ByteRange* Begin() const { return ranges_.get(); }
  ByteRange* End() const { return Begin() + count_; }
  ByteRange* Find(ByteRange range) const;  // where it is, or belongs

  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
  std::unique_ptr<ByteRange[]> ranges_;
};

}  // namespace orzcore::platform
