// What happens to discardable memory when the system takes its pages. Only for POSIX systems.
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "support/Memory.h"

namespace {

bool IsMapped(void* address) { return msync(address, 1, MS_ASYNC) == 0 || errno != ENOMEM; }

TEST(DiscardableMemory, IsReplacedByZerosWhenAnyPageIsTaken) {
  const auto page = static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));
  constexpr std::uint32_t kTaken[][2] = {{0, 1}, {2, 1}, {4, 1}, {0, 5}};
  for (const auto& [first, count] : kTaken) {
    SCOPED_TRACE(testing::Message() << count << " from " << first);
    Memory memory(5 * page - 1, 1);
    char* const bytes = memory.Fill();
    memory.UnlockMemory();
    ASSERT_EQ(madvise(bytes + first * page, count * page, MADV_DONTNEED), 0);
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

}  // namespace
