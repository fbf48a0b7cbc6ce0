// Shared files, compared with the bare calls of the system.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "BenchDates.h"
#include "orzcore/file.h"

namespace bench {
namespace {

constexpr int kMaxTransfer = 0xFFFF;
constexpr int kPosition = 1000;             // of what is locked
constexpr int kOtherPosition = 10000;       // of the first of the locks that others have
constexpr off_t kSharers = off_t{1} << 62;  // the byte that stands for open files of ours

// Where all files live. It is made at first use, and goes with the program.
class Directory {
 public:
  Directory() : path_(std::filesystem::temp_directory_path() / "orzcore_bench_XXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) {
      throw std::system_error(errno, std::generic_category(), path_);
    }
  }
  ~Directory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  static const std::string& Path() {
    static const Directory directory;
    return directory.path_;
  }

 private:
  std::string path_;
};

class Descriptor {
 public:
  explicit Descriptor(const std::string& path) : number_(open(path.c_str(), O_RDWR | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Number() const { return number_; }

 private:
  int number_;
};

struct flock Range(short type, off_t start, off_t length) {
  struct flock range = {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = start;
  range.l_len = length;
  return range;
}

bool SetLock(int descriptor, short type, off_t start, off_t length) {
  struct flock range = Range(type, start, length);
  return fcntl(descriptor, F_OFD_SETLK, &range) == 0;
}

// The bytes of the lock that others have in a range; -1 for an error.
off_t LockedBytes(int descriptor, off_t start, off_t length) {
  struct flock range = Range(F_WRLCK, start, length);
  if (fcntl(descriptor, F_OFD_GETLK, &range) != 0) return -1;
  return range.l_type == F_UNLCK ? 0 : range.l_len;
}

// A file full of its own bytes, and a buffer with other ones.
struct TestFile {
  TestFile() { std::ofstream(path) << std::string(kMaxTransfer, 'f'); }

  // What somebody else sees.
  off_t HeldBytes() const { return LockedBytes(Descriptor(path).Number(), 0, kOtherPosition); }
  bool HoldsBuffer(int count) const {
    std::string content(static_cast<std::size_t>(count), ' ');
    const Descriptor file(path);
    return pread(file.Number(), content.data(), content.size(), 0) == count &&
           buffer.starts_with(content);
  }

  std::string path = Directory::Path() + "/file";
  std::string buffer = std::string(kMaxTransfer, 'b');
  bool is_ready = true;
};

struct Ours : TestFile {
  explicit Ours(int other_locks) {
    is_ready = own.OpenFile(path.c_str(), 0) == eErrNone;
    if (other_locks > 0) is_ready = is_ready && other.OpenFile(path.c_str(), 0) == eErrNone;
    for (int i = 0; i < other_locks; ++i) {
      is_ready = is_ready && other.LockBytes(0, kOtherPosition + 2 * i, 1) == eErrNone;
    }
  }

  bool Lock(int length) { return own.LockBytes(0, kPosition, length) == eErrNone; }
  bool Unlock(int length) { return own.LockBytes(1, kPosition, length) == eErrNone; }

  bool Read(unsigned short count) {
    unsigned short done = 0;
    return own.Seek(0, 0, nullptr) == eErrNone &&
           own.Read(buffer.data(), count, &done) == eErrNone && done == count;
  }

  bool Write(unsigned short count) {
    unsigned short done = 0;
    return own.Seek(0, 0, nullptr) == eErrNone &&
           own.Write(buffer.data(), count, &done) == eErrNone && done == count;
  }

  bool Flush() { return own.flushFile() == eErrNone; }

  OZFile own;
  OZFile other;
};

template <eLockModes kMode>
struct OursVirtual : Ours {
  using Ours::Ours;

  bool Lock(int /*length*/) {
    locked = kPosition;
    return own.VirtualLock(OZ_LOCK_NOWAIT, &locked, kMode) == eErrNone;
  }
  bool Unlock(int /*length*/) {
    return own.VirtualLock(OZ_LOCK_RELEASE, &locked, kMode) == eErrNone;
  }

  std::int32_t locked = 0;
};

// With the lock that ours has on an open file, or without it. Among many locks of others the system
// finds the place for a new one sooner if the descriptor has one already.
template <bool kShares>
struct Bare : TestFile {
  explicit Bare(int other_locks) {
    if (kShares) is_ready = SetLock(own.Number(), F_RDLCK, kSharers, 1);
    for (int i = 0; i < other_locks; ++i) {
      is_ready = is_ready && SetLock(other.Number(), F_WRLCK, kOtherPosition + 2 * i, 1);
    }
  }

  bool Lock(int length) { return SetLock(own.Number(), F_WRLCK, kPosition, length); }
  bool Unlock(int length) { return SetLock(own.Number(), F_UNLCK, kPosition, length); }

  bool Read(unsigned short count) {
    return LockedBytes(own.Number(), 0, count) == 0 &&
           pread(own.Number(), buffer.data(), count, 0) == count;
  }

  bool Write(unsigned short count) {
    return LockedBytes(own.Number(), 0, count) == 0 &&
           pwrite(own.Number(), buffer.data(), count, 0) == count;
  }

  bool Flush() { return fdatasync(own.Number()) == 0; }

  Descriptor own = Descriptor(path);
  Descriptor other = Descriptor(path);
};

// Registers the benchmark `name`, which does `work` over and over. It fails unless `work` always
// gives true, and `check` does after the first time.
template <typename File, typename Work, typename Check>
void AddRow(const std::string& name, Work work, Check check, int other_locks = 0) {
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    File file(other_locks);
    bool is_done = file.is_ready && work(file) && check(file);
    for (auto _ : state) is_done = is_done && work(file);
    if (!is_done) state.SkipWithError("a call failed, or did something else");
  });
}

template <typename File, typename Work, typename Check>
void AddRows(const std::string& name, Work work, Check check, int other_locks = 0) {
  AddRow<File>(name + "/ours", work, check, other_locks);
  AddRow<Bare<false>>(name + "/fcntl", work, check, other_locks);
  AddRow<Bare<true>>(name + "/fcntl_shared", work, check, other_locks);
}

template <typename File>
void AddLocks(const std::string& name, int length, int other_locks = 0) {
  const auto check = [=](auto& file) {
    return file.Lock(length) && file.HeldBytes() == length && file.Unlock(length) &&
           file.HeldBytes() == 0;
  };
  AddRows<File>(
      name, [=](auto& file) { return file.Lock(length) && file.Unlock(length); }, check,
      other_locks);
}

void AddTransfers(const std::string& name, unsigned short count) {
  const auto check = [=](auto& file) { return file.HoldsBuffer(count); };
  AddRows<Ours>(
      "Read/" + name, [=](auto& file) { return file.Read(count); }, check);
  AddRows<Ours>(
      "Write/" + name, [=](auto& file) { return file.Write(count); }, check);
}

// Another user has the file open all the time.
void AddOpens() {
  constexpr auto kNoCheck = [](auto& /*file*/) { return true; };
  const auto open_ours = [](Ours& file) {
    return file.other.OpenFile(file.path.c_str(), 0) == eErrNone &&
           file.other.CloseFile() == eErrNone;
  };
  const auto open_bare = [](auto& file) { return Descriptor(file.path).Number() >= 0; };
  const auto open_owned = [](auto& file) {
    const Descriptor opened(file.path);
    struct stat status = {};
    struct stat named = {};
    return fstat(opened.Number(), &status) == 0 && SetLock(opened.Number(), F_RDLCK, kSharers, 1) &&
           LockedBytes(opened.Number(), kSharers + 1, 1) == 0 &&
           stat(file.path.c_str(), &named) == 0 && named.st_ino == status.st_ino;
  };
  AddRow<Ours>("Open/shared/ours", open_ours, kNoCheck);
  AddRow<Bare<false>>("Open/shared/open", open_bare, kNoCheck);
  AddRow<Bare<true>>("Open/shared/open_fcntl", open_owned, kNoCheck);
}

void AddFlushes() {
  constexpr int kCount = 1024;
  const auto work = [=](auto& file) { return file.Write(kCount) && file.Flush(); };
  const auto check = [=](auto& file) { return file.HoldsBuffer(kCount); };
  AddRow<Ours>("Flush/1_KiB/ours", work, check);
  AddRow<Bare<false>>("Flush/1_KiB/fdatasync", work, check);
}

}  // namespace

void AddFiles() {
  AddLocks<Ours>("Lock/byte", 1);
  AddLocks<Ours>("Lock/range", OZFile::kLockRange);
  for (const int others : {10, 100, 1000}) {
    AddLocks<Ours>("Lock/byte_beside_" + std::to_string(others), 1, others);
  }
  AddLocks<OursVirtual<eLockWholeRange>>("VirtualLock/whole_range", OZFile::kLockRange);
  AddLocks<OursVirtual<eLockSharedByte>>("VirtualLock/shared_byte", 1);
  AddTransfers("64_B", 64);
  AddTransfers("1_KiB", 1024);
  AddTransfers("64_KiB_less_1", kMaxTransfer);
  AddOpens();
  AddFlushes();
}

}  // namespace bench
