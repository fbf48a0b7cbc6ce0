#include <sstream>

#include "platform/FileFixtures.h"

namespace platform = orzcore::platform;

namespace {

using namespace orzcore::platform;

// Renames a file. If the new name is "-", deletes it with `remove`, makes it again, and deletes it
// with `unlink`. Returns 0 or the number of `errno_`.
int Move(const std::string& from, const std::string& to) {
  const auto error_of = [](int result) { return result == 0 ? 0 : errno_(); };
  if (to != "-") return error_of(platform::rename(from.c_str(), to.c_str()));
  const int removed = error_of(platform::remove(from.c_str()));
  if (removed == 0) Put(from.c_str(), "");
  const int unlinked = error_of(platform::unlink(from.c_str()));
  EXPECT_EQ(unlinked, removed);
  return unlinked;
}

// A row: the old name, the new name, the error.
constexpr char kRows[] = R"(
  file there 35    file directory 35    linked link 35    file file 0    linked ./linked 0
  empty .\empty 0    missing missing 2    missing to 2    missing/file to 2    file/file to 2
  file missing/to 2    there empty/there 0    empty/there there 0    file there/to 2    fifo to 5
  readonly moved 0    readonly to 2
  file empty/to 0    file to 2    moved - 5    missing - 2    missing/file - 2    there/file - 2
  directory - 5    fifo - 5    linked - 0 )";

TEST(RenameAndDelete, NeverReplaceAnythingAndDeleteOnlyFiles) {
  for (const bool has_safe_rename : {true, false}) {
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    for (const char* name : {"file", "there", "linked"}) Put(name, name);
    Put("readonly", "", 0444);
    ASSERT_EQ(mkdir("directory", 0777) + mkdir("empty", 0777) + mkfifo("fifo", 0666), 0);
    std::filesystem::create_hard_link("linked", "link");
    std::istringstream rows(kRows);
    int error = 0;
    for (std::string from, to; rows >> from >> to >> error;) {
      EXPECT_EQ(Move(from, to), error) << from << ' ' << to;
    }
    EXPECT_TRUE(rows.eof());
    for (const std::string& name : {std::string(), std::string(256, 'x'), std::string(5000, 'x')}) {
      EXPECT_EQ(Move(name, "to"), 2);
      EXPECT_EQ(Move("there", name), 2);
      EXPECT_EQ(Move(name, "-"), 2);
    }
    EXPECT_EQ(Content("empty/to") + Content("there") + Content("link"), "filetherelinked");
    EXPECT_EQ(Exists("linked") || Exists("to") || !Exists("directory"), false);
  }
}

constexpr char kDirectoryRows[] = R"(
  directory empty 35    directory file 35    directory directory/ 0    ./directory\ directory 0
  directory directory/inside 5    directory moved/ 0    moved/ empty/directory 0    link/ to 2
  link/ link 0    link to 0    to - 5    . new 5    / /new 5    file file/ 35    file to/ 35
  empty/directory moved 0 )";

TEST(RenameAndDelete, RenameDirectoriesToo) {
  for (const bool has_safe_rename : {true, false}) {
    const VolumeGuard guard({.has_safe_rename = has_safe_rename});
    const Folder folder;
    ASSERT_EQ(mkdir("directory", 0777) + mkdir("empty", 0777) + symlink("empty", "link"), 0);
    Put("directory/file", "text");
    Put("file", "");
    std::istringstream rows(kDirectoryRows);
    int error = 0;
    for (std::string from, to; rows >> from >> to >> error;) {
      EXPECT_EQ(Move(from, to), error) << from << ' ' << to;
    }
    EXPECT_TRUE(rows.eof());
    EXPECT_EQ(Content("moved/file"), "text");
    EXPECT_FALSE(Exists("moved/inside"));
    EXPECT_TRUE(std::filesystem::is_symlink("to"));
  }
}

TEST(RenameAndDelete, NeedWritePermissionOnlyForTheDirectory) {
  const Folder folder;
  Put("readonly", "", 0444);
  Put("file", "");
  ASSERT_EQ(mkdir("closed", 0777), 0);
  Put("closed/file", "");
  chmod("closed", 0555);
  const Unprivileged user;
  EXPECT_EQ(Move("readonly", "moved"), 0);
  EXPECT_EQ(Move("file", "to"), 0);
  EXPECT_EQ(Move("closed/file", "new"), 5);
  EXPECT_EQ(Move("closed/file", "-"), 5);
  chmod("closed", 0777);
  ASSERT_EQ(mkdir("unlisted", 0333), 0);
  EXPECT_EQ(Move("moved", "unlisted/file"), 0);
  EXPECT_EQ(Move("unlisted/file", "to/"), 35);
  EXPECT_EQ(Move("unlisted/file", "moved"), 0);
  chmod("unlisted", 0777);  // so that any user can remove it
}

}  // namespace
