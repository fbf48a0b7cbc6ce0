#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <regex>
#include <set>
#include <string>
#include <utility>

#include "support/FakeHost.h"
#include "support/TestFiles.h"

namespace {

class RenameDelete : public testing::Test {
 protected:
  std::string NameOf(const TestFile& file) {
    char name[OZFile::kPathSize] = {};
    return file.GetFileName(name, OZFile::kPathSize) == eErrNone ? name : "(closed)";
  }
  OZFileSpec Spec(const char* name) const { return OZFileSpec(directory_.Path(name).c_str()); }

  // Returns the number of alerts since the last call, and checks their texts.
  std::size_t Alerts() {
    for (const Box& box : host_.boxes) {
      EXPECT_EQ(box.text, "Cannot access file because it is being used.");
      EXPECT_EQ(box.caption, "Morvane");
      EXPECT_EQ(box.style, 0x30U);
    }
    return std::exchange(host_.boxes, {}).size();
  }

  FakeHost host_;
  TestDirectory directory_;
};

TEST_F(RenameDelete, ReopensARenamedFileAndClosesADeletedOne) {
  for (const unsigned share : {0x00U, 0x10U, 0x20U, 0x30U}) {
    directory_.Write("old", "content");
    TestFile file;
    const unsigned flags = OZ_OPEN_APPEND | 0x8002;
    ASSERT_EQ(file.OpenFile(directory_.Path("old").c_str(), flags, share), eErrNone);
    ASSERT_EQ(file.LockBytes(0, 0, 1), eErrNone);
    EXPECT_EQ(file.RenameFile(Spec("new")), eErrNone);
    EXPECT_EQ(NameOf(file), directory_.Path("new"));
    EXPECT_EQ(file.GetOpenFlags(), flags);
    EXPECT_EQ(file.GetShareMode(), share);
    EXPECT_EQ(file.mLockCount, 0);
    EXPECT_EQ(file.Position(), 7);  // the flags contain OZ_OPEN_APPEND
    EXPECT_EQ(directory_.Read("new"), "content");
    EXPECT_FALSE(directory_.Has("old"));
    EXPECT_EQ(file.DeleteFileA(), eErrNone);
    EXPECT_FALSE(directory_.Has("new"));
    EXPECT_EQ(file.IsOpen(), 0);
    // A file that others could have open was opened once more, exclusively, before the deletion.
    EXPECT_EQ(file.GetOpenFlags(), share == 0x10 ? flags : 0x8002U);
    EXPECT_EQ(file.GetShareMode(), 0x10U);
    EXPECT_EQ(file.DeleteFileA(), eErrFileState);
    EXPECT_EQ(file.RenameFile(Spec("new")), eErrFileState);
    ASSERT_EQ(file.openFile(directory_.Write("old", "").c_str(), 2, 0), eErrNone);
    EXPECT_EQ(file.DeleteFileA(), eErrFileState);  // the object does not know its path
    EXPECT_EQ(Alerts(), 0U);
  }
}

TEST_F(RenameDelete, KeepsTheContentEvenIfTheFlagsEmptyTheFile) {
  TestFile file;
  ASSERT_EQ(file.OpenFile(directory_.Path("old").c_str(), OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE | 2, 0),
            eErrNone);
  ASSERT_EQ(file.Put("content"), eErrNone);
  EXPECT_EQ(file.RenameFile(Spec("new")), eErrNone);
  EXPECT_EQ(directory_.Read("new"), "content");
  directory_.Write("taken", "other");
  EXPECT_EQ(file.RenameFile(Spec("taken")), eErrCannotCreate);
  EXPECT_EQ(NameOf(file), directory_.Path("new"));
  EXPECT_EQ(file.Position(), 0);
  EXPECT_EQ(file.GetOpenFlags(), OZ_OPEN_CREATE | OZ_OPEN_TRUNCATE | 2);
  EXPECT_EQ(directory_.Read("new"), "content");
  EXPECT_EQ(directory_.Read("taken"), "other");
  EXPECT_EQ(file.RenameFile(Spec("no/where")), eErrNotFound);
  EXPECT_EQ(Alerts(), 0U);
}

TEST_F(RenameDelete, ShowsAnAlertIfSomebodyElseHasTheFileOpen) {
  directory_.Write("file", "content");
  TestFile file;
  TestFile other;
  ASSERT_EQ(file.OpenFile(directory_.Path("file").c_str(), 0), eErrNone);
  ASSERT_EQ(other.OpenFile(directory_.Path("file").c_str(), 0), eErrNone);
  ASSERT_EQ(file.LockBytes(0, 0, 1), eErrNone);
  EXPECT_EQ(file.DeleteFileA(), eErrSharing);
  EXPECT_EQ(Alerts(), 1U);
  EXPECT_EQ(NameOf(file), directory_.Path("file"));
  EXPECT_EQ(file.mLockCount, 0);  // a failed deletion releases the locks, too
  EXPECT_EQ(file.RenameFile(Spec("new")), eErrSharing);
  EXPECT_EQ(Alerts(), 1U);
  EXPECT_EQ(OZFile::DeleteFileA(Spec("file")), eErrAccessDenied);
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), Spec("new")), eErrAccessDenied);
  EXPECT_EQ(directory_.Read("file"), "content");

  // While the alert is shown, somebody else may open the file exclusively.
  other.CloseFile();
  ASSERT_EQ(other.OpenFile(directory_.Path("file").c_str(), 0), eErrNone);
  host_.while_box_is_open = [&] {
    other.CloseFile();
    other.OpenFile(directory_.Path("file").c_str(), 0x10);
  };
  EXPECT_EQ(file.DeleteFileA(), eErrSharing);
  EXPECT_EQ(file.IsOpen(), 0);  // the reopen failed
}

