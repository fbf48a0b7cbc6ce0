// Discardable memory whose state a test can see.
#pragma once

#include <string>
#include <string_view>

#include "orzcore/foundation.h"

/// Shows what the class keeps for derived classes.
struct Memory : IRDiscardableMemory {
  using IRDiscardableMemory::IRDiscardableMemory;
  using IRDiscardableMemory::mLockCount;
  using IRDiscardableMemory::mSize;

  char* Bytes() const { return static_cast<char*>(mPointer); }
  std::string_view Content() const { return {Bytes(), mSize}; }  // while the block is locked
};
