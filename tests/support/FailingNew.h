// Allocations that fail on demand, in the test program and in the library alike.
#pragma once

/// While one of these lives, `operator new` has memory for no more than a number of allocations.
class FailingNew {
 public:
  explicit FailingNew(int allowed = 0);
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};
