// Two processes that use one file at the same time. The second one is this program, with arguments.
#include <iostream>
#include <thread>
#include <utility>

#include "UserProcess.h"
#include "file/FileTest.h"

namespace {

// How a user opens the file, and the bytes that he locks.
struct Use {
  unsigned share_mode = 0;
  std::int32_t offset = 0;
  std::int32_t length = 0;
};

OZError Begin(TestFile&& file, const std::string& path, const Use& use) {
  const OZError error = file.OpenFile(path.c_str(), use.share_mode);
  if (error != eErrNone || use.length == 0) return error;
  return file.LockBytes(OZ_BYTES_LOCK, use.offset, use.length);
}

using SharedUse = FileTest;

TEST_F(SharedUse, BindsOtherProcessesUntilTheUserIsKilled) {
  constexpr struct {
    Use there, here;
    OZError error;
  } kRows[] = {
      {{OZ_SHARE_EXCLUSIVE}, {0}, eErrSharing},
      {{0, 10, 5}, {OZ_SHARE_EXCLUSIVE}, eErrSharing},
      {{0, 10, 5}, {0, 9, 2}, eErrLocked},
      {{0, 10, 5}, {0, 15, 1}, eErrNone},
  };
  const std::string path = directory_.Write("file", "");
  for (const auto& [there, here, error] : kRows) {
    SCOPED_TRACE(testing::Message() << there.length << " and " << here.share_mode << here.offset);
    UserProcess user({path, std::to_string(there.share_mode), std::to_string(there.offset),
                      std::to_string(there.length)});
    while (user.TakeOutput().empty()) {
      ASSERT_EQ(user.Look(), UserProcess::State::kRuns) << "the user could not begin";
      std::this_thread::yield();
    }
    EXPECT_EQ(Begin(TestFile(), path, here), error);
    user.Kill();
    EXPECT_EQ(Begin(TestFile(), path, here), eErrNone);
    EXPECT_EQ(Begin(TestFile(), path, there), eErrNone);
  }
}

}  // namespace

// As a user, the program reports again and again that it has begun. When nobody takes the reports,
// it waits.
int main(int count, char** arguments) {
  testing::InitGoogleTest(&count, arguments);
  if (count != 5) return RUN_ALL_TESTS();
  TestFile file;
  const Use use = {static_cast<unsigned>(std::stoi(arguments[2])), std::stoi(arguments[3]),
                   std::stoi(arguments[4])};
  if (Begin(std::move(file), arguments[1], use) != eErrNone) return 1;
  while (std::cout << 'x' << std::flush) continue;
  return 1;
}
