#include <optional>
#include <sstream>

#include "platform/FileFixtures.h"
#include "platform/posix/FileHandle.h"

namespace {

using namespace platform;

// How a user opens a file. A user who may not write the file gets a descriptor that cannot take
// exclusive locks.
struct OpenMode {
  bool is_writable;
  std::uint32_t share;
};

constexpr OpenMode kWriter = {true, kShareAll};
constexpr OpenMode kReader = {false, kShareAll};
constexpr OpenMode kOpenModes[] = {kWriter, {true, kShareNone}, kReader, {false, kShareNone}};

File OpenWith(const OpenMode& mode) {
  chmod("file", mode.is_writable ? 0644 : 0444);
  std::optional<Unprivileged> user;
  if (!mode.is_writable) user.emplace();
  return File("file", mode.share, kOpenExisting, mode.is_writable ? kReadWrite : kGenericRead);
}

int CheckMode(const File& file, const OpenMode& mode) {
  return FileOf(file.handle)->file.is_writable == mode.is_writable ? 0 : 1;
}

TEST(ShareModes, BindHandlesAndProcessesUntilTheHolderEnds) {
  const Folder folder;
  Put("file", "old");
  for (const OpenMode& first : kOpenModes) {
    for (const OpenMode& second : kOpenModes) {
      SCOPED_TRACE(testing::Message() << &first - kOpenModes << ", then " << &second - kOpenModes);
      const bool do_share = first.share == kShareAll && second.share == kShareAll;
      const std::uint32_t expected = do_share ? 0 : 32;
      Child holder = MakeHolder([&] { return OpenWith(first); },
                                [&](File& held) { return CheckMode(held, first); });
      EXPECT_EQ(OpenWith(second).error, expected);
      holder.Kill();
      File file = OpenWith(first);
      EXPECT_EQ(file.error, 0U);
      EXPECT_EQ(OpenWith(second).error, expected);
      EXPECT_EQ(OpenWith(second).error, expected);  // the first attempt left no mark
      file.Close();
      EXPECT_EQ(OpenWith(second).error, 0U);
    }
  }
}

// A step: the user, A or B, or C, who is another process; the action; offset; length; error.
constexpr char kLockSteps[] = R"(
  A lock 100 10 0    B lock 99 1 0    B lock 110 1 0    B lock 100 1 33    C lock 109 2 33
  B lock 0 4294967295 33    C lock 98 1 0    B unlock 99 1 0    B unlock 110 1 0

  own:      A lock 100 10 33    A lock 105 1 33    A lock 90 11 33    A lock 90 10 0
  merged:   A lock 110 767 0    C lock 876 1 33    C lock 877 1 0    A lock 877 1 0
            A unlock 110 768 158    A unlock 111 766 158    B unlock 110 767 158
            A unlock 110 767 0    A unlock 110 767 158    B lock 110 767 0    B lock 877 1 33
            A unlock 877 1 0    B lock 877 1 0
  empty:    A lock 10 0 0    A lock 10 0 33    B lock 0 20 0    A lock 5 10 33    B unlock 0 20 0
            A lock 10 5 0
            A unlock 10 0 0    B lock 10 1 33    A unlock 10 5 0    A unlock 10 5 158
            A unlock 10 0 158
  far:      A lock 2147483647 2 0    C lock 2147483648 1 33    B lock 2147483649 1 0
            A lock 4294967295 4294967295 0    B lock 4294967295 1 33    B lock 4294967294 1 0 )";

constexpr char kTransferSteps[] = R"(
  A lock 4 2 0    B read 0 4 0    B read 0 5 33    B read 5 9 33    B read 6 9 0    B read 4 0 0
  C read 4 1 33    B write 0 4 0    B write 3 2 33    B write 5 1 33    B write 6 4 0
  B write 4 0 0    A write 4 1 0    A read 0 9 0
  B lock 8 1 0    A read 3 4 0    B unlock 8 1 0    A lock 1000 1 0    B read 0 2000 33
  shorter:  B end 1 0 0    C lock 4 1 33    B read 0 5 33    B read 0 4 0 )";

void Follow(const char* steps, const OpenMode& first, const OpenMode& second) {
  File a = OpenWith(first);
  File b = OpenWith(second);
  std::istringstream words(steps);
  for (std::string user, action; words >> user;) {
    if (user.back() == ':') continue;
    std::uint32_t offset = 0, length = 0;
    int error = 0;
    ASSERT_TRUE(words >> action >> offset >> length >> error);
    const auto act = [&](File& file) { return file.Do(action, offset, length); };
    const auto act_in_child = [&] {
      Child child([&] {
        File c = OpenWith(second);
        return act(c);
      });
      return child.Result();
    };
    const int result = user == "C" ? act_in_child() : act(user == "A" ? a : b);
    EXPECT_EQ(result, error) << user << ' ' << action << ' ' << offset << ' ' << length << " of "
                             << first.is_writable << second.is_writable;
  }
}

TEST(ByteLocks, BelongToOneHandleAndAreReleasedAsWholeRanges) {
  const Folder folder;
  Put("file", "");
  for (const OpenMode& first : {kWriter, kReader}) {
    for (const OpenMode& second : {kWriter, kReader}) Follow(kLockSteps, first, second);
  }
  EXPECT_EQ(Content("file"), "");
  const File file = OpenWith(kWriter);
  EXPECT_EQ(File::Check(LockFile(file.handle, 0, 1, 1, 0)), 87);
  EXPECT_EQ(File::Check(UnlockFile(file.handle, 0, 0, 1, 1)), 87);
}

TEST(ByteLocks, RefuseTransfersOfOthersAndSurviveTruncation) {
  const Folder folder;
  Put("file", "0123456789");
  Follow(kTransferSteps, kWriter, kWriter);
  EXPECT_EQ(Content("file"), "x");
}

TEST(ByteLocks, HaveNoFixedLimitPerHandle) {
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
