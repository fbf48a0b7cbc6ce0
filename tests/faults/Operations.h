// The operations of the library that allocate memory or call the host.
#pragma once

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "platform/FileFixtures.h"
#include "support/FakeHost.h"
#include "support/Memory.h"
#include "support/TestFiles.h"

/// What operations return through their pointers. It has no padding, and is compared as bytes.
struct Outputs {
  char text[60];
  std::int32_t number;
  un_date_time date;
  OZParser::eParseResult result;
  ST_TIME_RETURN_VAL interval;
  short small;
  unsigned short count;
  char rest[2];

  Outputs() { std::memset(static_cast<void*>(this), 0xEE, sizeof(*this)); }
  bool operator==(const Outputs& other) const {
    return std::memcmp(this, &other, sizeof(other)) == 0;
  }
};

/// All that one run of an operation needs: a directory with three files, one of which another user
/// has open, and an object of each class.
struct World {
  World() {
    Put("file", "0123456789");
    Put("target", "abcdefghijklmnopqrst");
    Put("taken", "of another user");
    neighbour.OpenFile("taken", 0);
    neighbour.LockBytes(0, 0, 5);
    host.SetNow(2026, 3, 5);
  }
  ~World() {
    platform::gVolumeAbilities = {};
    umask(022);
  }

  /// Returns the names and contents of the files in the directory. The name of a temporary file is
  /// cut to its first three characters, since the others change.
  static std::map<std::string, std::string> Files() {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
      const std::string name = entry.path().filename().string();
      const std::string key = entry.path().extension() == ".TMP" ? name.substr(0, 3) : name;
      files[key] = entry.is_directory() ? "a directory" : Content(name.c_str());
    }
    return files;
  }

  Folder folder;
  FakeHost host;
  TestFile file;
  TestFile target;
  TestFile neighbour;                // has "taken" open, and a lock on it
  TestFile holder;                   // another user who has "file" open, in some operations
  const char* closed_path = "file";  // the file that the operation closes
  OZFileSpec spec;
  const OZFileSpec file_spec = "file";
  const OZFileSpec new_spec = "new";
  OZErrorMgr alerts;
  OZErrorInfo info{OZErrorInfo::kZero};
  Memory memory{5000, 0};
  Outputs out;
};

/// An operation that fails must change nothing. These are the exceptions: an operation may ...
enum Allowed : unsigned {
  kPartly = 1,      // fail after it has changed a part of the files
  kSilent = 2,      // succeed without doing anything, or fail without the reason
  kClosed = 4,      // close the open object
  kNoted = 8,       // succeed although data is not on the disk; the next open then fails
  kLocks = 16,      // succeed if the volume has no locks
  kTwice = 32,      // stop halfway if the same call fails twice; this is not tested
  kMoved = 64,      // move the position and then fail
  kReopened = 128,  // reopen the object, which moves its position; or close it if that fails
};

struct Operation {
  const char* name;
  std::function<int(World&)> run;  // returns `clean` if no call fails
  void (*prepare)(World&) = nullptr;
  unsigned allowed = 0;  // of `Allowed`
  OZError clean = eErrNone;
  std::vector<OZError> failures = {};  // if not empty, the only other results that are possible
};

inline void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

/// Opens "file" and writes to it.
inline void OpenDirty(World& w) { w.file.OpenFile("file", 0), w.file.Put("dirty"); }

extern const std::vector<Operation> kOperations;
