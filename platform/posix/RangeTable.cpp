// The ranges that one handle has locked.
#include "platform/posix/RangeTable.h"

#include <algorithm>
#include <new>
#include <utility>

namespace orzcore::platform {
namespace {

constexpr std::size_t kFirstCapacity = 8;

bool DoOverlap(ByteRange one, ByteRange other) {
  return one.start < other.End() && other.start < one.End();
}

}  // namespace

bool RangeTable::Reserve() {
  if (count_ < capacity_) return true;
  const std::size_t capacity = capacity_ == 0 ? kFirstCapacity : 2 * capacity_;
  std::unique_ptr<ByteRange[]> ranges(new (std::nothrow) ByteRange[capacity]);
  if (ranges == nullptr) return false;
  std::copy(Begin(), End(), ranges.get());
  ranges_ = std::move(ranges);
  capacity_ = capacity;
  return true;
}

ByteRange* RangeTable::LowerBound(ByteRange range) const {
  return std::lower_bound(Begin(), End(), range);
}

// The ranges do not overlap, so their ends are in order, too. Only the two neighbours can overlap.
bool RangeTable::Overlaps(ByteRange range) const {
  const ByteRange* const next = LowerBound(range);
  return (next != End() && DoOverlap(*next, range)) ||
         (next != Begin() && DoOverlap(*(next - 1), range));
}

void RangeTable::Add(ByteRange range) {
  ByteRange* const place = LowerBound(range);
  std::copy_backward(place, End(), End() + 1);
  *place = range;
  ++count_;
}

bool RangeTable::Contains(ByteRange range) const {
  const ByteRange* const place = LowerBound(range);
  return place != End() && *place == range;
}

ByteRange RangeTable::FirstGap(ByteRange range) const {
  std::uint64_t start = range.start;
  for (const ByteRange* held = Begin(); held != End() && held->start < range.End(); ++held) {
    if (held->End() <= start) continue;
    if (held->start > start) return {start, held->start - start};
    start = held->End();
  }
  return start < range.End() ? ByteRange{start, range.End() - start} : ByteRange{};
}

void RangeTable::Remove(ByteRange range) {
  ByteRange* const place = LowerBound(range);
  std::copy(place + 1, End(), place);
  --count_;
}

}  // namespace orzcore::platform
