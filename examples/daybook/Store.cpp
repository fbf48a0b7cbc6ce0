#include "Store.h"

#include <algorithm>
#include <cstring>
#include <iostream>
#include <random>
#include <thread>

#include "Commands.h"
#include "terminal/Failure.h"
#include "terminal/HeldLock.h"
#include "terminal/Path.h"

namespace {

constexpr unsigned int kShared = 0;

// The library has already shown a message for these errors.
OZError SilentIfShown(OZError error) {
  return error == eErrSharing || error == eErrAccessDenied ? eErrSilent : error;
}

OZError WriteBlock(OZFile& file, int block, const void* buffer) {
  unsigned short taken = 0;
  OZError error = file.Seek(block * kBlockSize, OZ_SEEK_START, nullptr);
  if (error == eErrNone) error = file.Write(buffer, kBlockSize, &taken);
  return error == eErrNone && taken != kBlockSize ? eErrDiskFull : error;
}

std::uint64_t NewId() {
  std::random_device random;
  return std::uniform_int_distribution<std::uint64_t>(1)(random);
}

OZError WriteNewHeader(OZFile& file) {
  const Header header = MakeHeader(NewId());
  return WriteBlock(file, 0, &header);
}

// Makes a file that `fill` writes. It has a temporary name until all of it is on the disk, so
// nobody ever finds half a daybook under its own name. Returns `eErrCannotCreate` if that is taken.
OZError MakeFile(OZFile& file, const std::string& path, const std::function<OZError()>& fill) {
  const std::string directory = path.substr(0, path.find_last_of("/\\") + 1);
  const OZFileSpec temporary((directory + "daybook-new-" + std::to_string(NewId())).c_str());
  const Interrupt held_back;  // so that Ctrl-C does not leave the temporary file
  OZError error = file.CreateFileA(temporary, kShared);
  if (error != eErrNone) return error;
  try {
    error = fill();
    if (error == eErrNone) error = file.flushFile();
    if (Interrupt::Came()) throw Stopped{};
    if (error == eErrNone) error = SilentIfShown(file.renameDeleteFile(path.c_str()));
    // If the new name could not be forced to the disk, the object could not be opened again.
    if (error == eErrNone) return file.IsOpen() != 0 ? eErrNone : eErrWrite;
  } catch (...) {
    file.CloseFile();
    OZFile::DeleteFileA(temporary);
    throw;
  }
  file.CloseFile();
  OZFile::DeleteFileA(temporary);
  return error;
}

}  // namespace

Store::Store(const Options& options, Access access)
    : Store(options.Words().front(), access, true, LongestWait(options)) {}

Store::Store(const std::string& path, Access access, bool shows_waits,
             std::optional<std::chrono::seconds> longest_wait)
    : path_(path), watcher_(file_, shows_waits, longest_wait) {
  constexpr unsigned int kReadOnly = 0;
  constexpr int kMostTries = 50;
  constexpr auto kPause = std::chrono::milliseconds(20);
  const char* const name = path.c_str();
  OZError error =
      access == kReading ? file_.OpenFile(name, kReadOnly, kShared) : file_.OpenFile(name, kShared);
  if (error == eErrNotFound && access == kCreating) {
    error = MakeFile(file_, path, [&] { return WriteNewHeader(file_); });
    if (error == eErrCannotCreate)
      error = file_.OpenFile(name, kShared);  // another user has just made it
  }
  // A user who makes the file has it alone until it has its name.
  for (int tries = 0; error == eErrSharing && access == kCreating && tries < kMostTries; ++tries) {
    std::this_thread::sleep_for(kPause);
    error = file_.OpenFile(name, kShared);
  }
  if (error != eErrNone) ExplainPath(path, "daybook");
  Check(error, "Opening");
}

void Store::Check(OZError error, const char* work, int line_of_caller) const {
  if (error != eErrNone) throw Failure{error, work + (' ' + path_), __FILE__, line_of_caller};
}

std::size_t Store::ReadAt(int block, void* buffer, int blocks) {
  unsigned short got = 0;
  Check(file_.Seek(block * kBlockSize, OZ_SEEK_START, nullptr), "Reading");
  Check(file_.Read(buffer, static_cast<unsigned short>(blocks * kBlockSize), &got), "Reading");
  return got;
}

void Store::WriteAt(int block, const void* buffer) {
  Check(WriteBlock(file_, block, buffer), "Storing the entry in");
}

// Reads the file to find its last entry. The result is valid as long as a lock is held. Throws for
// a file that is not a daybook.
int Store::CountEntries() {
  const auto length = static_cast<std::uint32_t>(file_.FileLength());
  const auto expect = [&](bool is_daybook) {
    if (!is_daybook) throw Rejection("'" + path_ + "' is not a daybook");
  };
  expect(length <= kLockBase);
  const int end = static_cast<int>(length) / kBlockSize;
  Record record{};
  const bool ends_in_zeros = IsZeros(&record, ReadAt(end, &record, 1));
  int count = std::max(end - 1, 0);
  while (count > 0 && ReadAt(count, &record, 1) == sizeof record &&
         IsZeros(&record, sizeof record)) {
    --count;
  }

  Header header{};
  const std::size_t got = ReadAt(0, &header, 1);
  const Header wanted = MakeHeader(header.id);
  file_id_ = 0;
  if (count == 0 && ends_in_zeros && IsZeros(&header, got)) return 0;
  const std::size_t compared = got < sizeof header ? got : sizeof header.magic;
  expect(std::memcmp(&header, &wanted, compared) == 0);
  if (got < sizeof header) return 0;
  if (!IsIntact(header)) {
    throw Rejection("the beginning of " + path_ + " is damaged: restore the file from a backup");
  }
  Check(std::memcmp(&header, &wanted, sizeof header) == 0 ? eErrNone : eErrFileVersion, "Opening");
  file_id_ = header.id;
  return count;
}

