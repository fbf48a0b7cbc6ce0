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
#ifndef _WIN32  // there volumes have all abilities
      const VolumeGuard guard(
          {.has_unnamed_files = has_abilities, .has_safe_rename = has_abilities});
#endif
      const World world;
      const auto before = World::Files();
      const int answer = call(CodeIn(row.cells[0])[0], row.cells[1]);
      EXPECT_EQ(told == "?" ? "?" : std::to_string(answer), told);
      EXPECT_TRUE(answer == 0 || World::Files() == before);
    }
  }
}

TEST(Paths, AnswerAsThePageTells) {
  const std::vector<std::string> opens = {"Path", "Open, POSIX", "Open, Windows", "Create, POSIX",
                                          "Create, Windows"};
  CompareWithPage(opens, 1, [](auto& path, auto&) { return Error(File(path)); });
  CompareWithPage(opens, 3,
                  [](auto& path, auto&) { return Error(File(path, kShareAll, kCreateAlways)); });
  CompareWithPage({"Rename", "To", "POSIX", "Windows"}, 2, [](auto& from, auto& cell) {
    const std::string to = CodeIn(cell)[0];
    const std::size_t count = World::Files().size();
    const int answer = Rename(from, to);
    EXPECT_EQ(World::Files().size(), count);
    EXPECT_TRUE(answer != 0 || Exists(to.c_str()));
    return answer;
  });
  CompareWithPage({"Delete", "POSIX", "Windows"}, 1, [](auto& path, auto&) {
    EXPECT_EQ(Exists(path.c_str()), std::filesystem::exists(path));
    const int answer = Remove(path);
    EXPECT_TRUE(answer != 0 || !Exists(path.c_str()));
    return answer;
  });
}

TEST(Paths, AreRefusedIfTheyAreEmptyOrTooLong) {
  const World world;
  EXPECT_EQ(Error(File("")), 3);
  EXPECT_EQ(Error(File(std::string(5000, 'x'))), 206);
  for (const std::string& name : {std::string(), std::string(256, 'x'), std::string(5000, 'x')}) {
    for (const int error : {Rename(name, "moved"), Rename("file", name), Remove(name)}) {
      EXPECT_EQ(error, 2) << name;
    }
  }
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
  EXPECT_EQ(GlobalFlags(block.handle), 0U);
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
  for (const int error : {File::Check(LockFile(reader.handle, 0, 1, 1, 0)),
                          File::Check(LockFile(reader.handle, 0, 0, 1, 1)),
                          File::Check(UnlockFile(reader.handle, 0, 1, 1, 0)),
                          File::Check(UnlockFile(reader.handle, 0, 0, 1, 1))}) {
    EXPECT_EQ(error, 87);
  }
}

// The flags of OZFile lead to the other dispositions.
TEST(SystemCalls, OpenOrCreateAsTheDispositionSays) {
  const World world;
  for (const std::uint32_t number : {0U, 6U}) EXPECT_EQ(Error(File("x", kShareAll, number)), 87);
  for (const std::string path : {"file", "new"}) {
    EXPECT_EQ(File(path, kShareAll, kOpenAlways).Write("new"), 0);
    EXPECT_EQ(Content(path.c_str()), path == "file" ? "newe" : "new");
  }
}

}  // namespace
