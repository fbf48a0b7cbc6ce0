// The operations of the library that allocate or call the host, each in a small world of its own.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "platform/FileFixtures.h"
#include "support/FakeHost.h"
#include "support/TestFiles.h"

/// What operations write for their callers. It has no padding, and is compared as bytes.
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

class Memory : public IRDiscardableMemory {
 public:
  using IRDiscardableMemory::IRDiscardableMemory;
  using IRDiscardableMemory::mLockCount;
  using IRDiscardableMemory::mSize;
};

/// A directory of three files, of which another user works on one, and an object of each kind.
struct World {
  World();
  ~World();

  /// The names in the directory, with the contents. Of a temporary name only the start counts.
  static std::map<std::string, std::string> Files();

  Folder folder;
  FakeHost host;
  TestFile file;
  TestFile target;
  TestFile neighbour;                // has "taken" open, and a lock on it
  TestFile holder;                   // for an operation that somebody is in the way of
  const char* closed_path = "file";  // of the file that the operation closes
  OZFileSpec spec;
  const OZFileSpec file_spec = "file";
  const OZFileSpec new_spec = "new";
  OZErrorMgr alerts;
  OZErrorInfo info{OZErrorInfo::kZero};
  Memory memory{5000, 0};
  Outputs out;
};

/// What an operation may do beyond failing with nothing changed.
enum Leeway : unsigned {
  kPartly = 1,      // fail with a part of it in the files
  kSilent = 2,      // succeed with nothing done, or without saying why it failed
  kClosed = 4,      // leave an open object closed
  kNoted = 8,       // succeed though data was not forced out; the next open then fails
  kLocks = 16,      // succeed on a volume without locks
  kTwice = 32,      // end half done if the same call fails twice
  kMoved = 64,      // leave another position when it fails
  kReopened = 128,  // likewise, and closed if that fails too
};

struct Operation {
  const char* name;
  std::function<int(World&)> run;  // gives `clean` if nothing fails
  std::vector<OZError> failures;   // other results
  void (*prepare)(World&) = nullptr;
  unsigned leeway = 0;
  OZError clean = eErrNone;
};

inline void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

/// Opens "file" and writes to it.
void OpenDirty(World& w);

extern const std::vector<Operation> kOperations;
