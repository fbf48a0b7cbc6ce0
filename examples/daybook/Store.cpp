#include "Store.h"

#include <algorithm>
#include <cstring>

#include "Commands.h"
#include "terminal/Failure.h"

namespace {

constexpr unsigned int kShared = 0;
constexpr int kMostAtOnce = 255;  // blocks: a transfer counts its bytes in 16 bits

void Check(OZError error, const char* subject, int line_of_caller = __builtin_LINE()) {
  if (error != eErrNone) throw Failure{error, subject, __FILE__, line_of_caller};
}

// A lock, as long as it lives.
class Hold {
 public:
  Hold(OZFile& file, eLockModes mode) : file_(file), mode_(mode) {
    const OZError error = file_.VirtualLock(kWait, &position_, mode_);
    if (error != eErrNone && Interrupt::Came()) throw Stopped{};
    Check(error, "Locking the file");
  }
  ~Hold() { file_.VirtualLock(OZ_LOCK_RELEASE, &position_, mode_); }
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;

 private:
  static constexpr unsigned int kWait = 0;  // no flag: for as long as it takes

  OZFile& file_;
  const eLockModes mode_;
  std::int32_t position_ = Store::kLockBase;
};

// The library has told the user already that a file is in use.
OZError WithoutTold(OZError error) {
  return error == eErrSharing || error == eErrAccessDenied ? eErrSilent : error;
}

// A new file in the directory of a path, to be renamed to that path when all of it is on the disk. So
// nobody ever finds half a file there. Without the renaming it is removed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& path) {
    const std::string directory = path.substr(0, path.find_last_of("/\\") + 1);
    OZError error = eErrCannotCreate;  // a copy that was killed has left a file of that name
    for (int number = 1; error == eErrCannotCreate && number <= kMostNames; ++number) {
      name_ = directory + "daybook-copy-" + std::to_string(number);
      error = file.CreateFileA(name_.c_str(), kShared);
    }
    Check(error, "Creating the copy");
  }
  ~TemporaryFile() {
    if (is_renamed_) return;
    if (file.IsOpen() == 0) file.OpenFile(name_.c_str(), kShared);  // a failed flush has closed it
    file.DeleteFileA();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Rename(const std::string& path) {
    Check(WithoutTold(file.RenameFile(OZFileSpec(path.c_str()))), "Creating the copy");
    is_renamed_ = true;
    // The object is closed if the new name could not be forced out.
    Check(file.IsOpen() != 0 ? eErrNone : eErrWrite, "Storing the copy");
  }

  OZFile file;

 private:
  static constexpr int kMostNames = 1000;

  std::string name_;
  bool is_renamed_ = false;
};

}  // namespace

Store::Store(const std::string& path, Access access, bool tells) : watcher_(file_, tells) {
  constexpr unsigned int kReadOnly = 0;
  const char* const name = path.c_str();
  OZError error =
      access == kReading ? file_.OpenFile(name, kReadOnly, kShared) : file_.OpenFile(name, kShared);
  if (error == eErrNotFound && access == kCreating) {
    error = file_.CreateFileA(name, kShared);
    if (error == eErrCannotCreate) error = file_.OpenFile(name, kShared);  // others were quicker
  }
  Check(error, "Opening the file");
}

std::size_t Store::ReadAt(int block, void* buffer, int blocks) {
  unsigned short got = 0;
  Check(file_.Seek(block * kBlockSize, OZ_SEEK_START, nullptr), "Reading the file");
  Check(file_.Read(buffer, static_cast<unsigned short>(blocks * kBlockSize), &got),
        "Reading the file");
  return got;
}

void Store::WriteAt(int block, const void* buffer) {
  unsigned short taken = 0;
  Check(file_.Seek(block * kBlockSize, OZ_SEEK_START, nullptr), "Storing the entry");
  Check(file_.Write(buffer, kBlockSize, &taken), "Storing the entry");
  Check(taken == kBlockSize ? eErrNone : eErrDiskFull, "Storing the entry");
}

