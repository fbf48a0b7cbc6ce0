// Discardable memory whose state a test can see.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "orzcore/foundation.h"

/// The usual size of a page. The pattern is long enough for systems with larger pages, too.
inline constexpr std::uint32_t kPage = 4096;

/// Bytes that are not 0, except for the first word of every second page.
inline const std::vector<char> kPattern = [] {
  std::vector<char> bytes(128 * kPage);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool is_blank = i / kPage % 2 == 1 && i % kPage < sizeof(std::uint64_t);
    bytes[i] = is_blank ? '\0' : static_cast<char>(1 + i % 251);
  }
  return bytes;
}();

/// Shows what the class keeps for derived classes.
struct Memory : IRDiscardableMemory {
  using IRDiscardableMemory::IRDiscardableMemory;
  using IRDiscardableMemory::mLockCount;
  using IRDiscardableMemory::mSize;

  char* Bytes() const { return static_cast<char*>(mPointer); }
  bool IsZero() const {
    return std::all_of(Bytes(), Bytes() + mSize, [](char byte) { return byte == '\0'; });
  }
  bool IsWhole() const { return std::memcmp(Bytes(), kPattern.data(), mSize) == 0; }
  // Locks the block, writes the pattern into it, and returns its address.
  char* Fill() {
    EXPECT_EQ(LockMemory(), eErrNone);
    return static_cast<char*>(std::memcpy(mPointer, kPattern.data(), mSize));
  }
};
