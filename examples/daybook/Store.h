// A daybook file, which several users may have open at the same time.
//
// The file is made of blocks of 256 bytes, little-endian: a header, and a record for each entry.
// The last four bytes of a block are the CRC-32 of the bytes before them.
//
//   header  0 magic "DAYBOOK\n"   8 version: 1   12 size of a record: 256   16 identifier of the
//           file, a random number, or 0   24 zeros
//   record  0 date and time (`un_date_time`)   4 rule (`st_cyc_time`)   8 quarter anchor, 0 if
//           there is no rule   10 minutes   12 priority   14 done: 0 or 1   16 text, padded with
//           zeros
//
// A record whose `done` is 2 was taken out. It stays, so its ID is never given to another entry.
//
// A new file has a temporary name until its header is on the disk. Then it gets its own name,
// unless another user has meanwhile made a file by that name.
//
// The ID of an entry is the number of its block. The file holds no count of entries. The count
// follows from the length of the file, so adding an entry is a single write.
//
// If a user is killed or the power fails during a write, the end of the file is not finished: the
// header or the last record is cut off, the last records are zeros, or the whole file is zeros or
// empty. None of this was ever reported as stored, and the next `Add` overwrites it. A file that
// begins with zeros but also has other bytes is refused. Any other wrong checksum is damage. It is
// reported, and only `Remove` overwrites it. That includes zeros in front of the last record,
// although a power failure leaves them if two users were adding entries at that moment.
//
// All users lock the same range, from `kLockBase` on, beyond the last possible entry. A user who
// changes the file locks the whole range, and a user who reads it locks one byte of it. After a
// change, the user releases the lock and then flushes the file, since a flush skips files with
// locks. Only after the flush is the change reported as stored.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Record.h"
#include "orzcore/file.h"
#include "terminal/Command.h"
#include "terminal/LockWatcher.h"
#include "terminal/Options.h"

/// An open daybook. Operations throw `Failure`, or `Stopped` if the user pressed Ctrl-C while they
/// waited for a lock.
class Store {
 public:
  static constexpr std::int32_t kLockBase = 0x7F000000;
  static constexpr int kMostEntries = kLockBase / kBlockSize - 1;

  enum Access { kReading, kChanging, kCreating };  ///< `kCreating` makes a missing file

  /// All entries by their IDs, and the IDs of damaged records.
  struct Contents {
    std::map<int, Entry> entries;
    std::vector<int> damaged;
    bool ends_within_record = false;  ///< somebody was killed while adding an entry
    std::uint64_t file_id = 0;        ///< the identifier in the header, or 0
  };

  /// Opens the file that the first word names, and waits for locks as long as `--wait` says.
  Store(const Options& options, Access access);

  /// @param shows_waits  whether the user is shown that the file is in use
  Store(const std::string& path, Access access, bool shows_waits = true,
        std::optional<std::chrono::seconds> longest_wait = {});

  Contents ReadAll();

  /// Returns the ID. The entry is then on the disk.
  int Add(const Entry& entry);

  /// Changes an entry in place. If `change` throws, the entry stays as it is.
  void Change(int id, const std::function<void(Entry& entry)>& change);

  /// Takes an entry out, damaged or not. Returns the entry, or nothing if it was damaged.
  std::optional<Entry> Remove(int id);

  /// Copies the file to a name that no file has. The name appears when the whole copy is on the
  /// disk. The copy has its own identifier. Returns the IDs of damaged entries, which the copy does
  /// not have.
  std::vector<int> CopyTo(const std::string& path);

  // If the file is in use, the library shows a message, and these throw `Failure` with
  // `eErrSilent`.
  void Rename(const std::string& path);
  void Delete();

  int Waits() const { return watcher_.Waits(); }  ///< how often it had to wait for a lock

 private:
  int CountEntries();
  std::size_t ReadAt(int block, void* buffer, int blocks);
  void WriteAt(int block, const void* buffer);
  Record ReadEntry(int id);
  Contents ReadLocked();
  void Replace(int id, const std::function<Record(std::optional<Entry> entry)>& make);
  void Check(OZError error, const char* work, int line_of_caller = __builtin_LINE()) const;

  const std::string path_;
  OZFile file_;
  LockWatcher watcher_;
  std::uint64_t file_id_ = 0;  // after `CountEntries`: the identifier in the header, or 0
};

/// Shows the user the damage in a file: throws `Rejection` if there is any. An entry that a user
/// was adding when it was killed is shown, too, but it is no damage.
ExitStatus ReportDamage(const std::string& path, const Store::Contents& contents);
