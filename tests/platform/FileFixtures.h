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

/// An empty directory, which is the current one for as long as this lives.
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

/// An open file, or the reason why it is not. All operations give the error number.
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
  int Do(const std::string& deed, std::uint32_t offset, std::uint32_t length) {
    if (deed == "lock") return Lock(offset, length);
    if (deed == "unlock") return Unlock(offset, length);
    Seek(offset);
    if (deed == "end") return Resize();
    return deed == "read" ? Read(length) : Write(std::string(length, 'x'));
  }
  static int Check(int result) {
    return result == 1 ? 0 : static_cast<int>(platform::GetLastError());
  }

  void* handle;
  std::uint32_t error;
  std::uint32_t done = 77;
  std::string text;
};

/// Takes abilities from all volumes.
struct VolumeGuard {
  explicit VolumeGuard(platform::VolumeAbilities volume) { platform::gVolumeAbilities = volume; }
  ~VolumeGuard() { platform::gVolumeAbilities = {}; }
};

inline bool IsRoot() { return getuid() == 0; }

/// Takes the privileges from a test that root runs.
struct Unprivileged {
  Unprivileged() { SetUser(65534); }
  ~Unprivileged() { SetUser(0); }
  static void SetUser(uid_t user) {
    if (IsRoot() && seteuid(user) != 0) std::abort();
  }
};

/// A process for a deed, which gives a number; a failed check makes it 1.
class Child {
 public:
  template <typename Deed>
  explicit Child(Deed deed) : had_failure_(testing::Test::HasFailure()), process_(fork()) {
    if (process_ != 0) return;
    const int result = deed();
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
  bool had_failure_;  // before it was started
  pid_t process_;
};

/// A process that does a deed with an open file and sits there until it is killed. Make it before
/// opening anything: it would share what is open.
template <typename Open, typename Deed>
Child MakeHolder(Open open, Deed deed) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  Child child([&] {
    File held = open();
    EXPECT_EQ(deed(held), 0);
    return held.error == 0 && write(ends[1], "", 1) == 1 ? pause() : 1;
  });
  close(ends[1]);
  char byte = 0;
  EXPECT_EQ(read(ends[0], &byte, 1), 1);
  close(ends[0]);
  return child;
}
