// What the calls of the platform answer on every system. The tables of docs/guide/platform.md have
// the answers for paths, and where the systems differ otherwise.
#include <map>

#include "platform/FileFixtures.h"
#include "platform/system.h"
#include "support/PageTables.h"

namespace {

using namespace platform;

constexpr char kPage[] = "guide/platform.md";

int Error(const File& file) { return static_cast<int>(file.error); }
int Rename(const std::string& from, const std::string& to) {
  return platform::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno_();
}
int Remove(const std::string& path) { return platform::remove(path.c_str()) == 0 ? 0 : errno_(); }

// The files and directories of the page.
struct World {
  World() {
    for (const char* name : {"folder", "empty"}) std::filesystem::create_directory(name);
    for (const char* name : {"file", "other", "folder/file"}) Put(name, name);
    Put("readonly", "readonly", 0444);
#ifndef _WIN32
    EXPECT_EQ(mkfifo("fifo", 0666) + symlink("empty", "link") + link("other", "twin"), 0);
#endif
  }

  // The paths of all files, and their contents.
  static std::map<std::string, std::string> Files() {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(".")) {
      const std::string path = entry.path().generic_string();
      files[path] = entry.is_regular_file() ? Content(path.c_str()) : "no file";
    }
    return files;
  }

  Folder folder;
};

// Makes a call for each row of the page with this header, and compares the answer with a cell. A
// call that fails has changed nothing.
template <typename Function>
void CompareWithPage(const std::vector<std::string>& header, std::size_t posix_cell,
                     Function call) {
  for (const PageRow& row : RowsUnder(kPage, header)) {
    const std::string& told = row.cells[posix_cell + (kIsWindows ? 1 : 0)];
    if (told == "-") continue;
    for (const bool has_abilities : {true, false}) {
      SCOPED_TRACE(testing::Message() << row.place << ", all abilities: " << has_abilities);
      const VolumeGuard guard(has_abilities);
      const World world;
      const auto before = World::Files();
      const int answer = call(CodeIn(row.cells[0])[0], row.cells[1]);
      EXPECT_EQ(told == "?" ? "?" : std::to_string(answer), told);
      EXPECT_TRUE(answer == 0 || World::Files() == before);
    }
  }
}

TEST(Paths, AreOpenedAsThePageTells) {
  const std::vector<std::string> kHeader = {"Path", "Open, POSIX", "Open, Windows", "Create, POSIX",
                                            "Create, Windows"};
  CompareWithPage(kHeader, 1, [](auto& path, auto&) { return Error(File(path)); });
  CompareWithPage(kHeader, 3,
                  [](auto& path, auto&) { return Error(File(path, kShareAll, kCreateAlways)); });
}

TEST(Paths, AreRenamedAsThePageTells) {
  CompareWithPage({"Rename", "To", "POSIX", "Windows"}, 2, [](auto& from, auto& cell) {
    const std::string to = CodeIn(cell)[0];
    const std::size_t count = World::Files().size();
    const int answer = Rename(from, to);
    EXPECT_EQ(World::Files().size(), count);
    EXPECT_TRUE(answer != 0 || Exists(to.c_str()));
    return answer;
  });
}

TEST(Paths, AreDeletedAsThePageTells) {
  CompareWithPage({"Delete", "POSIX", "Windows"}, 1, [](auto& path, auto&) {
    EXPECT_EQ(Exists(path.c_str()), std::filesystem::exists(path));
    const int answer = Remove(path);
    EXPECT_TRUE(answer != 0 || !Exists(path.c_str()));
    return answer;
  });
}

TEST(Paths, AreRefusedIfTheyAreEmptyTooLongOrOpen) {
  const World world;
  EXPECT_EQ(Error(File("")), 3);
  EXPECT_EQ(Error(File(std::string(5000, 'x'))), 206);
  for (const std::string& name : {std::string(), std::string(256, 'x'), std::string(5000, 'x')}) {
    EXPECT_EQ(Rename(name, "moved"), 2);
    EXPECT_EQ(Rename("file", name), 2);
    EXPECT_EQ(Remove(name), 2);
  }
  const File file("file");
  EXPECT_EQ(Rename("file", "moved"), 5);
  EXPECT_EQ(Remove("file"), 5);
}

struct Block {
  explicit Block(std::uint32_t size)
      : handle(GlobalAlloc(kGlobalMovable | kGlobalZeroFilled | kGlobalDiscardable, size)) {}
  ~Block() { EXPECT_EQ(GlobalFree(handle), nullptr); }
  bool IsOnPage() const { return reinterpret_cast<std::uintptr_t>(GlobalLock(handle)) % 4096 == 0; }
  void* handle;
};

