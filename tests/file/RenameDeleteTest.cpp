#include <regex>
#include <set>

#include "file/FileTest.h"

namespace {

using RenameDelete = FileTest;

TEST_F(RenameDelete, LosesAFileThatAnotherUserOpensWhileTheBoxIsShown) {
  for (TestFile* file : {&a_, &b_}) Make(*file, "file", "content");
  host_.while_box_is_open = [&] {
    b_.CloseFile();
    b_.OpenFile(directory_.Path("file").c_str(), OZ_SHARE_EXCLUSIVE);
  };
  EXPECT_EQ(a_.DeleteFileA(), eErrSharing);
  EXPECT_EQ(a_.IsOpen(), 0);  // the reopen failed
}

TEST_F(RenameDelete, MakesTemporaryFilesWithNamesOfTheirOwn) {
  std::set<std::string> paths;
  for (const std::string prefix : {"orz", "orzcore", "o", "", "o/r\\z"}) {
    OZFileSpec spec;
    OZFile::MakeTempFileName(prefix.c_str(), spec);
    const std::filesystem::path path = spec.GetFullPath();
    const std::regex pattern((prefix.size() < 3 ? prefix : "orz") + "[0-9A-F]+\\.TMP",
                             std::regex::icase);
    EXPECT_TRUE(std::regex_match(path.filename().string(), pattern)) << path;
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    EXPECT_TRUE(paths.insert(path.string()).second) << path;
    EXPECT_EQ(OZFile::DeleteFileA(spec), eErrNone);
  }
}

}  // namespace
