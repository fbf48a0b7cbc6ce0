#include <sys/stat.h>

#include <regex>
#include <set>
#include <utility>

#include "file/FileTest.h"

namespace {

class RenameDelete : public FileTest {
 protected:
  static std::string NameOf(const TestFile& file) {
    char name[OZFile::kPathSize] = {};
    return file.GetFileName(name, OZFile::kPathSize) == eErrNone ? name : "(none)";
  }

  // Returns the number of message boxes since the last call.
  std::size_t Boxes() { return std::exchange(host_.boxes, {}).size(); }
};

TEST_F(RenameDelete, ReopensARenamedFileAndClosesADeletedOne) {
  constexpr unsigned kFlags = OZ_OPEN_APPEND | 0x8002;
  for (const unsigned share : {0x00U, 0x10U, 0x20U, 0x30U}) {
    SCOPED_TRACE(share);
    Make(a_, "old", "content", kFlags, share);
    ASSERT_EQ(a_.LockBytes(OZ_BYTES_LOCK, 0, 1), eErrNone);
    EXPECT_EQ(a_.RenameFile(Spec("new")), eErrNone);
    EXPECT_EQ(NameOf(a_), directory_.Path("new"));
    EXPECT_EQ(a_.State(), (FileState{kFlags, share, 7}));  // at the end, to append
    EXPECT_FALSE(directory_.Has("old"));
    EXPECT_EQ(a_.DeleteFileA(), eErrNone);
    EXPECT_FALSE(directory_.Has("new"));
    EXPECT_EQ(a_.IsOpen(), 0);
    // A file that others could have open was opened once more, exclusively, before the deletion.
    EXPECT_EQ(a_.GetOpenFlags(), share == 0x10 ? kFlags : 0x8002U);
    EXPECT_EQ(a_.GetShareMode(), 0x10U);
    EXPECT_EQ(a_.DeleteFileA(), eErrFileState);
    EXPECT_EQ(a_.RenameFile(Spec("new")), eErrFileState);
    ASSERT_EQ(a_.openFile(directory_.Write("old", "").c_str(), 2, 0), eErrNone);
    EXPECT_EQ(NameOf(a_), "(none)");  // `openFile` does not remember its path
    EXPECT_EQ(a_.DeleteFileA(), eErrFileState);
    a_.CloseFile();
  }
  EXPECT_EQ(Boxes(), 0U);
}

TEST_F(RenameDelete, KeepsTheContentEvenIfTheFlagsEmptyTheFile) {
  constexpr unsigned kFlags = OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE | 2;
  Make(a_, "old", "", kFlags);
  ASSERT_EQ(a_.Put("content"), eErrNone);
  EXPECT_EQ(a_.RenameFile(Spec("new")), eErrNone);
  EXPECT_EQ(directory_.Read("new"), "content");
  directory_.Write("taken", "other");
  EXPECT_EQ(a_.RenameFile(Spec("taken")), eErrCannotCreate);
  EXPECT_EQ(a_.RenameFile(Spec("no/where")), eErrNotFound);
  EXPECT_EQ(NameOf(a_), directory_.Path("new"));
  EXPECT_EQ(a_.State(), FileState{kFlags});
  EXPECT_EQ(directory_.Read("new") + directory_.Read("taken"), "contentother");
  EXPECT_EQ(Boxes(), 0U);
}

TEST_F(RenameDelete, ShowsABoxIfSomebodyElseHasTheFileOpen) {
  for (TestFile* file : {&a_, &b_}) Make(*file, "file", "content");
  ASSERT_EQ(a_.LockBytes(OZ_BYTES_LOCK, 0, 1), eErrNone);
  EXPECT_EQ(a_.DeleteFileA(), eErrSharing);
  EXPECT_EQ(Boxes(), 1U);
  EXPECT_EQ(NameOf(a_), directory_.Path("file"));
  EXPECT_EQ(a_.State(), FileState{.flags = 2});  // a failed deletion releases the locks, too
  EXPECT_EQ(a_.RenameFile(Spec("new")), eErrSharing);
  EXPECT_EQ(Boxes(), 1U);
  EXPECT_EQ(OZFile::DeleteFileA(Spec("file")), eErrAccessDenied);
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), Spec("new")), eErrAccessDenied);
  EXPECT_EQ(directory_.Read("file"), "content");

  // While the box is shown, somebody else may open the file exclusively.
  host_.while_box_is_open = [&] {
    b_.CloseFile();
    b_.OpenFile(directory_.Path("file").c_str(), 0x10);
  };
  EXPECT_EQ(a_.DeleteFileA(), eErrSharing);
  EXPECT_EQ(a_.IsOpen(), 0);  // the reopen failed
}

TEST_F(RenameDelete, RefusesToDeleteAReadOnlyFile) {
  directory_.Write("file", "content");
  MakeReadOnly("file");
  // An object with exclusive access is not opened again first, but the deletion itself fails.
  for (const unsigned share : {0x00U, 0x10U}) {
    ASSERT_EQ(a_.OpenFile(Spec("file"), 0, share), eErrNone);
    EXPECT_EQ(a_.DeleteFileA(), eErrAccessDenied);
    EXPECT_EQ(Boxes(), 1U);
    EXPECT_EQ(a_.IsOpen(), 1);
    a_.CloseFile();
  }
}

TEST_F(RenameDelete, WorksOnPathsWithoutAnOpenFile) {
  directory_.Write("file", "content");
  directory_.Write("taken", "other");
  EXPECT_EQ(OZFile::RenameFile(Spec("missing"), Spec("new")), eErrNone);
  EXPECT_EQ(OZFile::DeleteFileA(Spec("missing")), eErrNotFound);
  // This call reports only two errors, and a name that is taken is not one of them.
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), Spec("taken")), eErrNone);
  EXPECT_EQ(directory_.Read("taken"), "other");
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), Spec("new")), eErrNone);
  EXPECT_EQ(directory_.Read("new"), "content");
  EXPECT_EQ(OZFile::DeleteFileA(Spec("new")), eErrNone);
  EXPECT_FALSE(directory_.Has("new"));
}

TEST_F(RenameDelete, RefusesToRenameAcrossDevices) {
  const std::string path = directory_.Write("file", "content");
  for (const std::string device : {"/dev/shm", "/tmp", "."}) {
    struct stat here = {}, there = {};
    if (stat(device.c_str(), &there) != 0 || stat(path.c_str(), &here) != 0) continue;
    if (here.st_dev == there.st_dev) continue;
    const OZFileSpec elsewhere((device + "/orzcore-file-of-another-device").c_str());
    EXPECT_EQ(OZFile::RenameFile(Spec("file"), elsewhere), eErrRenameAcrossDevices);
    EXPECT_EQ(directory_.Read("file"), "content");
    return;
  }
  GTEST_SKIP() << "the system has no second device";
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
