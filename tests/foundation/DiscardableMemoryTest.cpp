#include "support/Memory.h"

namespace {

TEST(DiscardableMemory, IsAllocatedAsTheConstructorSays) {
  for (const std::uint32_t size : {0U, 1U, kPage - 1, kPage, 3 * kPage + 1}) {
    for (const int allocate : {0, 1, -1}) {
      SCOPED_TRACE(testing::Message() << size << ' ' << allocate);
      Memory memory(size, allocate);
      const int allocated = size != 0 && allocate != 0 ? 1 : 0;
      EXPECT_EQ(memory.mSize, size);
      EXPECT_EQ(memory.mPointer, nullptr);
      EXPECT_EQ(memory.IsAllocated(), allocated);
      EXPECT_EQ(memory.IsDiscarded(), 1 - allocated);
      EXPECT_EQ(memory.LockMemory(), size == 0 ? eErrOutOfMemory : eErrNone);
      EXPECT_EQ(memory.mLockCount, size == 0 ? 0U : 1U);
      EXPECT_EQ(memory.IsAllocated(), 1);
      EXPECT_EQ(memory.IsDiscarded(), size == 0 ? 1 : 0);
      if (size == 0) {
        EXPECT_EQ(memory.AllocateMemory(5000) + memory.LockMemory(), 0);
      }
      EXPECT_TRUE(memory.IsZero());
    }
  }
  EXPECT_EQ(Memory().mSize, 0U);
  EXPECT_EQ(Memory().IsAllocated(), 0);
}

TEST(DiscardableMemory, StaysLockedUntilTheLastUnlock) {
  Memory memory(3 * kPage, 1);
  for (int round = 0; round < 3; ++round) {
    const void* const address = memory.Fill();
    EXPECT_EQ(memory.LockMemory(), eErrNone);
    EXPECT_EQ(memory.mLockCount, 2U);
    memory.UnlockMemory();
    EXPECT_EQ(memory.mPointer, address);
    EXPECT_TRUE(memory.IsWhole());
    for (int i = 0; i < 2; ++i) {  // once more than LockMemory was called
      memory.UnlockMemory();
      EXPECT_EQ(memory.mPointer, nullptr);
      EXPECT_EQ(memory.mLockCount, 0U);
    }
    EXPECT_EQ(memory.IsDiscarded(), 0);
    EXPECT_EQ(memory.LockMemory(), eErrNone);
    EXPECT_TRUE(memory.IsWhole());
    memory.UnlockMemory();
  }
}

}  // namespace
