// Files and users for the tests of the calls on files.
#pragma once

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "platform/files.h"
#include "support/System.h"
#include "support/TestFiles.h"
#ifndef _WIN32
#include "platform/posix/VolumeAbilities.h"
#endif

namespace platform = orzcore::platform;

inline constexpr std::uint32_t kReadWrite = platform::kGenericRead | platform::kGenericWrite;
inline constexpr std::uint32_t kShareAll = platform::kFileShareRead | platform::kFileShareWrite;
inline constexpr std::uint32_t kShareNone = 0;

/// A new, empty directory. It is the current directory until this object is destroyed.
class Folder {
 public:
  Folder() {
    std::filesystem::current_path(directory_.Path(""));
    std::filesystem::permissions(".", std::filesystem::perms::all);
  }
  ~Folder() { std::filesystem::current_path(before_); }

 private:
  const std::filesystem::path before_ = std::filesystem::current_path();
  const TestDirectory directory_;
};

inline void Put(const char* path, const char* text, int mode = 0644) {
  std::ofstream(path, std::ios::binary) << text;
  std::filesystem::permissions(path, static_cast<std::filesystem::perms>(mode));
}
inline bool Exists(const char* path) { return platform::access(path, 0) == 0; }

/// An open file, or the error of its open. All operations return 0 or the error number.
struct File {
  explicit File(const std::string& path, std::uint32_t share = kShareAll,
                std::uint32_t disposition = platform::kOpenExisting,
                std::uint32_t access = kReadWrite)
      : handle(
            platform::CreateFileA(path.c_str(), access, share, nullptr, disposition, 0, nullptr)),
        error(static_cast<std::uint32_t>(Check(handle != platform::InvalidHandle() ? 1 : 0))) {}
  File(const File&) = delete;
  ~File() { Close(); }

  int Close() { return Check(platform::CloseHandle(std::exchange(handle, nullptr))); }
  int Lock(std::uint32_t offset, std::uint32_t length) {
    return Check(platform::LockFile(handle, offset, 0, length, 0));
  }
  int Unlock(std::uint32_t offset, std::uint32_t length) {
    return Check(platform::UnlockFile(handle, offset, 0, length, 0));
  }
  int Write(const std::string& bytes) {
    const auto count = static_cast<std::uint32_t>(bytes.size());
    return Check(platform::WriteFile(handle, bytes.data(), count, &done, nullptr));
  }
  int Read(std::uint32_t count) {
    text.assign(count, '?');
    const int result = platform::ReadFile(handle, text.data(), count, &done, nullptr);
    text.resize(done);
    return Check(result);
  }
  int Resize() { return Check(platform::SetEndOfFile(handle)); }
  std::int64_t Seek(std::int64_t distance, std::uint32_t origin = platform::kFileBegin) {
    return platform::SetFilePointer(handle, static_cast<std::int32_t>(distance), nullptr, origin);
  }
  int Move(std::int64_t distance, std::uint32_t origin) {
    return Check(Seek(distance, origin) == platform::kInvalidFilePosition ? 0 : 1);
  }
  int ReadAt(std::uint32_t offset, std::uint32_t count) {
    Seek(offset);
    return Read(count);
  }
  int WriteAt(std::uint32_t offset, std::uint32_t count) {
    Seek(offset);
    return Write(std::string(count, 'x'));
  }
  /// Sets another last error, since a later call that fails must not leave this one.
  static int Check(int result) {
    const auto last_error = static_cast<int>(platform::GetLastError());
    char name[platform::kFullPathSize];
    platform::GetTempFileNameA(std::string(600, 'x').c_str(), "", 1, name);  // too long
    return result == 1 ? 0 : last_error;
  }

  void* handle;
  std::uint32_t error;
  std::uint32_t done = 77;
  std::string text;
};

#ifdef _WIN32
/// Here nobody writes to a read-only file.
struct Unprivileged {
  Unprivileged() {}
};
#else
/// Takes abilities from all volumes, and gives them back when it is destroyed.
struct VolumeGuard {
  explicit VolumeGuard(platform::VolumeAbilities volume) { platform::gVolumeAbilities = volume; }
  ~VolumeGuard() { platform::gVolumeAbilities = {}; }
};

/// Takes the privileges from a test that root runs, until it is destroyed.
struct Unprivileged {
  Unprivileged() { SetUser(65534); }
  ~Unprivileged() { SetUser(0); }
  static void SetUser(uid_t user) {
    if (getuid() == 0 && seteuid(user) != 0) std::abort();
  }
};
#endif
