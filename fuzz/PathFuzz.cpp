// Two users run random operations on a small tree of files, with unusual paths. After any input,
// every operation must have returned a documented error, a file that a third user has open
// exclusively must be unchanged, and no descriptor may be left open.
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>

#include "Require.h"
#include "support/FakeHost.h"
#include "support/TestFiles.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kBystander = "the bystander's file";

// Makes the same files for every input, and makes their directory the current one.
void Plant(const TestDirectory& tree) {
  fs::current_path(tree.Path(""));
  for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry);
  fs::create_directories("d/e");
  tree.Write("a", "a file");
  tree.Write("d/b", "a file below");
  tree.Write("held", kBystander);
  fs::create_symlink("d/b", "l");
  fs::create_symlink("nothing", "dangling");
}

struct Input {
  bool AtEnd() const { return next == end; }
  unsigned Take() { return AtEnd() ? 0 : *next++; }

  // Returns a path of up to 7 pieces. It stays inside the tree: it does not begin with a separator,
  // and no ".." goes above the tree. The links in the tree lead only downward.
  std::string TakePath() {
    constexpr const char* kPieces[] = {"a",    "b", "d", "e", "held", "l",   "dangling", ".",
                                       "a.b.", " ", "/", "/", "\\",   "d\\", "..",       "\xE4"};
    std::string path;
    for (unsigned left = Take() % 8; left > 0; --left) {
      const unsigned byte = Take();
      path += byte == 0xFF ? std::string(300, 'x') : kPieces[byte % std::size(kPieces)];
    }
    return StaysInside(path) ? path : "a";
  }

  static bool StaysInside(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    const std::string shortest = fs::path(path).lexically_normal().string();
    return !shortest.starts_with('/') && !shortest.starts_with("..");
  }

  const unsigned char* next;
  const unsigned char* end;
};

auto OpenDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

// Splits a path and checks that its parts joined are the path.
OZError Divide(const std::string& path, const std::string& extension) {
  OZFileSpec spec(path.c_str());
  Require(spec.GetFullPath() == path);
  std::string directory(path.size() + 2, '\0');
  char name[260];
  spec.GetDirectory(directory.data());
  spec.GetFileName(name);
  if (path.size() <= 259) Require(directory.c_str() + std::string(name) == path);
  spec.SetExtension(extension.c_str());
  spec.SetFileName(path.c_str());
  spec.SetDirectory(spec.GetFullPath());
  return eErrNone;
}

// Runs an operation with the file object of a user.
OZError Act(TestFile& file, unsigned action, const std::string& text, unsigned flags,
            const std::string& target) {
  const char* const path = text.c_str();
  if (action == 0) return file.OpenFile(path, (flags << 8 & 0xF00) | flags >> 6, flags & 0x30);
  if (action == 1) return file.CreateFileA(path, flags & 0x30);
  if (action == 2) return file.CloseFile();
  if (action == 3) return file.RenameFile(OZFileSpec(path));
  if (action == 4) return file.DeleteFileA();
  if (action == 5) return OZFile::RenameFile(OZFileSpec(path), OZFileSpec(target.c_str()));
  if (action == 6) return OZFile::DeleteFileA(OZFileSpec(path));
  if (action == 7) return file.Put(text);
  return action == 8 ? file.flushFile() : Divide(text, target);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static const TestDirectory tree;
  const FakeHost host;  // no message boxes
  Plant(tree);
  const auto descriptors = OpenDescriptors();
  {
    OZFile bystander;
    Require(bystander.OpenFile("held", OZ_SHARE_EXCLUSIVE) == eErrNone);
    TestFile users[2];
    for (Input input = {data, data + size}; !input.AtEnd();) {
      TestFile& user = users[input.Take() & 1];
      const unsigned action = input.Take() % 10;
      const std::string path = input.TakePath();
      const unsigned flags = input.Take();
      const std::string target = action == 5 || action > 8 ? input.TakePath() : "";
      const OZError error = Act(user, action, path, flags, target);
      // Only a name that is too long for the system may give this error.
      Require(error != eErrUnknown || (path + target).size() > 255);
    }
  }
  Require(tree.Read("held") == kBystander);
  Require(OpenDescriptors() == descriptors);
  return 0;
}
