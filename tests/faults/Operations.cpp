#include "faults/Operations.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "faults/HostCalls.h"

namespace {

// What an operation returns if it fails, whatever the reason is.
const std::set<int> kLocked = {eErrLocked};
const std::set<int> kNotUnlocked = {eErrUnlock};
const std::set<int> kRenamed = {eErrAccessDenied, eErrRenameAcrossDevices};
const std::set<int> kDeleted = {eErrAccessDenied, eErrNotFound};

void Open(World& w) { w.file.OpenFile("file", 0), w.target.OpenFile("target", 0); }
void OpenDirty(World& w) { Open(w), w.file.Put("dirty"), w.target.Put("dirty"); }
void OpenLocked(World& w) { Open(w), w.file.LockBytes(0, 4, 2); }
void OpenReadonly(World& w) {
  const Injection fault({"openat", EACCES});  // the open for writing fails
  w.file.OpenFile("file", 0x8000, 0);
}
void CreateNew(World& w) { w.file.CreateFileA("new", 0); }
void MaskAll(World& /*w*/) { umask(0777); }
void Hold(World& w) { w.holder.OpenFile("file", 0); }
void OpenHeld(World& w) { Open(w), Hold(w); }
void OpenBesideLock(World& w) { OpenHeld(w), w.holder.LockBytes(0, 4, 2); }
void WithoutUnnamedFiles(World& /*w*/) { platform::gVolumeAbilities.has_unnamed_files = false; }
void WithoutSafeRename(World& /*w*/) { platform::gVolumeAbilities.has_safe_rename = false; }
void OpenWithoutSafeRename(World& w) { Open(w), WithoutSafeRename(w); }

// A spec that finds no memory becomes empty.
OZError Resolve(const OZFileSpec& spec, OZError missing) {
  return spec.ResolveFullPath() == 0 ? eErrNone : missing;
}

OZError GetSpec(World& w) {
  const OZError error = w.file.GetFileSpec(w.spec);
  return error == eErrNone ? Resolve(w.spec, eErrOutOfMemory) : error;
}

OZError Rename(World& w) { return w.file.RenameFile(w.new_spec); }
OZError RenameDirectory(World& w) { return OZFile::RenameFile(w.directory_spec, w.new_spec); }
OZError DeletePath(World& w) { return OZFile::DeleteFileA(w.file_spec); }
OZError Create(World& w) { return w.file.CreateFileA("new", 0x10); }
OZError Close(World& w) { return w.file.CloseFile(); }
OZError Lock(World& w) { return w.file.LockBytes(0, 20, 5); }
OZError OpenAlone(World& w) { return w.file.OpenFile("file", 0x10); }
OZError Read(World& w) { return w.file.Read(w.Out<char>(8), 8, w.Out<unsigned short>()); }

template <eLockModes kMode, unsigned int kFlags>
OZError LockVirtually(World& w) {
  std::int32_t byte = 100;
  return w.file.VirtualLock(kFlags | OZ_LOCK_NOWAIT, &byte, kMode);
}

OZError MakeTempFile(World& w) {
  setenv("TMPDIR", ".", 1);
  OZFile::MakeTempFileName("prefix", w.spec);
  return Resolve(w.spec, eErrUnknown);
}

// An alert that is held back needs a copy of its texts. Without memory for it, the alert is
// dropped. The destructor of a manager frees the texts of an alert that was never shown.
OZError Defer(World& w) {
  OZErrorMgr never_shown;
  for (OZErrorMgr* manager : {&never_shown, &w.alerts}) {
    manager->MutexBegin();
    manager->AlertUser(&w.info, "text", "caption", 0);
  }
  w.alerts.MutexEnd();
  if (w.host.boxes.empty()) return eErrOutOfMemory;
  w.host.boxes[0].text.copy(w.out.data(), w.out.size());
  return eErrNone;
}

OZError Allocate(World& w) {
  const OZError error = w.memory.AllocateMemory(9000);
  EXPECT_EQ(w.memory.IsAllocated(), error == eErrNone ? 1 : 0);
  EXPECT_EQ(w.memory.mSize == 9000, error == eErrNone);
  return error;
}

OZError LockMemory(World& w) {
  const OZError error = w.memory.LockMemory();
  EXPECT_EQ(w.memory.mPointer != nullptr, error == eErrNone);
  EXPECT_EQ(w.memory.mLockCount, error == eErrNone ? 1U : 0U);
  w.memory.UnlockMemory();
  return error;
}

void Discard(World& w) {
  w.memory.LockMemory();
  void* const address = w.memory.mPointer;
  w.memory.UnlockMemory();
  madvise(address, w.memory.mSize, MADV_DONTNEED);
}

// Makes the next operation read a locale. The open file is there because a test that repeats a
// failed operation calls this function again if no file is open. So the repeated operation reads
// what the failed one has left.
void ForgetSettings(World& w) {
  Open(w);
  setenv("LOCPATH", LOCALE_DIRECTORY, 1);
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  OZHost::Install(&w.host);
}

// Without memory, the library uses the settings of a user who has set none.
OZError ReadSettings(World& w) {
  char pattern[20] = {};
  w.host.OZHost::GetProfileStringA("Intl", "sShortDate", "", pattern, sizeof(pattern));
  if (*pattern == '\0') return eErrOutOfMemory;
  std::strcpy(w.out.data(), pattern);
  return eErrNone;
}

}  // namespace

