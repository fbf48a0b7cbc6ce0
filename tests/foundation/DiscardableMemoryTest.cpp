// The pages of the memory are taken as the system takes them. Only for POSIX systems.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "support/Memory.h"

namespace {

TEST(DiscardableMemory, IsAllocatedAsTheConstructorSays) {
  for (const std::uint32_t size : {0U, 1U}) {
    for (const int allocate : {0, 1}) {
      SCOPED_TRACE(testing::Message() << size << ' ' << allocate);
      Memory memory(size, allocate);
      EXPECT_EQ(memory.IsAllocated(), size != 0 ? allocate : 0);
      EXPECT_EQ(memory.IsDiscarded(), 1 - memory.IsAllocated());
      EXPECT_EQ(memory.LockMemory(), size == 0 ? eErrOutOfMemory : eErrNone);
    }
  }
}

TEST(DiscardableMemory, BecomesZerosWhenAnyPageIsTaken) {
  const auto page = static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));
  const struct { std::uint32_t first, count; } kTaken[] = {{0, 0}, {0, 1}, {2, 1}, {4, 1}, {0, 5}};
  for (const auto& [first, count] : kTaken) {
    SCOPED_TRACE(testing::Message() << count << " pages from " << first);
    std::optional<Memory> memory(std::in_place, 5 * page - 1, 1);
    std::string content(5 * page - 1, 'x');
    content.replace(page, 8, 8, '\0');  // also a page that begins with zeros is complete
    ASSERT_EQ(memory->LockMemory() + memory->LockMemory(), eErrNone);
    char* const bytes = memory->Bytes();
    content.copy(bytes, content.size());
    for (char* const left : {bytes, static_cast<char*>(nullptr), static_cast<char*>(nullptr)}) {
      memory->UnlockMemory();  // the third one does nothing
      EXPECT_EQ(memory->mPointer, left);
    }
    ASSERT_EQ(madvise(bytes + first * page, count * page, MADV_DONTNEED), 0);
    EXPECT_EQ(memory->IsDiscarded(), count == 0 ? 0 : 1);
    EXPECT_EQ(memory->LockMemory(), eErrNone);
    EXPECT_EQ(memory->IsDiscarded(), 0);
    if (count != 0) content.assign(content.size(), '\0');
    EXPECT_TRUE(memory->Content() == content);
    void* const locked = memory->mPointer;
    memory.reset();
    EXPECT_TRUE(msync(locked, 1, MS_ASYNC) != 0 && errno == ENOMEM) << "not freed";
  }
}

}  // namespace
