#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fstream>
#include <iostream>
#include <list>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/platform.h"

namespace {

using namespace platform;

constexpr unsigned int kKind = kGlobalMovable | kGlobalZeroFilled | kGlobalDiscardable;
constexpr std::uint32_t kMebibyte = 1 << 20;
constexpr std::uint32_t kLargest = 0xFFFFFFFF;
const auto kPage = static_cast<std::uint32_t>(sysconf(_SC_PAGESIZE));

// No byte is 0 but the first word of every second page.
const std::vector<unsigned char> kPattern = [] {
  std::vector<unsigned char> bytes(kMebibyte);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool blank = i / kPage % 2 == 1 && i % kPage < sizeof(std::uint64_t);
    bytes[i] = blank ? 0 : static_cast<unsigned char>(1 + i % 251);
  }
  return bytes;
}();

struct Block {
  explicit Block(std::uint32_t bytes) : size(bytes), handle(GlobalAlloc(kKind, bytes)) {}
  ~Block() { GlobalFree(handle); }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;

  bool Lock() {
    auto* const locked = static_cast<unsigned char*>(GlobalLock(handle));
    if (locked != nullptr) address = locked;
    return locked != nullptr;
  }
  bool Fill() { return Lock() && std::memcpy(address, kPattern.data(), size) == address; }
  bool IsWhole() const { return std::memcmp(address, kPattern.data(), size) == 0; }

  std::size_t size;
  void* handle;
  unsigned char* address = nullptr;  // where it was locked last
};

TEST(GlobalMemory, IsZeroFilledAndKeepsItsContent) {
  for (const std::uint32_t size : {1U, 4095U, 4096U, 4097U, kMebibyte - 1, kMebibyte}) {
    SCOPED_TRACE(size);
    Block block(size);
    ASSERT_TRUE(block.Lock());
    EXPECT_EQ(std::count(block.address, block.address + size, 0), size);
    ASSERT_TRUE(block.Fill());
    EXPECT_EQ(GlobalUnlock(block.handle), 1);
    EXPECT_TRUE(block.IsWhole());
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(GlobalUnlock(block.handle), 0);
      EXPECT_EQ(GlobalUnlock(block.handle), 0);  // one too many
      EXPECT_EQ(GlobalFlags(block.handle), 0U);
      ASSERT_TRUE(block.Lock());
      EXPECT_TRUE(block.IsWhole());
    }
  }
}

TEST(GlobalMemory, IsDiscardedForGoodWithAnyOfItsPages) {
  for (const std::uint32_t taken : {0U, 2U, 4U}) {
    SCOPED_TRACE(taken);
    Block block(5 * kPage - 1);
    ASSERT_TRUE(block.Fill());
    GlobalUnlock(block.handle);
    ASSERT_EQ(madvise(block.address + taken * kPage, kPage, MADV_DONTNEED), 0);
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(GlobalFlags(block.handle), kGlobalDiscarded);
      EXPECT_FALSE(block.Lock());
      EXPECT_EQ(GlobalUnlock(block.handle), 0);
    }
  }
}

TEST(GlobalMemory, IsOfAnySizeButOfOneKind) {
  Block none(0);
  ASSERT_NE(none.handle, nullptr);
  EXPECT_EQ(GlobalFlags(none.handle), kGlobalDiscarded);
  EXPECT_FALSE(none.Lock());
  for (const unsigned int kind : {0U, kGlobalDiscardable, kGlobalZeroFilled, kKind | 1U}) {
    EXPECT_EQ(GlobalAlloc(kind, 1), nullptr) << kind;
  }
  Block largest(kLargest);
  if (largest.handle == nullptr) GTEST_SKIP() << "no room for 4 GiB";
  ASSERT_TRUE(largest.Lock());
  largest.address[kLargest - 1] = 1;
  EXPECT_EQ(largest.address[0], 0);
}

