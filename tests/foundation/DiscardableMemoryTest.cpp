#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "orzcore/foundation.h"

namespace {

const auto kPage = static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));

struct Memory : IRDiscardableMemory {
  using IRDiscardableMemory::IRDiscardableMemory;
  using IRDiscardableMemory::mHandle;
  using IRDiscardableMemory::mLockCount;
  using IRDiscardableMemory::mSize;

  bool HoldsOnly(char value) const {
    const auto* const bytes = static_cast<const char*>(mPointer);
    return std::all_of(bytes, bytes + mSize, [value](char byte) { return byte == value; });
  }

  // Fills and unlocks the block, has the kernel take some pages, and returns where it was.
  char* Fill(std::uint32_t first_page = 0, std::uint32_t page_count = 0) {
    EXPECT_EQ(LockMemory(), eErrNone);
    auto* const bytes = static_cast<char*>(std::memset(mPointer, 7, mSize));
    UnlockMemory();
    EXPECT_EQ(madvise(bytes + first_page * kPage, page_count * kPage, MADV_DONTNEED), 0);
    return bytes;
  }
};

bool IsMapped(void* address) { return msync(address, 1, MS_ASYNC) == 0 || errno != ENOMEM; }

TEST(DiscardableMemory, BeginsAsItsConstructorSays) {
  for (const std::uint32_t size : {0U, 10000U}) {
    for (const int allocate : {0, 1, -1}) {
      SCOPED_TRACE(testing::Message() << size << ' ' << allocate);
      Memory memory(size, allocate);
      const int allocated = size != 0 && allocate != 0 ? 1 : 0;
      EXPECT_EQ(memory.mSize, size);
      EXPECT_EQ(memory.mPointer, nullptr);
      EXPECT_EQ(memory.mLockCount, 0U);
      EXPECT_EQ(memory.IsAllocated(), allocated);
      EXPECT_EQ(memory.IsDiscarded(), 1 - allocated);
      EXPECT_EQ(memory.LockMemory(), size == 0 ? eErrOutOfMemory : eErrNone);
      EXPECT_EQ(memory.IsAllocated(), 1);
      EXPECT_EQ(memory.IsDiscarded(), size == 0 ? 1 : 0);
    }
  }
}

TEST(DiscardableMemory, OfNoBytesNeedsASize) {
  Memory memory;
  EXPECT_EQ(memory.LockMemory(), eErrOutOfMemory);
  EXPECT_EQ(memory.mPointer, nullptr);
  EXPECT_EQ(memory.mLockCount, 0U);
  EXPECT_EQ(memory.AllocateMemory(5000), eErrNone);
  EXPECT_EQ(memory.LockMemory(), eErrNone);
  EXPECT_TRUE(memory.HoldsOnly(0));
}

TEST(DiscardableMemory, StaysLockedUntilTheLastUnlock) {
  Memory memory(3 * kPage, 1);
  const void* const address = memory.Fill();
  EXPECT_EQ(memory.LockMemory(), eErrNone);
  EXPECT_EQ(memory.LockMemory(), eErrNone);
  EXPECT_EQ(memory.mLockCount, 2U);
  memory.UnlockMemory();
  EXPECT_EQ(memory.mPointer, address);
  EXPECT_TRUE(memory.HoldsOnly(7));
  for (int i = 0; i < 2; ++i) {  // once more than it was locked
    memory.UnlockMemory();
    EXPECT_EQ(memory.mPointer, nullptr);
    EXPECT_EQ(memory.mLockCount, 0U);
  }
}

TEST(DiscardableMemory, IsReplacedByZerosWhenAnyPageIsTaken) {
  constexpr std::uint32_t kTaken[][2] = {{0, 1}, {2, 1}, {4, 1}, {0, 5}};
  for (const auto& [first, count] : kTaken) {
    SCOPED_TRACE(testing::Message() << count << " from " << first);
    Memory memory(5 * kPage, 1);
    memory.Fill(first, count);
    EXPECT_EQ(memory.IsAllocated(), 1);
    EXPECT_EQ(memory.IsDiscarded(), 1);
    EXPECT_EQ(memory.LockMemory(), eErrNone);
    EXPECT_EQ(memory.IsDiscarded(), 0);
    EXPECT_TRUE(memory.HoldsOnly(0));
  }
}

TEST(DiscardableMemory, IsFreedWhileLocked) {
  std::optional<Memory> memory(std::in_place, kPage, 1);
  for (int i = 0; i < 3; ++i) ASSERT_EQ(memory->LockMemory(), eErrNone);
  void* const address = memory->mPointer;
  EXPECT_TRUE(IsMapped(address));
  memory.reset();
  EXPECT_FALSE(IsMapped(address));
}

}  // namespace
