// A directory for one test, and file objects that show their state.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "orzcore/file.h"

/// A new directory. The destructor removes it with everything in it.
class TestDirectory {
 public:
  TestDirectory() {
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    std::random_device random;
    do path_ = parent / ("orzcore-" + std::to_string(random()));
    while (!std::filesystem::create_directory(path_));
  }
  ~TestDirectory() {
    std::error_code ignored;  // Windows keeps files that are still open
    std::filesystem::remove_all(path_, ignored);
  }
  TestDirectory(const TestDirectory&) = delete;
  TestDirectory& operator=(const TestDirectory&) = delete;

  std::string Path(const std::string& name) const { return (path_ / name).string(); }

  std::string Write(const std::string& name, const std::string& content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

  std::string Read(const std::string& name) const {
    std::ifstream in(Path(name), std::ios::binary);
    return in ? std::string(std::istreambuf_iterator<char>(in), {}) : ReadByItsUser(Path(name));
  }

  bool Has(const std::string& name) const { return std::filesystem::exists(Path(name)); }

 private:
  // On Windows, a file that somebody has open alone can be read by that user only.
  static std::string ReadByItsUser(const std::string& path) {
    OZFile::mInstanceList.Rewind();
    while (IRNode* const node = OZFile::mInstanceList.Next()) {
      auto* const file = static_cast<OZFile*>(node);
      OZFileSpec spec;
      if (file->GetFileSpec(spec) != eErrNone || spec.GetFullPath() != path) continue;
      std::int32_t position = 0;
      unsigned short count = 0;
      std::string content(0xFFFF, '\0');
      file->Seek(0, OZ_SEEK_CURRENT, &position);
      file->Seek(0, OZ_SEEK_START, nullptr);
      file->Read(content.data(), 0xFFFF, &count);
      file->Seek(position, OZ_SEEK_START, nullptr);
      return content.substr(0, count);
    }
    return "";
  }

  std::filesystem::path path_;
};

class TestFile : public OZFile {
 public:
  using OZFile::mLockCount;
  using OZFile::mLockOffset;
  using OZFile::mNeedsFlushing;

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