TEST_F(RenameDelete, RefusesToDeleteAReadOnlyFile) {
  directory_.Write("file", "content");
  std::filesystem::permissions(directory_.Path("file"), std::filesystem::perms::owner_read);
  TestFile file;
  ASSERT_EQ(file.OpenFile(directory_.Path("file").c_str(), 0, 0), eErrNone);
  EXPECT_EQ(file.DeleteFileA(), eErrAccessDenied);
  EXPECT_EQ(Alerts(), 1U);
  EXPECT_EQ(file.CloseFile(), eErrNone);
  // An object with exclusive access is not opened again first, but the deletion itself fails.
  ASSERT_EQ(file.OpenFile(directory_.Path("file").c_str(), 0, 0x10), eErrNone);
  EXPECT_EQ(file.DeleteFileA(), eErrAccessDenied);
  EXPECT_EQ(Alerts(), 1U);
  EXPECT_EQ(file.IsOpen(), 1);
}

TEST_F(RenameDelete, WorksOnPathsWithoutAnOpenFile) {
  directory_.Write("file", "content");
  EXPECT_EQ(OZFile::RenameFile(Spec("missing"), Spec("new")), eErrNone);
  EXPECT_EQ(OZFile::DeleteFileA(Spec("missing")), eErrNotFound);
  directory_.Write("taken", "other");
  // This call reports only two errors, and a name that is taken is not one of them.
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), Spec("taken")), eErrNone);
  EXPECT_EQ(directory_.Read("taken"), "other");
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), Spec("new")), eErrNone);
  EXPECT_EQ(directory_.Read("new"), "content");
  EXPECT_EQ(OZFile::DeleteFileA(Spec("new")), eErrNone);
  EXPECT_FALSE(directory_.Has("new"));
  EXPECT_EQ(Alerts(), 0U);
}

TEST_F(RenameDelete, RefusesToRenameAcrossDevices) {
  const std::string elsewhere = "/dev/shm/orzcore-" + std::to_string(getpid());
  struct stat here = {}, there = {};
  const bool known = stat(directory_.Path("").c_str(), &here) == 0 && stat("/dev/shm", &there) == 0;
  if (!known || here.st_dev == there.st_dev) GTEST_SKIP() << "needs a second device";
  directory_.Write("file", "content");
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), OZFileSpec(elsewhere.c_str())),
            eErrRenameAcrossDevices);
  EXPECT_FALSE(std::filesystem::exists(elsewhere));
  EXPECT_EQ(directory_.Read("file"), "content");
}

TEST_F(RenameDelete, MakesTemporaryFilesInTheDirectoryOfTMPDIR) {
#ifdef _WIN32
  GTEST_SKIP() << "Windows does not read TMPDIR";
#else
  const std::string here = directory_.Path("");
  const std::pair<std::string, std::string> kDirectories[] = {
      {here, here},       {here.substr(0, here.size() - 1), here}, {"/var/tmp", "/var/tmp/"},
      {"", "/tmp/"},      {std::string(510, '/'), "/tmp/"},  // too long for `CreateFileA`
      {"/tmp\\", "/tmp/"}};  // `CreateFileA` takes `\` as a separator
  std::set<std::string> paths;
  for (const auto& [set, expected] : kDirectories) {
    setenv("TMPDIR", set.c_str(), 1);
    for (const std::string prefix : {"orz", "orzcore", "o", "", "o/r\\z"}) {
      OZFileSpec spec;
      OZFile::MakeTempFileName(prefix.c_str(), spec);
      const std::string path = spec.GetFullPath();
      const std::string start = prefix.size() < 3 ? prefix : "orz";
      EXPECT_TRUE(std::regex_match(path, std::regex(expected + start + "[0-9A-F]{4}\\.TMP")))
          << path;
      EXPECT_TRUE(paths.insert(path).second);
      struct stat status = {};
      EXPECT_EQ(stat(path.c_str(), &status), 0);
      EXPECT_EQ(status.st_mode & 07777, 0600U);
      EXPECT_EQ(status.st_size, 0);
      EXPECT_EQ(OZFile::DeleteFileA(spec), eErrNone);
    }
  }
  setenv("TMPDIR", directory_.Path("missing").c_str(), 1);
  OZFileSpec spec;
  OZFile::MakeTempFileName("orz", spec);
  EXPECT_STREQ(spec.GetFullPath(), "");
  unsetenv("TMPDIR");
#endif
}

}  // namespace
