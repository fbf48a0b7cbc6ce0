#include <optional>
#include <sstream>

#include "platform/FileFixtures.h"
#include "platform/posix/FileHandle.h"

namespace {

using namespace platform;

// How a user opens a file: who may not write it gets a descriptor that takes no write locks.
struct Manner {
  bool is_writable;
  std::uint32_t share;
};

constexpr Manner kWriter = {true, kShareAll};
constexpr Manner kReader = {false, kShareAll};
constexpr Manner kManners[] = {kWriter, {true, kShareNone}, kReader, {false, kShareNone}};

File OpenIn(const Manner& manner) {
  chmod("file", manner.is_writable ? 0644 : 0444);
  std::optional<Unprivileged> user;
  if (!manner.is_writable) user.emplace();
  return File("file", manner.share, kOpenExisting, manner.is_writable ? kReadWrite : kGenericRead);
}

int CheckManner(const File& file, const Manner& manner) {
  return FileOf(file.handle)->file.is_writable == manner.is_writable ? 0 : 1;
}

TEST(ShareModes, HoldBetweenHandlesAndProcessesUntilTheHolderIsGone) {
  const Folder folder;
  Put("file", "old");
  for (const Manner& first : kManners) {
    for (const Manner& second : kManners) {
      SCOPED_TRACE(testing::Message() << &first - kManners << ", then " << &second - kManners);
      const bool do_share = first.share == kShareAll && second.share == kShareAll;
      const std::uint32_t expected = do_share ? 0 : 32;
      Child holder = MakeHolder([&] { return OpenIn(first); },
                                [&](File& held) { return CheckManner(held, first); });
      EXPECT_EQ(OpenIn(second).error, expected);
      holder.Kill();
      File file = OpenIn(first);
      EXPECT_EQ(file.error, 0U);
      EXPECT_EQ(OpenIn(second).error, expected);
      EXPECT_EQ(OpenIn(second).error, expected);  // the first attempt left no mark
      file.Close();
      EXPECT_EQ(OpenIn(second).error, 0U);
    }
  }
}

// User A or B, or C in a process of its own; the deed; offset, length; error.
constexpr char kLockSteps[] = R"(
  A lock 100 10 0    B lock 99 1 0    B lock 110 1 0    B lock 100 1 33    C lock 109 2 33
  B lock 0 4294967295 33    C lock 98 1 0    B unlock 99 1 0    B unlock 110 1 0

  own:      A lock 100 10 33    A lock 105 1 33    A lock 90 11 33    A lock 90 10 0
  merged:   A lock 110 767 0    C lock 876 1 33    C lock 877 1 0    A lock 877 1 0
            A unlock 110 768 158    A unlock 111 766 158    B unlock 110 767 158
            A unlock 110 767 0    A unlock 110 767 158    B lock 110 767 0    B lock 877 1 33
            A unlock 877 1 0    B lock 877 1 0
  empty:    A lock 10 0 0    A lock 10 0 33    B lock 0 20 0    A lock 5 10 33    B unlock 0 20 0    A lock 10 5 0
            A unlock 10 0 0    B lock 10 1 33    A unlock 10 5 0    A unlock 10 5 158
            A unlock 10 0 158
  far:      A lock 2147483647 2 0    C lock 2147483648 1 33    B lock 2147483649 1 0
            A lock 4294967295 4294967295 0    B lock 4294967295 1 33    B lock 4294967294 1 0 )";

constexpr char kTransferSteps[] = R"(
  A lock 4 2 0    B read 0 4 0    B read 0 5 33    B read 5 9 33    B read 6 9 0    B read 4 0 0
  C read 4 1 33    B write 0 4 0    B write 3 2 33    B write 5 1 33    B write 6 4 0
  B write 4 0 0    A write 4 1 0    A read 0 9 0    A lock 1000 1 0    B read 0 2000 33
  shorter:  B end 1 0 0    C lock 4 1 33    B read 0 5 33    B read 0 4 0 )";

void Follow(const char* steps, const Manner& first, const Manner& second) {
  File a = OpenIn(first);
  File b = OpenIn(second);
  std::istringstream words(steps);
  for (std::string user, deed; words >> user;) {
    if (user.back() == ':') continue;
    std::uint32_t offset = 0, length = 0;
    int error = 0;
    ASSERT_TRUE(words >> deed >> offset >> length >> error);
    const auto act = [&](File& file) { return file.Do(deed, offset, length); };
    const auto act_elsewhere = [&] {
      Child child([&] {
        File c = OpenIn(second);
        return act(c);
      });
      return child.Result();
    };
    const int result = user == "C" ? act_elsewhere() : act(user == "A" ? a : b);
    EXPECT_EQ(result, error) << user << ' ' << deed << ' ' << offset << ' ' << length << " of "
                             << first.is_writable << second.is_writable;
  }
}

TEST(ByteLocks, AreOfOneHandleAndEndAsTheyBegan) {
  const Folder folder;
  Put("file", "");
  for (const Manner& first : {kWriter, kReader}) {
    for (const Manner& second : {kWriter, kReader}) Follow(kLockSteps, first, second);
  }
  EXPECT_EQ(Content("file"), "");
  const File file = OpenIn(kWriter);
  EXPECT_EQ(File::Check(LockFile(file.handle, 0, 1, 1, 0)), 87);
  EXPECT_EQ(File::Check(UnlockFile(file.handle, 0, 0, 1, 1)), 87);
}

TEST(ByteLocks, StopTransfersOfOthersAndOutliveTruncation) {
  const Folder folder;
  Put("file", "0123456789");
  Follow(kTransferSteps, kWriter, kWriter);
  EXPECT_EQ(Content("file"), "x");
}

TEST(ByteLocks, AreAsManyAsMemoryHolds) {
  constexpr std::uint32_t kCount = 300;
  const Folder folder;
  Put("file", "");
  File file("file");
  const auto offset = [](std::uint32_t i) { return i * 7 % kCount * 2; };  // in disorder
  for (std::uint32_t i = 0; i < kCount; ++i) ASSERT_EQ(file.Lock(offset(i), 2), 0);
  for (std::uint32_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(file.Lock(offset(i) + 1, 1), 33);
    ASSERT_EQ(file.Unlock(offset(i), 2), 0);
    ASSERT_EQ(file.Unlock(offset(i), 2), 158);
  }
}

}  // namespace
