// The operations of the library that allocate memory or call the host.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "platform/FileFixtures.h"
#include "support/FakeHost.h"
#include "support/Memory.h"
#include "support/TestFiles.h"

/// All that one run of an operation needs: a directory with three files, one of which another user
/// has open, and an object of each class.
struct World {
  World() {
    Put("file", "0123456789");
    Put("target", "abcdefghijklmnopqrst");
    Put("taken", "of another user");
    std::filesystem::create_directory("directory");
    neighbour.OpenFile("taken", 0);
    neighbour.LockBytes(0, 0, 5);
    host.SetNow(2026, 3, 5);
    out.fill('?');
  }
  ~World() {
    platform::gVolumeAbilities = {};
    umask(022);
  }

  /// A place for an output of the operation.
  template <typename T>
  T* Out(std::size_t offset = 0) {
    return reinterpret_cast<T*>(out.data() + offset);
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
  TestFile neighbour;  // has "taken" open, and a lock on it
  TestFile holder;     // another user who has "file" open, in some operations
  OZFileSpec spec = "directory\\name.old";
  const OZFileSpec file_spec = "file";
  const OZFileSpec directory_spec = "directory";
  const OZFileSpec new_spec = "new";
  OZErrorMgr alerts;
  OZErrorInfo info{OZErrorInfo::kZero};
  Memory memory{5000, 0};
  alignas(8) std::array<char, 64> out;
};

/// An operation that fails must change nothing. These are the exceptions: an operation may ...
enum Allowed : unsigned {
  kPartly = 1,      // fail after it has changed a part of the files
  kSilent = 2,      // succeed without doing anything, or fail without the reason
  kClosed = 4,      // close the open object
  kUnsynced = 8,    // succeed although data is not on the disk
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

extern const std::vector<Operation> kOperations;
