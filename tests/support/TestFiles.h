// A directory for one test, and file objects that show their state.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "orzcore/file.h"

inline std::string Content(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A new directory. The destructor removes it with everything in it.
class TestDirectory {
 public:
  TestDirectory() {
    const char* const chosen = std::getenv("TEST_TMPDIR");
    const std::filesystem::path parent =
        chosen != nullptr ? chosen : std::filesystem::temp_directory_path();
    std::random_device random;
    do path_ = parent / ("orzcore-" + std::to_string(random()));
    while (!std::filesystem::create_directory(path_));
  }
  ~TestDirectory() {
    std::error_code ignored;  // Windows keeps files that are open or read-only
    std::filesystem::remove_all(path_, ignored);
  }
  TestDirectory(const TestDirectory&) = delete;
  TestDirectory& operator=(const TestDirectory&) = delete;

  std::string Path(const std::string& name) const { return (path_ / name).string(); }

  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

  std::string Read(const std::string& name) const { return Content(path_ / name); }

  bool Has(const std::string& name) const { return std::filesystem::exists(Path(name)); }

 private:
  std::filesystem::path path_;
};

/// How an object has its file open.
struct FileState {
  unsigned flags = 0, share_mode = 0;
  std::int32_t position = 0;
  int locks = 0, needs_flushing = 0;

  bool operator==(const FileState&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const FileState& state) {
    return out << state.flags << ' ' << state.share_mode << ", position " << state.position
               << ", locks " << state.locks << ", needs flushing " << state.needs_flushing;
  }
};

class TestFile : public OZFile {
 public:
  using OZFile::mLockCount;
  using OZFile::mLockOffset;
  using OZFile::mNeedsFlushing;

  FileState State() { return {mOpenFlags, mShareMode, Position(), mLockCount, mNeedsFlushing}; }

  std::int32_t Position() {
    std::int32_t position = -1;
    Seek(0, 1, &position);
    return position;
  }

  OZError Put(const std::string& text) {
    unsigned short written = 0;
    return Write(text.data(), static_cast<unsigned short>(text.size()), &written);
  }
};
