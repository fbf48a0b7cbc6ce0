// A daybook file, which several users have open at the same time.
//
// The file is made of blocks of 256 bytes, little-endian: a header, and a record for each entry.
// The last four bytes of a block are the CRC-32 of the bytes before them.
//
//   header  0 magic "DAYBOOK\n"   8 version: 1   12 size of a record: 256   16 zeros
//   record  0 date and time (`un_date_time`)   4 rule (`st_cyc_time`)   8 quarter anchor, 0 without
//           a rule   10 minutes   12 priority   14 done   16 text, padded with zeros
//
// The ID of an entry is the number of its block. No count is kept anywhere: it follows from the
// length of the file, so that adding an entry is a single write. What ends too early (a header or a
// record that is cut off, a last record of zeros) was being written by a user who was stopped. It
// was never reported as stored, and the next user writes over it. Any other checksum that is wrong
// is damage, which is told and never written over.
//
// The users agree on a virtual lock at `kLockBase`, which the entries do not reach. Who changes the
// file takes the whole range, who reads it a byte of it. After a change the lock is given back
// first and then the file is flushed, since a flush passes over files with locks; only then the
// change counts as stored.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Record.h"
#include "orzcore/file.h"
#include "terminal/LockWatcher.h"

/// An open daybook. Operations throw `Failure`, or `Stopped` if Ctrl-C ends the wait for a lock.
class Store {
 public:
  static constexpr std::int32_t kLockBase = 0x7F000000;
  static constexpr int kMostEntries = kLockBase / kBlockSize - 1;

  enum Access { kReading, kChanging, kCreating };  ///< the last one makes a file that is missing

  /// What the file holds, by ID.
  struct Contents {
    std::map<int, Entry> entries;
    std::vector<int> damaged;
  };

  /// @param tells  whether the user hears of a file that is in use
  Store(const std::string& path, Access access, bool tells = true);

  Contents ReadAll();

  /// Returns the ID. The entry is on the disk.
  int Add(const Entry& entry);

  /// Changes an entry in place. What `change` throws leaves the entry as it is.
  void Change(int id, const std::function<void(Entry& entry)>& change);

  /// Copies the file under a name that is not taken. A copy that fails is removed.
  void CopyTo(const std::string& path);

  void Rename(const std::string& path);  ///< the library tells the user if the file is in use
  void Delete();                         ///< likewise

  int Waits() const { return watcher_.Waits(); }  ///< how often another user had the lock

 private:
  int CountEntries();
  std::size_t ReadAt(int block, void* buffer, int blocks);
  void WriteAt(int block, const void* buffer);

  OZFile file_;
  LockWatcher watcher_;
};