const std::vector<Operation> kOperations = {
    // Opening
    {"Open", OpenAlone},
    {"OpenToRead", [](World& w) { return w.file.OpenFile("file", 0x8000, 0x10); }},
    {"OpenMissing", [](World& w) { return w.file.OpenFile("no", 0); }, nullptr, 0, eErrNotFound},
    {"OpenAlone", OpenAlone, Hold, kLocks, eErrSharing},
    {"OpenEmptied", [](World& w) { return w.file.OpenFile("file", 0x8102, 0); }},
    {"Create", Create, nullptr, kTwice},
    {"CreateTaken", [](World& w) { return w.file.CreateFileA("target", 0); }, nullptr, 0,
     eErrCannotCreate},
    {"CreateNamed", Create, WithoutUnnamedFiles, kPartly},
    {"CreateUnderMask", Create, MaskAll, kTwice},
    {"Close", Close, OpenDirty},
    {"CloseNew", Close, CreateNew},
    {"CloseLocked", Close, OpenLocked, 0, eErrInvalidArgument},

    // Moving bytes
    {"Read", Read, Open, 0, eErrNone, {eErrLocked, eErrRead, eErrOutOfMemory}},
    {"ReadBesideLock", Read, OpenBesideLock, 0, eErrLocked, {eErrRead}},
    {"Write", [](World& w) { return w.file.Write("WRITTEN", 7, w.Out<unsigned short>()); }, Open,
     kPartly | kMoved},
    {"Seek", [](World& w) { return w.file.Seek(-3, 2, nullptr); }, Open},
    {"Length", [](World& w) { return w.file.FileLength() == -1 ? eErrSeek : eErrNone; }, Open},
    {"ChangeSize", [](World& w) { return w.file.ChangeSize(5); }, Open, kMoved},
    {"Copy", [](World& w) { return w.file.CopyFileTo(w.target); }, Open, kPartly | kMoved},
    {"Flush", [](World& w) { return w.file.flushFile(); }, OpenDirty, kClosed},
    {"FlushAll", [](World& /*w*/) { return OZFile::FlushAllFiles(); }, OpenDirty, kClosed},

    // Locks
    {"Lock", Lock, Open, 0, eErrNone, kLocked},
    {"LockReadonly", Lock, OpenReadonly, kTwice, eErrNone, kLocked},
    {"LockBesideLock", [](World& w) { return w.file.LockBytes(0, 0, 8); }, OpenBesideLock, 0,
     eErrLocked, kLocked},
    {"Unlock", [](World& w) { return w.file.LockBytes(1, 4, 2); }, OpenLocked, 0, eErrNone,
     kNotUnlocked},
    {"LockVirtually", LockVirtually<eLockWholeRange, OZ_LOCK_RETRY>, Open, 0, eErrNone, kLocked},
    {"Probe", LockVirtually<eLockSharedProbe, 0>, Open, kTwice, eErrNone, kLocked},

    // Names
    {"Rename", Rename, OpenDirty, kReopened},
    {"RenameByLink", Rename, OpenWithoutSafeRename, kReopened | kTwice},
    {"RenameOntoAnother", [](World& w) { return w.file.renameDeleteFile("target"); }, Open,
     kReopened, eErrCannotCreate},
    {"RenameHeld", Rename, OpenHeld, kReopened | kLocks, eErrSharing},
    {"Delete", [](World& w) { return w.file.DeleteFileA(); }, Open, kReopened},
    {"DeleteHeld", [](World& w) { return w.file.renameDeleteFile(nullptr); }, OpenHeld,
     kReopened | kLocks, eErrSharing},
    {"RenamePath", [](World& w) { return OZFile::RenameFile(w.file_spec, w.new_spec); }, nullptr,
     kSilent, eErrNone, kRenamed},
    {"RenameDirectory", RenameDirectory, nullptr, kSilent, eErrNone, kRenamed},
    {"RenameDirectoryByDirectory", RenameDirectory, WithoutSafeRename, kSilent, eErrNone, kRenamed},
    {"DeletePath", DeletePath, nullptr, kSilent, eErrNone, kDeleted},
    {"DeleteHeldPath", DeletePath, Hold, kSilent | kLocks, eErrAccessDenied, kDeleted},
    {"MakeTempFile", MakeTempFile, nullptr, kSilent, eErrNone, {eErrUnknown}},

    // Specs, alerts, memory, fields, regional settings
    {"GetSpec", GetSpec, Open},
    {"MakeSpec", [](World& /*w*/) { return Resolve(OZFileSpec("a\\", "b"), eErrOutOfMemory); }},
    {"DeferAlert", Defer},
    {"AllocateMemory", Allocate},
    {"LockMemory", LockMemory},
    {"LockDiscardedMemory", LockMemory, Discard},
    {"ParseInt", [](World& w) { return OZParser::ParseInt("12", w.Out<std::int32_t>()); }},
    {"ParsePriority", [](World& w) { return OZParser::ParsePriority(w.Out<short>(), "hi", 0); }},
    {"ReadSettings", ReadSettings, ForgetSettings},
};
