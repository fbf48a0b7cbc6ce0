// Shared files, compared with the bare calls of the system.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>

#include "Bench.h"
#include "orzcore/file.h"

namespace orzcore::bench {
namespace {

constexpr int kMaxTransfer = 0xFFFF;
constexpr int kPosition = 1000;             // of the lock
constexpr int kOtherPosition = 10000;       // of the first of the locks of other users
constexpr off_t kSharers = off_t{1} << 62;  // the byte that ours locks in every open file

struct Descriptor {
  explicit Descriptor(int descriptor) : number(descriptor) {}
  ~Descriptor() { close(number); }
  Descriptor(const Descriptor&) = delete;

  const int number;
};

int Open(const std::string& path) { return open(path.c_str(), O_RDWR | O_CLOEXEC); }

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
  explicit TestFile(int /*users*/ = 0) { std::ofstream(path) << std::string(kMaxTransfer, 'f'); }

  // As another user sees the file.
  off_t HeldBytes() const { return LockedBytes(Descriptor(Open(path)).number, 0, kOtherPosition); }
  bool HoldsBuffer(int count) const {
    std::string content(static_cast<std::size_t>(count), ' ');
    const Descriptor file(Open(path));
    return pread(file.number, content.data(), content.size(), 0) == count &&
           buffer.starts_with(content);
  }

