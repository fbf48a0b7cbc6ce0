// Allocations that fail on demand, in the test program and in the library alike.
#pragma once

/// While one of these lives, `operator new` has no memory.
class FailingNew {
 public:
  FailingNew();
  ~FailingNew();
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;
};