// Looks at the file anew; what it finds holds as long as a lock does. Throws for a file of another
// kind.
int Store::CountEntries() {
  const Header wanted = NewHeader();
  Header header{};
  const std::size_t got = ReadAt(0, &header, 1);
  if (IsZeros(&header, got)) {
    Check(HasOnlyZeros() ? eErrNone : eErrFileVersion, "Opening the file as a daybook");
    return 0;
  }
  const std::size_t compared = got < sizeof header ? got : sizeof header.magic;
  const bool ours = std::memcmp(&header, &wanted, compared) == 0;
  Check(ours ? eErrNone : eErrFileVersion, "Opening the file as a daybook");
  if (got < sizeof header) return 0;
  Check(IsIntact(header) ? eErrNone : eErrCorrupted1, "Opening the daybook");
  const bool same = std::memcmp(&header, &wanted, sizeof header) == 0;
  Check(same ? eErrNone : eErrFileVersion, "Opening the daybook");

  const auto length = static_cast<std::uint32_t>(file_.FileLength());
  int count = std::min(static_cast<int>(length / kBlockSize) - 1, kMostEntries);
  Record last{};
  while (count > 0 && ReadAt(count, &last, 1) == sizeof last && IsZeros(&last, sizeof last)) {
    --count;
  }
  return count;
}

bool Store::HasOnlyZeros() {
  std::vector<char> bytes(std::size_t{kMostAtOnce} * kBlockSize);
  for (int block = 0; block <= kMostEntries; block += kMostAtOnce) {
    const std::size_t got = ReadAt(block, bytes.data(), kMostAtOnce);
    if (!IsZeros(bytes.data(), got)) return false;
    if (got < bytes.size()) return true;
  }
  return false;
}

Store::Contents Store::ReadAll() {
  std::vector<Record> records;
  {
    const Hold hold(file_, eLockSharedByte);
    const int count = CountEntries();
    records.resize(static_cast<std::size_t>(count));
    for (int done = 0; done < count; done += kMostAtOnce) {
      ReadAt(done + 1, &records[static_cast<std::size_t>(done)],
             std::min(count - done, kMostAtOnce));
    }
  }
  Contents contents;
  int id = 0;
  for (const Record& record : records) {
    ++id;
    if (auto entry = Unpack(record)) {
      contents.entries.emplace_hint(contents.entries.end(), id, std::move(*entry));
    } else {
      contents.damaged.push_back(id);
    }
  }
  return contents;
}

int Store::Add(const Entry& entry) {
  const Record record = Pack(entry);
  int id = 0;
  {
    const Hold hold(file_, eLockWholeRange);
    id = CountEntries() + 1;
    Check(id <= kMostEntries ? eErrNone : eErrDatabaseFull, "Storing the entry");
    const Header header = NewHeader();
    if (id == 1) WriteAt(0, &header);
    WriteAt(id, &record);
  }
  Check(file_.flushFile(), "Storing the entry");
  return id;
}

void Store::Change(int id, const std::function<void(Entry& entry)>& change) {
  {
    const Hold hold(file_, eLockWholeRange);
    if (id > CountEntries()) throw Rejection("there is no entry " + std::to_string(id));
    Record record{};
    ReadAt(id, &record, 1);
    auto entry = Unpack(record);
    Check(entry ? eErrNone : eErrCorrupted1, "Reading the entry");
    change(*entry);
    record = Pack(*entry);
    WriteAt(id, &record);
  }
  Check(file_.flushFile(), "Storing the entry");
}

void Store::CopyTo(const std::string& path) {
  const Interrupt held_back;  // so that Ctrl-C does not leave the temporary file
  TemporaryFile copy(path);
  {
    const Hold hold(file_, eLockSharedByte);
    CountEntries();
    Check(file_.CopyFileTo(copy.file), "Copying the file");
  }
  Check(copy.file.flushFile(), "Storing the copy");
  if (Interrupt::Came()) throw Stopped{};
  copy.Rename(path);
}

void Store::Rename(const std::string& path) {
  CountEntries();
  Check(WithoutTold(file_.RenameFile(OZFileSpec(path.c_str()))), "Renaming the file");
}

void Store::Delete() {
  CountEntries();
  Check(WithoutTold(file_.DeleteFileA()), "Deleting the file");
}