TEST(SystemCalls, DifferAsThePageTells) {
  const World world;
  const std::string long_path = std::string(".").append(511, '/').append("file");
  const std::map<std::string, int> answers = {
      {"open a path of 516 characters", Error(File(long_path))},
      {"lock a block: 1 if it begins on a page", Block(5000).IsOnPage() ? 1 : 0}};
  for (const PageRow& row : RowsUnder(kPage, {"Call", "POSIX", "Windows"})) {
    EXPECT_EQ(row.cells[kIsWindows ? 2 : 1], std::to_string(answers.at(row.cells[0]))) << row.place;
  }
}

TEST(SystemCalls, CountTheLocksOfABlock) {
  EXPECT_EQ(GlobalFlags(Block(0).handle), 0x4000U);
  const Block block(5000);
  for (int i = 0; i < 2; ++i) EXPECT_NE(GlobalLock(block.handle), nullptr);
  for (const bool is_locked : {true, false, false}) {
    EXPECT_EQ(GlobalUnlock(block.handle) != 0, is_locked);
  }
}

TEST(SystemCalls, RefuseWhatIsNoHandle) {
  for (void* const handle : {InvalidHandle(), static_cast<void*>(nullptr)}) {
    File none("missing");
    none.handle = handle;
    for (const int error : {none.Lock(0, 1), none.Unlock(0, 1), none.Read(1), none.Write("x"),
                            none.Resize(), none.Move(0, kFileBegin), none.Close()}) {
      EXPECT_EQ(error, 6);
    }
  }
}

TEST(SystemCalls, RefuseWhatAHandleCannotDo) {
  const World world;
  File reader("file", kShareAll, kOpenExisting, kGenericRead);
  File writer("file", kShareAll, kOpenExisting, kGenericWrite);
  for (const int error : {writer.Read(1), reader.Write("x"), reader.Resize()}) EXPECT_EQ(error, 5);
  EXPECT_EQ(writer.done + reader.done, 0U);
  std::int32_t high = 0;
  const std::uint32_t moved = SetFilePointer(reader.handle, 0, &high, kFileBegin);
  EXPECT_EQ(File::Check(moved == kInvalidFilePosition ? 0 : 1), 87);
  EXPECT_EQ(reader.Move(0, kFileEnd + 1), 87);
  EXPECT_EQ(reader.Move(-1, kFileBegin), 131);
  EXPECT_EQ(reader.Move(0x7FFFFFFF, kFileBegin) + reader.Move(0x7FFFFFFF, kFileCurrent), 0);
  if (!kIsWindows) {  // the runner of Windows programs wraps positions at 4 GiB
    EXPECT_EQ(reader.Move(2, kFileCurrent), 87);
  }
  for (const int error : {File::Check(LockFile(reader.handle, 0, 1, 1, 0)),
                          File::Check(LockFile(reader.handle, 0, 0, 1, 1)),
                          File::Check(UnlockFile(reader.handle, 0, 1, 1, 0)),
                          File::Check(UnlockFile(reader.handle, 0, 0, 1, 1))}) {
    EXPECT_EQ(error, 87);
  }
}

// What an open does to a file that exists, and to one that does not.
struct Disposition {
  std::uint32_t number, error_if_there;
  const char* content;  // then, of a file that had "old"
  std::uint32_t error_if_missing;
};

TEST(SystemCalls, OpenAsTheDispositionSays) {
  constexpr Disposition kDispositions[] = {
      {kCreateNew, 80, "old", 0}, {kCreateAlways, 0, "", 0},     {kOpenExisting, 0, "old", 2},
      {kOpenAlways, 0, "old", 0}, {kTruncateExisting, 0, "", 2}, {0, 87, "old", 87},
      {6, 87, "old", 87}};
  for (const Disposition& row : kDispositions) {
    SCOPED_TRACE(row.number);
    const Folder folder;
    Put("there", "old");
    EXPECT_EQ(File("there", kShareAll, row.number).error, row.error_if_there);
    EXPECT_EQ(Content("there"), row.content);
    const File created("new", kShareNone, row.number);
    EXPECT_EQ(created.error, row.error_if_missing);
    EXPECT_EQ(File("new").error, row.error_if_missing == 0 ? 32U : 2U);
  }
}

TEST(SystemCalls, LoadNoStringThatNobodyHas) {
  char buffer[] = "as before";
  EXPECT_EQ(LoadStringA(&buffer, 1, buffer, sizeof(buffer)), 0);
  EXPECT_STREQ(buffer, "as before");
}

}  // namespace
