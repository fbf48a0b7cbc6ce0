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

std::ptrdiff_t OpenDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

// One of the two users, with a file object that opens, renames and deletes files.
class User {
 public:
  void Act(Input& input) {
    const unsigned action = input.Take() % 10;
    const std::string path = input.TakePath();
    const unsigned flags = input.Take();
    switch (action) {
      case 0:
        return Check(path,
                     file_.OpenFile(path.c_str(), (flags << 8 & 0xF00) | flags >> 6, flags & 0x30));
      case 1:
        return Check(path, file_.CreateFileA(path.c_str(), flags & 0x30));
      case 2:
        return Check(path, file_.CloseFile());
      case 3:
        return Check(path, file_.RenameFile(OZFileSpec(path.c_str())));
      case 4:
        return Check(path, file_.DeleteFileA());
      case 5:
        return Rename(path, input.TakePath());
      case 6:
        return Check(path, OZFile::DeleteFileA(OZFileSpec(path.c_str())));
      case 7:
        return Write(path);
      case 8:
        return Check(path, file_.flushFile());
      default:
        return Divide(path, input.TakePath());
    }
  }

  void Leave() {
    file_.CloseFile();
    file_.ClearLockMode();
  }

 private:
  // `eErrUnknown` is allowed only for a name that is too long for the system.
  static void Check(const std::string& path, OZError error) {
    Require(error != eErrUnknown || path.size() > kLongestName);
  }

  static void Rename(const std::string& from, const std::string& to) {
    Check(from + to, OZFile::RenameFile(OZFileSpec(from.c_str()), OZFileSpec(to.c_str())));
  }

  void Write(const std::string& text) {
    constexpr unsigned short kUntouched = 0xABCD;
    unsigned short written = kUntouched;
    const OZError error =
        file_.Write(text.data(), static_cast<unsigned short>(text.size()), &written);
    Require(error == eErrNone ? written == text.size() : written == kUntouched);
  }

  // Splits a path and checks that its parts joined are the path.
  static void Divide(const std::string& path, const std::string& extension) {
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
  }

  OZFile file_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static SilentHost host;
  static const Tree tree;
  tree.Plant();
  const std::ptrdiff_t descriptors = OpenDescriptors();
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
