// The note about a close that cannot write to the disk, on Windows. The runner of Windows programs
// shows the devices of this machine as files; this one takes writes, but refuses to be flushed.
#include "platform/FileFixtures.h"

namespace {

constexpr char kDevice[] = R"(Z:\dev\null)";

TEST(FailedFlush, IsReportedByTheVeryNextOpenOfTheFile) {
  if (File(kDevice).error != 0)
    GTEST_SKIP() << "only the runner has a file that refuses to be flushed";
  const struct {
    const char* what;  // happens between the close and the open
    void (*act)();
    std::uint32_t disposition, error;  // of the open
  } kRows[] = {{"nothing", [] {}, platform::kOpenExisting, 29},
               {"nothing", [] {}, platform::kCreateAlways, 0},
               {"a deletion", [] { platform::remove("missing"); }, platform::kOpenExisting, 0},
               {"a rename", [] { platform::rename("no", "new"); }, platform::kOpenExisting, 0},
               {"another open", [] { const File other("no"); }, platform::kOpenExisting, 0}};
  const Folder folder;
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.what << ", then " << row.disposition);
    File file(kDevice);
    EXPECT_EQ(file.Write("x"), 0);
    EXPECT_EQ(file.Close(), 29);
    row.act();
    EXPECT_EQ(File(kDevice, kShareAll, row.disposition).error, row.error);
    platform::remove("missing");  // the close of an emptied device leaves a note, too
    EXPECT_EQ(File(kDevice).error, 0U);
  }
}

}  // namespace
