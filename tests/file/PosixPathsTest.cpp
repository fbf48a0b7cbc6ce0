// Paths of what only POSIX has or proves: links, fifos, devices, read-only files for root, long
// paths, and TMPDIR.
#include <sys/stat.h>

#include <cstdlib>

#include "file/OpenTables.h"

namespace {

class PosixPaths : public OpenTables {
 protected:
  // Returns a path of `file`.
  std::string PathOf(std::size_t length) const {
    const std::string start = directory_.Path("");
    return start + std::string(length - start.size() - 4, '/') + "file";
  }
};

TEST_F(PosixPaths, OpenAsThePageSays) {
  Make(a_, "readonly", "");
  EXPECT_EQ(a_.Put("old"), eErrNone);
  MakeReadOnly("readonly");
  EXPECT_EQ(a_.flushFile(), eErrAccessDenied);
  EXPECT_EQ(a_.IsOpen(), 0);  // it was not opened again
  std::filesystem::create_symlink("file", directory_.Path("link"));
  std::filesystem::create_symlink("no", directory_.Path("dangling"));
  std::filesystem::create_symlink("circle", directory_.Path("circle"));
  ASSERT_EQ(mkfifo(directory_.Path("fifo").c_str(), 0666), 0);
  Check("Path, on POSIX", {{"of a read-only file", "readonly"},
                           {"of a symbolic link to a file", "link"},
                           {"of a symbolic link to a missing file", "dangling"},
                           {"of a symbolic link to itself", "circle"},
                           {"of a fifo", "fifo"},
                           {"of a device", "/dev/full"},
                           {"with 775 characters", PathOf(775)},
                           {"with 776 characters", PathOf(776)},
                           {"with a name of 256 characters", std::string(256, 'x')}});
  EXPECT_EQ(directory_.Read("readonly"), "old");
}

TEST_F(PosixPaths, OfSpecsHaveUpTo514Characters) {
  directory_.Write("file", "old");
  for (const std::size_t length : {514U, 515U}) {
    OZFileSpec spec;
    EXPECT_EQ(a_.OpenFile(PathOf(length).c_str(), 0), eErrNone);
    EXPECT_EQ(a_.GetFileSpec(spec), length == 514 ? eErrNone : eErrSeek);
    a_.CloseFile();
    spec.SetFullPath(PathOf(length).c_str());
    EXPECT_EQ(a_.OpenFile(spec, 2, 0), length == 514 ? eErrNone : eErrNotFound);
    a_.CloseFile();
  }
}

TEST_F(PosixPaths, OfAnotherDeviceAreNoNewNames) {
  directory_.Write("file", "content");
  EXPECT_EQ(OZFile::RenameFile(Spec("file"), OZFileSpec("/proc/file")), eErrRenameAcrossDevices);
  EXPECT_EQ(directory_.Read("file"), "content");
}

TEST_F(PosixPaths, OfTemporaryFilesBeginAsThePageSays) {
  for (const PageRow& row : RowsUnder("guide/file.md", {"`TMPDIR`", "Path"})) {
    SCOPED_TRACE(row.place);
    const bool is_long = row.cells[0] == "510 characters";
    setenv("TMPDIR", is_long ? std::string(510, '/').c_str() : row.cells[0].c_str(), 1);
    OZFileSpec spec;
    OZFile::MakeTempFileName("orz", spec);
    const std::string path = spec.GetFullPath();
    EXPECT_TRUE(path.starts_with(row.cells[1])) << path;
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status) == 0, !row.cells[1].empty()) << path;
    EXPECT_EQ(status.st_mode & 07777, row.cells[1].empty() ? 0 : 0600U) << path;
    OZFile::DeleteFileA(spec);
  }
  unsetenv("TMPDIR");
}

}  // namespace