Store::Contents Store::ReadAll() {
  const HeldLock lock(file_, kLockBase, eLockSharedByte, path_);
  return ReadLocked();
}

Store::Contents Store::ReadLocked() {
  constexpr int kMostAtOnce = 255;  // a transfer counts its bytes in 16 bits
  const int count = CountEntries();
  std::vector<Record> records(static_cast<std::size_t>(count));
  for (int done = 0; done < count; done += kMostAtOnce) {
    ReadAt(done + 1, &records[static_cast<std::size_t>(done)], std::min(count - done, kMostAtOnce));
  }
  Contents contents;
  contents.file_id = file_id_;
  contents.ends_within_record = file_.FileLength() % kBlockSize != 0;
  int id = 0;
  for (const Record& record : records) {
    ++id;
    if (IsRemoved(record)) continue;
    if (auto entry = Unpack(record)) {
      contents.entries.emplace_hint(contents.entries.end(), id, std::move(*entry));
    } else {
      contents.damaged.push_back(id);
    }
  }
  return contents;
}

// Reads the record of an entry. The whole range is locked.
Record Store::ReadEntry(int id) {
  Record record{};
  if (id <= CountEntries()) ReadAt(id, &record, 1);
  if (id > CountEntries() || IsRemoved(record)) {
    throw Rejection("there is no entry " + std::to_string(id));
  }
  return record;
}

int Store::Add(const Entry& entry) {
  const Record record = Pack(entry);
  int id = 0;
  {
    const HeldLock lock(file_, kLockBase, eLockWholeRange, path_);
    id = CountEntries() + 1;
    if (id > kMostEntries) throw Rejection(path_ + " is full: begin a new file");
    // A file that was cut off may have no whole header.
    const Header header = MakeHeader(file_id_ != 0 ? file_id_ : NewId());
    if (id == 1) WriteAt(0, &header);
    WriteAt(id, &record);
    const int end = (id + 1) * kBlockSize;  // blocks that were never finished may follow
    if (file_.FileLength() > end) Check(file_.ChangeSize(end), "Storing the entry in");
  }
  Check(file_.flushFile(), "Storing the entry in");
  return id;
}

void Store::Replace(int id, const std::function<Record(std::optional<Entry> entry)>& make) {
  {
    const HeldLock lock(file_, kLockBase, eLockWholeRange, path_);
    const Record record = make(Unpack(ReadEntry(id)));
    WriteAt(id, &record);
  }
  Check(file_.flushFile(), "Storing the change in");
}

void Store::Change(int id, const std::function<void(Entry& entry)>& change) {
  Replace(id, [&](std::optional<Entry> entry) {
    if (!entry) {
      throw Rejection("entry " + std::to_string(id) + " is damaged; 'daybook remove " + path_ +
                      ' ' + std::to_string(id) + "' takes it out");
    }
    change(*entry);
    return Pack(*entry);
  });
}

std::optional<Entry> Store::Remove(int id) {
  std::optional<Entry> removed;
  Replace(id, [&](std::optional<Entry> entry) {
    removed = std::move(entry);
    return RemovedRecord();
  });
  return removed;
}

std::vector<int> Store::CopyTo(const std::string& path) {
  std::vector<int> damaged;
  OZFile copy;
  const OZError error = MakeFile(copy, path, [&] {
    {
      const HeldLock lock(file_, kLockBase, eLockSharedByte, path_);
      damaged = ReadLocked().damaged;
      Check(file_.CopyFileTo(copy), "Copying");
    }
    OZError written = WriteNewHeader(copy);
    for (const int id : damaged) {
      const Record removed = RemovedRecord();
      if (written == eErrNone) written = WriteBlock(copy, id, &removed);
    }
    return written;
  });
  if (error != eErrNone) ExplainPath(path, "daybook");
  if (error != eErrNone) throw Failure{error, "Creating the copy " + path, __FILE__, __LINE__};
  return damaged;
}

void Store::Rename(const std::string& path) {
  CountEntries();
  const OZError error = SilentIfShown(file_.renameDeleteFile(path.c_str()));
  if (error != eErrNone) ExplainPath(path, "daybook");
  Check(error, "Renaming");
}

void Store::Delete() {
  CountEntries();
  Check(SilentIfShown(file_.DeleteFileA()), "Deleting");
}

ExitStatus ReportDamage(const std::string& path, const Store::Contents& contents) {
  std::cout.flush();
  if (contents.ends_within_record) {
    std::cerr << "daybook: " << path
              << " ends within an entry that was never reported as stored; the next 'add' "
                 "overwrites it\n";
  }
  if (contents.damaged.empty()) return kSuccess;
  std::string ids;
  for (const int id : contents.damaged) ids += ' ' + std::to_string(id);
  throw Rejection("damaged entries in " + path + ":" + ids +
                  "\nThis takes them out: daybook remove " + path + ids);
}
