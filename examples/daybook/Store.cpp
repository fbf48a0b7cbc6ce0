#include "Store.h"

#include <algorithm>
#include <cstring>
#include <random>

#include "Commands.h"
#include "terminal/Failure.h"

namespace {

constexpr unsigned int kShared = 0;

void Check(OZError error, const char* subject, int line_of_caller = __builtin_LINE()) {
  if (error != eErrNone) throw Failure{error, subject, __FILE__, line_of_caller};
}

// Holds a lock during its lifetime.
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
  static constexpr unsigned int kWait = 0;  // no flag: waits until the lock is free

  OZFile& file_;
  const eLockModes mode_;
  std::int32_t position_ = Store::kLockBase;
};

// The library has already shown a message for these errors.
OZError SilentIfShown(OZError error) {
  return error == eErrSharing || error == eErrAccessDenied ? eErrSilent : error;
}

}  // namespace

Store::Store(const std::string& path, Access access, bool shows_waits)
    : watcher_(file_, shows_waits) {
  constexpr unsigned int kReadOnly = 0;
  const char* const name = path.c_str();
  OZError error =
      access == kReading ? file_.OpenFile(name, kReadOnly, kShared) : file_.OpenFile(name, kShared);
  if (error == eErrNotFound && access == kCreating) {
    error = file_.CreateFileA(name, kShared);
    if (error == eErrCannotCreate)
      error = file_.OpenFile(name, kShared);  // another user has just made it
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

// Reads the file to find its last entry. The result is valid as long as a lock is held. Throws for
// a file that is not a daybook.
int Store::CountEntries() {
  const auto length = static_cast<std::uint32_t>(file_.FileLength());
  Check(length <= kLockBase ? eErrNone : eErrFileVersion, "Opening the file as a daybook");
  const int end = static_cast<int>(length) / kBlockSize;
  Record record{};
  const bool ends_in_zeros = IsZeros(&record, ReadAt(end, &record, 1));
  int count = std::max(end - 1, 0);
  while (count > 0 && ReadAt(count, &record, 1) == sizeof record &&
         IsZeros(&record, sizeof record)) {
    --count;
  }

  const Header wanted = NewHeader();
  Header header{};
  const std::size_t got = ReadAt(0, &header, 1);
  if (count == 0 && ends_in_zeros && IsZeros(&header, got)) return 0;
  const std::size_t compared = got < sizeof header ? got : sizeof header.magic;
  const bool ours = std::memcmp(&header, &wanted, compared) == 0;
  Check(ours ? eErrNone : eErrFileVersion, "Opening the file as a daybook");
  if (got < sizeof header) return 0;
  Check(IsIntact(header) ? eErrNone : eErrCorrupted1, "Opening the daybook");
  Check(std::memcmp(&header, &wanted, sizeof header) == 0 ? eErrNone : eErrFileVersion,
        "Opening the daybook");
  return count;
}

Store::Contents Store::ReadAll() {
  constexpr int kMostAtOnce = 255;  // a transfer counts its bytes in 16 bits
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

// The copy has a temporary name until all of it is on the disk, so nobody ever finds half a daybook
// under the new name.
void Store::CopyTo(const std::string& path) {
  const std::string directory = path.substr(0, path.find_last_of("/\\") + 1);
  const std::string number = std::to_string(std::random_device{}());
  const OZFileSpec temporary((directory + "daybook-copy-" + number).c_str());
  const Interrupt held_back;  // so that Ctrl-C does not leave the temporary file
  OZFile copy;
  Check(copy.CreateFileA(temporary, kShared), "Creating the copy");
  try {
    {
      const Hold hold(file_, eLockSharedByte);
      CountEntries();
      Check(file_.CopyFileTo(copy), "Copying the file");
    }
    Check(copy.flushFile(), "Storing the copy");
    if (Interrupt::Came()) throw Stopped{};
    Check(SilentIfShown(copy.RenameFile(OZFileSpec(path.c_str()))), "Creating the copy");
  } catch (...) {
    copy.CloseFile();
    OZFile::DeleteFileA(temporary);
    throw;
  }
  // If the new name could not be forced to the disk, the object could not be opened again.
  Check(copy.IsOpen() != 0 ? eErrNone : eErrWrite, "Storing the copy");
}

void Store::Rename(const std::string& path) {
  CountEntries();
  Check(SilentIfShown(file_.RenameFile(OZFileSpec(path.c_str()))), "Renaming the file");
}

void Store::Delete() {
  CountEntries();
  Check(SilentIfShown(file_.DeleteFileA()), "Deleting the file");
}
