// The operations of the library that allocate memory or call the host.
#pragma once

#include <array>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "platform/FileFixtures.h"
#include "support/FakeHost.h"
#include "support/Memory.h"
#include "support/TestFiles.h"

/// All that an operation can change.
struct State {
  std::map<std::string, std::string> files;
  std::string output;
  int is_open;
  FileState file;

  bool operator==(const State&) const = default;
};

inline void PrintTo(const State& state, std::ostream* out) {
  *out << testing::PrintToString(state.files) << ", output " << state.output << ", is open "
       << state.is_open << ", flags and share mode " << state.file;
}

/// All that one run of an operation needs: a directory with two files, and an object of each class.
struct World {
  World() {
    Put("file", "0123456789");
    Put("target", "abcdefghijklmnopqrst");
    std::filesystem::create_directory("directory");
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

  State CurrentState() {
    State state = {{}, {out.begin(), out.end()}, file.IsOpen(), file.State()};
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
      const std::string name = entry.path().filename().string();
      // Each temporary file has another name.
      const std::string key = name.ends_with(".TMP") ? name.substr(0, 3) : name;
      state.files[key] = entry.is_directory() ? "a directory" : Content(name.c_str());
    }
    return state;
  }

  Folder folder;
  FakeHost host;
  TestFile file;
  TestFile target;
  TestFile holder;  // another user who has "file" open, in some operations
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
  kPartly = 1,     // fail after it has changed a part of the files
  kSilent = 2,     // succeed without doing anything, or fail without the reason
  kClosed = 4,     // close the open object
  kLocks = 8,      // succeed if the volume has no locks
  kTwice = 16,     // stop halfway if the same call fails twice; this is not tested
  kMoved = 32,     // move the position and then fail
  kReopened = 64,  // reopen the object, which moves its position; or close it if that fails
};

struct Operation {
  const char* name;
  std::function<int(World&)> run;  // returns `clean` if no call fails
  void (*prepare)(World&) = nullptr;
  unsigned allowed = 0;  // of `Allowed`
  OZError clean = eErrNone;
  std::set<int> failures = {};  // if not empty, the only other results that are possible
};

inline void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.name; }

extern const std::vector<Operation> kOperations;
