// Two users run random operations on a small tree of files, with unusual paths. After any input,
// every operation must have returned a documented error, a file that a third user has open
// exclusively must be unchanged, and no descriptor may be left open.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "orzcore/file.h"
#include "orzcore/platform.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 255;
constexpr std::string_view kBystander = "the bystander's file";

void Require(bool holds) {
  if (!holds) std::abort();
}

// Shows no message boxes, so that the output stays readable.
class SilentHost : public OZHost {
 public:
  SilentHost() { Install(this); }
  int MessageBoxA(void* /*owner*/, const char* /*text*/, const char* /*caption*/,
                  unsigned int /*style*/) override {
    return 1;
  }
};

// The directory of all files, in memory if possible. It is removed at exit.
class Tree {
 public:
  Tree() {
    std::string pattern =
        fs::is_directory("/dev/shm") ? "/dev/shm/path-fuzz-XXXXXX" : "/tmp/path-fuzz-XXXXXX";
    Require(mkdtemp(pattern.data()) != nullptr && chdir(pattern.c_str()) == 0);
    root_ = pattern;
  }
  ~Tree() { fs::remove_all(root_); }

  // Makes the same files for every input.
  void Plant() const {
    for (const auto& entry : fs::directory_iterator(root_)) fs::remove_all(entry);
    fs::create_directories(root_ / "d/e");
    std::ofstream(root_ / "a") << "a file";
    std::ofstream(root_ / "d/b") << "a file below";
    std::ofstream(root_ / "held") << kBystander;
    fs::create_symlink("d/b", root_ / "l");
    fs::create_symlink("nothing", root_ / "dangling");
  }

  bool HasBystander() const {
    std::ifstream in(root_ / "held");
    return std::string(std::istreambuf_iterator<char>(in), {}) == kBystander;
  }

 private:
  fs::path root_;
};

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

  bool AtEnd() const { return next_ == end_; }
  unsigned Take() { return AtEnd() ? 0 : *next_++; }

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

 private:
  static bool StaysInside(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    int depth = 0;
    for (const fs::path& piece : fs::path(path)) {
      if (piece == "..") --depth;
      if (piece != ".." && piece != "." && !piece.empty()) ++depth;
      if (depth < 0 || piece.is_absolute()) return false;
    }
    return true;
  }

  const std::uint8_t* next_;
  const std::uint8_t* end_;
};

auto OpenDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

// One of the two users, with a file object that opens, renames and deletes files.
class User {
 public:
  // `eErrUnknown` is allowed only for a name that is too long for the system.
  void Act(Input& input) {
    const unsigned action = input.Take() % 10;
    const std::string path = input.TakePath();
    const unsigned flags = input.Take();
    const std::string target = action == 5 || action > 8 ? input.TakePath() : "";
    const OZError error = Do(action, path, target, flags);
    Require(error != eErrUnknown || (path + target).size() > kLongestName);
  }

 private:
  OZError Do(unsigned action, const std::string& text, const std::string& target, unsigned flags) {
    const char* const path = text.c_str();
    if (action == 0) return file_.OpenFile(path, (flags << 8 & 0xF00) | flags >> 6, flags & 0x30);
    if (action == 1) return file_.CreateFileA(path, flags & 0x30);
    if (action == 2) return file_.CloseFile();
    if (action == 3) return file_.RenameFile(OZFileSpec(path));
    if (action == 4) return file_.DeleteFileA();
    if (action == 5) return OZFile::RenameFile(OZFileSpec(path), OZFileSpec(target.c_str()));
    if (action == 6) return OZFile::DeleteFileA(OZFileSpec(path));
    if (action == 7) return Write(text);
    if (action == 8) return file_.flushFile();
    return Divide(text, target);
  }

  OZError Write(const std::string& text) {
    constexpr unsigned short kUntouched = 0xABCD;
    unsigned short written = kUntouched;
    const auto size = static_cast<unsigned short>(text.size());
    const OZError error = file_.Write(text.data(), size, &written);
    Require(written == (error == eErrNone ? size : kUntouched));
    return eErrNone;
  }

  // Splits a path and checks that its parts joined are the path.
  static OZError Divide(const std::string& path, const std::string& extension) {
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

  OZFile file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static SilentHost host;
  static const Tree tree;
  tree.Plant();
  const auto descriptors = OpenDescriptors();
  {
    OZFile bystander;
    Require(bystander.OpenFile("held", OZ_SHARE_EXCLUSIVE) == eErrNone);
    User users[2];
    Input input(data, size);
    while (!input.AtEnd()) users[input.Take() & 1].Act(input);
  }
  Require(tree.HasBystander());
  Require(OpenDescriptors() == descriptors);
  return 0;
}
