#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <optional>
#include <random>
#include <thread>
#include <vector>

#include "orzcore/foundation.h"

namespace {

const auto kPage = static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));

// Bytes that are not 0, except for the first word of every second page.
const std::vector<char> kPattern = [] {
  std::vector<char> bytes(8 * kPage);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool is_blank = i / kPage % 2 == 1 && i % kPage < sizeof(std::uint64_t);
    bytes[i] = is_blank ? '\0' : static_cast<char>(1 + i % 251);
  }
  return bytes;
}();

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

bool IsMapped(void* address) { return msync(address, 1, MS_ASYNC) == 0 || errno != ENOMEM; }

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

TEST(DiscardableMemory, IsReplacedByZerosWhenAnyPageIsTaken) {
  constexpr std::uint32_t kTaken[][2] = {{0, 1}, {2, 1}, {4, 1}, {0, 5}};
  for (const auto& [first, count] : kTaken) {
    SCOPED_TRACE(testing::Message() << count << " from " << first);
    Memory memory(5 * kPage - 1, 1);
    char* const bytes = memory.Fill();
    memory.UnlockMemory();
    ASSERT_EQ(madvise(bytes + first * kPage, count * kPage, MADV_DONTNEED), 0);
    EXPECT_EQ(memory.IsAllocated(), 1);
    EXPECT_EQ(memory.IsDiscarded(), 1);
    EXPECT_EQ(memory.LockMemory(), eErrNone);
    EXPECT_EQ(memory.IsDiscarded(), 0);
    EXPECT_TRUE(memory.IsZero());
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

// MADV_PAGEOUT makes the kernel take pages in the way that it does when memory is short: it does
// not take a page that was written to after it was unlocked. (MADV_DONTNEED would also empty the
// pages of a locked block.)
TEST(DiscardableMemory, NoticesEveryLostPage) {
  constexpr std::uint32_t kPages = 8;
  Memory memory(kPages * kPage, 1);
  std::atomic<char*> target = memory.Fill();
  std::thread taker([&target, random = std::minstd_rand()]() mutable {
    while (char* const address = target) {
      madvise(address + random() % kPages * kPage, kPage, MADV_PAGEOUT);
    }
  });
  int kept = 0, discarded = 0, torn = 0;
  for (int i = 0; i < 10000; ++i) {
    memory.UnlockMemory();
    EXPECT_EQ(memory.LockMemory(), eErrNone);
    const bool is_new = memory.IsZero();
    ++(memory.IsWhole() ? kept : is_new ? discarded : torn);
    if (!is_new) continue;
    target = memory.Fill();
    memory.UnlockMemory();
  }
  target = nullptr;
  taker.join();
  EXPECT_EQ(torn, 0);
  EXPECT_GT(kept, 0);
  if (discarded == 0) GTEST_SKIP() << "this kernel takes no page on request";
}

}  // namespace