TEST(GlobalMemory, NeedsAddressSpace) {
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  rlimit before = {};
  getrlimit(RLIMIT_AS, &before);
  const rlimit limit = {pages * kPage + kLargest / 2, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
  const void* const block = GlobalAlloc(kKind, kLargest);
  setrlimit(RLIMIT_AS, &before);
  EXPECT_EQ(block, nullptr);
}

// MADV_PAGEOUT makes the kernel take pages as it does when memory is short: none that was written
// to after it was offered. (MADV_DONTNEED would empty the pages of a locked block too.)
TEST(GlobalMemory, LosesNoPageUnnoticed) {
  constexpr std::uint32_t kPages = 8;
  std::optional<Block> block(std::in_place, kPages * kPage);
  ASSERT_TRUE(block->Fill());
  std::atomic<unsigned char*> target = block->address;
  std::thread taker([&target, random = std::minstd_rand()]() mutable {
    while (unsigned char* const address = target) {
      madvise(address + random() % kPages * kPage, kPage, MADV_PAGEOUT);
    }
  });
  int kept = 0;
  int discarded = 0;
  int torn = 0;
  for (int i = 0; i < 10000; ++i) {
    GlobalUnlock(block->handle);
    if (block->Lock()) {
      ++(block->IsWhole() ? kept : torn);
    } else {
      ++discarded;
      block.emplace(kPages * kPage).Fill();
      target = block->address;
    }
  }
  target = nullptr;
  taker.join();
  EXPECT_EQ(torn, 0);
  EXPECT_GT(kept, 0);
  if (discarded == 0) GTEST_SKIP() << "this kernel takes no page on request";
}

// A control group with little memory: inside the group of this process, or beside it where a group
// of processes may hold no other.
struct LittleMemory {
  LittleMemory() {
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; path.empty() && std::getline(groups, line);) {
      const std::string group = line.substr(line.find(":/") + 1);
      if (line.starts_with("0::")) Make("/sys/fs/cgroup" + group + "/..", "/memory.max");
      if (line.find(":memory:") == std::string::npos) continue;
      Make("/sys/fs/cgroup/memory" + group, "/memory.limit_in_bytes");
    }
  }
  ~LittleMemory() { rmdir(path.c_str()); }
  void Make(const std::string& parent, const std::string& limit) {
    path = parent + "/orzcore_test_" + std::to_string(getpid());
    mkdir(path.c_str(), 0755);
    const bool limits = access((path + limit).c_str(), W_OK) == 0;  // else no group for memory
    if (limits && std::ofstream(path + limit) << kLimit << std::flush) return;
    rmdir(path.c_str());
    path.clear();
  }

  static constexpr std::uint32_t kLimit = 32 * kMebibyte;
  std::string path;  // empty if the machine has none to give
};

// Fills twice the memory that there is, and prints what became of it.
void UseTooMuchMemory() {
  Block locked(kMebibyte);
  int torn = locked.Fill() ? 0 : 1;
  std::list<Block> blocks;
  while (blocks.size() < 2 * LittleMemory::kLimit / kMebibyte) {
    if (!blocks.emplace_back(kMebibyte).Fill()) ++torn;
    GlobalUnlock(blocks.back().handle);
  }
  int discarded = 0;
  for (Block& block : blocks) {
    const bool lost = GlobalFlags(block.handle) == kGlobalDiscarded;
    const bool found = block.Lock();
    if (!found) ++discarded;
    if (found && (lost || !block.IsWhole())) ++torn;
    GlobalUnlock(block.handle);
  }
  if (!locked.IsWhole()) ++torn;
  std::cerr << discarded << " discarded, " << torn << " torn";
}

TEST(GlobalMemory, GivesWayWhenMemoryIsShort) {
  const LittleMemory group;
  if (group.path.empty()) GTEST_SKIP() << "no control group for memory can be made here";
  const auto run = [&group] {
    std::ofstream(group.path + "/cgroup.procs") << getpid() << std::flush;
    UseTooMuchMemory();
    _exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^[1-9][0-9]* discarded, 0 torn");
}

}  // namespace