  std::string path = FileDirectory() + "/file";
  std::string buffer = std::string(kMaxTransfer, 'b');
  bool is_ready = true;
};

struct Ours : TestFile {
  explicit Ours(int users, unsigned share_mode = 0) {
    is_ready = own.OpenFile(path.c_str(), share_mode) == eErrNone;
    for (int i = 0; i < users; ++i) {
      OZFile& other = others.emplace_back();
      is_ready = is_ready && other.OpenFile(path.c_str(), 0) == eErrNone &&
                 other.LockBytes(0, kOtherPosition + 2 * i, 1) == eErrNone;
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
  std::deque<OZFile> others;
};

// Open to nobody else.
struct OursAlone : Ours {
  explicit OursAlone(int users) : Ours(users, OZ_SHARE_EXCLUSIVE) {}
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

// With the lock that ours has on every open file (`kShares`), or without it.
template <bool kShares>
struct Bare : TestFile {
  explicit Bare(int users) {
    if (kShares) is_ready = SetLock(own.number, F_RDLCK, kSharers, 1);
    for (int i = 0; i < users; ++i) {
      const int other = others.emplace_back(Open(path)).number;
      if (kShares) is_ready = is_ready && SetLock(other, F_RDLCK, kSharers, 1);
      is_ready = is_ready && SetLock(other, F_WRLCK, kOtherPosition + 2 * i, 1);
    }
  }

  bool Lock(int length) { return SetLock(own.number, F_WRLCK, kPosition, length); }
  bool Unlock(int length) { return SetLock(own.number, F_UNLCK, kPosition, length); }

  bool Read(unsigned short count) {
    return LockedBytes(own.number, 0, count) == 0 &&
           pread(own.number, buffer.data(), count, 0) == count;
  }

  bool Write(unsigned short count) {
    return LockedBytes(own.number, 0, count) == 0 &&
           pwrite(own.number, buffer.data(), count, 0) == count;
  }

  bool Flush() { return fdatasync(own.number) == 0; }

  Descriptor own = Descriptor(Open(path));
  std::deque<Descriptor> others;
};

// Does not ask for the locks of others.
struct BareAlone : Bare<false> {
  using Bare::Bare;

  bool Read(unsigned short count) { return pread(own.number, buffer.data(), count, 0) == count; }
  bool Write(unsigned short count) { return pwrite(own.number, buffer.data(), count, 0) == count; }
};

struct Name {
  bool Exists() const { return std::filesystem::exists(spec.GetFullPath()); }

  const char* name;
  OZFileSpec spec = OZFileSpec((FileDirectory() + '/' + name).c_str());
};

// A file that is renamed from its first name to the second, and back.
struct Renamed : TestFile {
  using TestFile::TestFile;

  Name first = {"file"};
  Name second = {"other"};
};

// Registers a benchmark that repeats `work`, beside so many other users with a lock. It fails
// unless `work` always returns true, and `check` does after the first time.
template <typename File, typename Work, typename Check>
benchmark::internal::Benchmark* AddRow(const std::string& row, const std::string& who, Work work,
                                       Check check, int users = 0) {
  return Register(row, who, [=](benchmark::State& state) {
    File file(users);
    bool is_done = file.is_ready && work(file) && check(file);
    for (auto _ : state) is_done = is_done && work(file);
    if (!is_done) state.SkipWithError("a call failed, or did something else");
  });
}

template <typename File>
void AddLock(const std::string& row, const std::string& who, int length, int users = 0) {
  const auto check = [=](auto& file) {
    return file.Lock(length) && file.HeldBytes() == length && file.Unlock(length) &&
           file.HeldBytes() == 0;
  };
  const auto work = [=](auto& file) { return file.Lock(length) && file.Unlock(length); };
  AddRow<File>(row, who, work, check, users);
}

template <typename File>
void AddLocks(const std::string& row, int length) {
  AddLock<File>(row, "ours", length);
  AddLock<Bare<false>>(row, "fcntl", length);
}

template <typename File>
void AddLocksBesideUsers(const std::string& who) {
  for (const int users : {1, 10, 100, 1000}) {
    AddLock<File>("lock and unlock a byte beside n users", who + '/' + std::to_string(users), 1,
                  users);
  }
}

template <typename File, typename BareFile>
void AddTransfers(const std::string& size, unsigned short count, const std::string& question) {
  const auto check = [=](auto& file) { return file.HoldsBuffer(count); };
  const auto read = [=](auto& file) { return file.Read(count); };
  AddRow<File>("read " + size, "ours", read, check);
  AddRow<BareFile>("read " + size, question + "pread", read, check);
  const auto write = [=](auto& file) { return file.Write(count); };
  AddRow<File>("write " + size, "ours", write, check);
  AddRow<BareFile>("write " + size, question + "pwrite", write, check);
}

constexpr auto kNoCheck = [](auto& /*file*/) { return true; };

// Marks the file as open: one byte for those who share it, two for who has it alone.
bool Mark(int descriptor, bool shares) {
  if (!shares) return SetLock(descriptor, F_WRLCK, kSharers, 2);
  return SetLock(descriptor, F_RDLCK, kSharers, 1) && LockedBytes(descriptor, kSharers + 1, 1) == 0;
}

// Marks the file, and checks that the path still leads to it.
bool Own(int descriptor, int directory, const char* name, bool shares) {
  struct stat status = {};
  struct stat named = {};
  return fstat(descriptor, &status) == 0 && Mark(descriptor, shares) &&
         fstatat(directory, name, &named, 0) == 0 && named.st_ino == status.st_ino;
}

// Another user has the file open all the time.
void AddOpens() {
  const std::string row = "open and close a shared file";
  const auto open_ours = [](Ours& file) {
    OZFile other;
    return other.OpenFile(file.path.c_str(), 0) == eErrNone && other.CloseFile() == eErrNone;
  };
  const auto open_bare = [](auto& file) { return Descriptor(Open(file.path)).number >= 0; };
  const auto open_owned = [](auto& file) {
    const Descriptor opened(Open(file.path));
    return Own(opened.number, AT_FDCWD, file.path.c_str(), true);
  };
  AddRow<Ours>(row, "ours", open_ours, kNoCheck);
  AddRow<Bare<false>>(row, "open", open_bare, kNoCheck);
  AddRow<Bare<true>>(row, "open + fcntl", open_owned, kNoCheck);
}

// A path that no file has yet.
std::string NewPath() {
  static int count = 0;
  return FileDirectory() + "/new" + std::to_string(++count);
}

// Few files, which stay until the end of the program: after many files were deleted, some volumes
// are slow to create new ones.
void AddNewFiles() {
  const auto add = [](const char* who, auto create) {
    const auto work = [=](auto& /*file*/) { return create(NewPath()); };
    AddRow<TestFile>("create and close a new file", who, work, kNoCheck)->Iterations(50);
  };
  add("ours", [](const std::string& path) {
    OZFile file;
    return file.CreateFileA(path.c_str(), 0) == eErrNone && file.CloseFile() == eErrNone;
  });
  add("open", [](const std::string& path) {
    return Descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666)).number >= 0;
  });
  // The file gets its name when its lock is taken.
  add("open + fcntl + linkat", [](const std::string& path) {
    const Descriptor file(open(FileDirectory().c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, 0666));
    const std::string link = Format("/proc/self/fd/%d", file.number);
    return Mark(file.number, true) &&
           linkat(AT_FDCWD, link.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
  });
}

// There and back. No rename replaces a file.
void AddRenames() {
  const auto add = [](const char* who, auto rename) {
    const auto check = [=](Renamed& file) {
      return rename(file.first, file.second) && file.second.Exists() &&
             rename(file.second, file.first) && file.first.Exists();
    };
    const auto work = [=](Renamed& file) {
      return rename(file.first, file.second) && rename(file.second, file.first);
    };
    AddRow<Renamed>("rename a file, and back", who, work, check);
  };
  add("ours", [](const Name& from, const Name& to) {
    return OZFile::RenameFile(from.spec, to.spec) == eErrNone;
  });
  add("rename", [](const Name& from, const Name& to) {
    return renameat2(AT_FDCWD, from.spec.GetFullPath(), AT_FDCWD, to.spec.GetFullPath(),
                     RENAME_NOREPLACE) == 0;
  });
  // The directories are held, so that the entries cannot become others on the way.
  add("open + fcntl + rename", [](const Name& from, const Name& to) {
    constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    const Descriptor source(open(FileDirectory().c_str(), kFlags));
    const Descriptor file(openat(source.number, from.name, O_RDWR | O_CLOEXEC));
    const Descriptor target(open(FileDirectory().c_str(), kFlags));
    return Own(file.number, source.number, from.name, false) &&
           renameat2(source.number, from.name, target.number, to.name, RENAME_NOREPLACE) == 0;
  });
}

void AddFlushes() {
  constexpr int kCount = 1024;
  const std::string row = "write and flush 1 KiB";
  const auto work = [=](auto& file) { return file.Write(kCount) && file.Flush(); };
  const auto check = [=](auto& file) { return file.HoldsBuffer(kCount); };
  AddRow<Ours>(row, "ours", work, check)->UseRealTime();
  AddRow<Bare<false>>(row, "pwrite + fdatasync", work, check)->UseRealTime();
}

}  // namespace

void AddFiles() {
  AddLocks<Ours>("lock and unlock a byte", 1);
  AddLocks<Ours>("lock and unlock 767 bytes", OZFile::kLockRange);
  AddLocks<OursVirtual<eLockWholeRange>>("virtual lock, whole range", OZFile::kLockRange);
  AddLocks<OursVirtual<eLockSharedByte>>("virtual lock, shared byte", 1);
  AddTransfers<Ours, Bare<false>>("64 B", 64, "fcntl + ");
  AddTransfers<Ours, Bare<false>>("1 KiB", 1024, "fcntl + ");
  AddTransfers<Ours, Bare<false>>("64 KiB", kMaxTransfer, "fcntl + ");
  AddTransfers<OursAlone, BareAlone>("1 KiB, open to nobody else", 1024, "");
  AddOpens();
  AddNewFiles();
  AddRenames();
  AddFlushes();
  AddLocksBesideUsers<Ours>("ours");
  AddLocksBesideUsers<Bare<false>>("fcntl");
  AddLocksBesideUsers<Bare<true>>("fcntl and marks");
}

}  // namespace orzcore::bench
