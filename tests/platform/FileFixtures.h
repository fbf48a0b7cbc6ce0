// Files, users and processes for the tests of the calls on files.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include "platform/files.h"
#include "platform/posix/VolumeAbilities.h"

namespace platform = orzcore::platform;

inline constexpr std::uint32_t kReadWrite = platform::kGenericRead | platform::kGenericWrite;
inline constexpr std::uint32_t kShareAll = platform::kFileShareRead | platform::kFileShareWrite;
inline constexpr std::uint32_t kShareNone = 0;

/// A new, empty directory. It is the current directory until this object is destroyed.
class Folder {
 public:
  Folder() : path_(testing::TempDir() + "orzcore-files-XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr || chdir(path_.c_str()) != 0) std::abort();
    chmod(".", 0777);
  }
  ~Folder() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(path_);
  }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
  std::string path_;
};

inline void Put(const char* path, const char* text, mode_t mode = 0644) {
  std::ofstream(path) << text;
  chmod(path, mode);
}
inline std::string Content(const char* path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), {}};
}
inline bool Exists(const char* path) { return platform::access(path, 0) == 0; }

/// An open file, or the error of its open. All operations return 0 or the error number.
struct File {
  explicit File(const std::string& path, std::uint32_t share = kShareAll,
                std::uint32_t disposition = platform::kOpenExisting,
                std::uint32_t access = kReadWrite)
      : handle(
            platform::CreateFileA(path.c_str(), access, share, nullptr, disposition, 0, nullptr)),
        error(handle == platform::InvalidHandle() ? platform::GetLastError() : 0) {}
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
  int Do(const std::string& action, std::uint32_t offset, std::uint32_t length) {
    if (action == "lock") return Lock(offset, length);
    if (action == "unlock") return Unlock(offset, length);
    Seek(offset);
    if (action == "end") return Resize();
    return action == "read" ? Read(length) : Write(std::string(length, 'x'));
  }
  static int Check(int result) {
    return result == 1 ? 0 : static_cast<int>(platform::GetLastError());
  }

  void* handle;
  std::uint32_t error;
  std::uint32_t done = 77;
  std::string text;
};

/// Takes abilities from all volumes, and gives them back when it is destroyed.
struct VolumeGuard {
  explicit VolumeGuard(platform::VolumeAbilities volume) { platform::gVolumeAbilities = volume; }
  ~VolumeGuard() { platform::gVolumeAbilities = {}; }
};

inline bool IsRoot() { return getuid() == 0; }

/// Takes the privileges from a test that root runs, until it is destroyed.
struct Unprivileged {
  Unprivileged() { SetUser(65534); }
  ~Unprivileged() { SetUser(0); }
  static void SetUser(uid_t user) {
    if (IsRoot() && seteuid(user) != 0) std::abort();
  }
};

/// A child process that runs a function. Its exit code is the result of the function, or 1 if a
/// check of the test has failed in the child.
class Child {
 public:
  template <typename Function>
  explicit Child(Function run) : had_failure_(testing::Test::HasFailure()), process_(fork()) {
    if (process_ != 0) return;
    const int result = run();
    std::fflush(nullptr);
    _exit(testing::Test::HasFailure() && !had_failure_ ? 1 : result);
  }
  ~Child() { Kill(); }
  int Result() {
    int status = 0;
    waitpid(std::exchange(process_, 0), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void Kill() {
    if (process_ == 0) return;
    kill(process_, SIGKILL);
    Result();
  }

 private:
  bool had_failure_;  // before the child was started
  pid_t process_;
};

/// Starts a process that opens a file, does something with it, and keeps it open until it is
/// killed. Call this before the test opens files: the process would share their handles and locks.
template <typename Open, typename Use>
Child MakeHolder(Open open, Use use) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  Child child([&] {
    File held = open();
    EXPECT_EQ(use(held), 0);
    return held.error == 0 && write(ends[1], "", 1) == 1 ? pause() : 1;
  });
  close(ends[1]);
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 1);
  close(ends[0]);
  return child;
}
