// Virtual locks, and the lock settings of an object.
#include <limits>

#include "orzcore/file.h"
#include "platform/files.h"
#include "platform/system.h"

namespace orzcore::file {
namespace {

constexpr short kFirstTries = 6;  // with `OZ_LOCK_RETRY`
constexpr int kProbeBytes = 10;

// The offset of an object is a number from 0 to 767, but the range has only 767 bytes. So offsets
// above 760 are reduced by 4. All versions of the library do the same.
constexpr std::uint32_t kLastDirectOffset = 760;
constexpr std::uint32_t kOffsetReduction = 4;

constexpr std::uint32_t kMillisecondsPerTick = 10;
constexpr std::int32_t kDelayTicks = 50;

// Waits for half a second by reading the tick counter. The wait ends early when the counter wraps.
void Delay() {
  const std::uint32_t start = platform::GetTickCount() / kMillisecondsPerTick;
  std::int32_t passed = 0;
  do {
    passed = static_cast<std::int32_t>(platform::GetTickCount() / kMillisecondsPerTick - start);
  } while (passed >= -kDelayTicks && passed <= kDelayTicks);
}

// Positions wrap at 32 bits.
std::int32_t AddWrapping(std::int32_t position, std::uint32_t bytes) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(position) + bytes);
}

bool IsLockMode(eLockModes mode) { return mode >= eLockSharedByte && mode <= eLockFixedByteAlt; }

std::int32_t LengthOf(eLockModes mode) { return mode == eLockWholeRange ? OZFile::kLockRange : 1; }

// The bytes that a shared lock may take.
struct LockRange {
  std::int32_t first;
  std::int32_t last;

  void Advance(std::int32_t* position) const {
    *position = *position < last ? AddWrapping(*position, 1) : first;
  }
};

LockRange RangeFrom(std::int32_t base) { return {base, AddWrapping(base, OZFile::kLockRange - 1)}; }

std::uint32_t SpreadOffset(std::uint32_t lock_offset) {
  return lock_offset <= kLastDirectOffset ? lock_offset : lock_offset - kOffsetReduction;
}

constexpr LockRange kAllPositions = {std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()};

// Returns true if a refused lock may be granted later. It never will be if the device has failed,
// for example because a server is gone.
bool MayBeGrantedLater() {
  const std::uint32_t reason = platform::GetLastError();
  return reason == platform::kLockViolation || reason == platform::kNotEnoughMemory;
}

// Tries to lock the bytes of a mode, at most `tries` times (once if it is 0 or less), with a delay
// between two tries. A shared lock takes the next byte of `range` for each try. It stays in
// `range`, because an exclusive lock covers only these bytes.
OZError LockWithRetries(OZFile* file, std::int32_t* position, short tries, eLockModes mode,
                        const LockRange& range) {
  for (int left = tries;;) {
    const OZError error = file->LockBytes(OZ_BYTES_LOCK, *position, LengthOf(mode));
    if (error == eErrNone || left == 0 || !MayBeGrantedLater()) return error;
    --left;
    if (left <= 0) return eErrLocked;
    if (mode == eLockSharedByte) range.Advance(position);
    Delay();
  }
}

short FirstTries(unsigned int lock_mode) {
  return (lock_mode & OZ_LOCK_RETRY) != 0 ? kFirstTries : 0;
}

// Locks ten bytes of the range, one after the other, and then unlocks them all.
OZError Probe(OZFile* file, unsigned int lock_mode, std::int32_t* position,
              const LockRange& range) {
  std::int32_t held[kProbeBytes] = {};
  int count = 0;
  const auto release = [file](std::int32_t byte) { file->LockBytes(OZ_BYTES_UNLOCK, byte, 1); };
  for (;;) {
    const OZError error =
        LockWithRetries(file, position, FirstTries(lock_mode), eLockSharedByte, range);
    if (error != eErrNone) {
      while (count > 0) release(held[--count]);
      return error;
    }
    held[count++] = *position;
    if (count == kProbeBytes) break;
    range.Advance(position);
  }
  for (const std::int32_t byte : held) release(byte);
  return eErrNone;
}

}  // namespace
}  // namespace orzcore::file

namespace file = orzcore::file;

OZError OZFile::locking(short operation, std::int32_t* position, short retries, eLockModes mode) {
  if (!file::IsLockMode(mode)) return eErrInvalidArgument;
  if (operation == OZ_BYTES_UNLOCK)
    return LockBytes(OZ_BYTES_UNLOCK, *position, file::LengthOf(mode));
  return file::LockWithRetries(this, position, retries, mode, file::kAllPositions);
}

OZError OZFile::VirtualLock(unsigned int lock_mode, std::int32_t* position, eLockModes mode) {
  if (IsLockingSupported() == 0) return eErrNone;
  const std::int32_t base = *position;
  const bool is_probe = mode == eLockSharedProbe && lock_mode != OZ_LOCK_RELEASE;
  if (is_probe) mode = eLockSharedByte;
  if (mode == eLockSharedByte && lock_mode != OZ_LOCK_RELEASE) {
    *position = file::AddWrapping(base, file::SpreadOffset(mLockOffset));
  }
  if ((lock_mode & OZ_LOCK_RELEASE) != 0) {
    return locking(OZ_BYTES_UNLOCK, position, 0, mode) == eErrNone ? eErrNone : eErrUnlock;
  }
  if (!file::IsLockMode(mode)) return eErrInvalidArgument;
  if ((mLockMode & OZ_LOCK_STORED) != 0) lock_mode = mLockMode;
  return is_probe ? file::Probe(this, lock_mode, position, file::RangeFrom(base))
                  : Steps::WaitForLock(this, lock_mode, position, mode, base);
}

OZError OZFile::Steps::WaitForLock(OZFile* object, unsigned int lock_mode, std::int32_t* position,
                                   eLockModes mode, std::int32_t first_byte) {
  const file::LockRange range = file::RangeFrom(first_byte);
  short tries = file::FirstTries(lock_mode);
  std::int32_t attempts = 0;
  OZError error = eErrNone;
  for (;;) {
    error = file::LockWithRetries(object, position, tries, mode, range);
    if (error == eErrNone || (lock_mode & OZ_LOCK_NOWAIT) != 0) break;
    if (!file::MayBeGrantedLater()) break;
    const bool is_first_refusal = attempts == 0;
    tries = 0;
    if (is_first_refusal || object->mLockFailureCallbacks != nullptr) ++attempts;
    if (object->mLockFailureCallbacks != nullptr)
      object->mLockFailureCallbacks->NotifyLockBlocked(attempts);
    // The functor may end the wait by storing another mode or closing the file.
    if ((object->mLockMode & OZ_LOCK_STORED) != 0) lock_mode = object->mLockMode;
    if ((lock_mode & OZ_LOCK_NOWAIT) != 0 || object->IsOpen() == 0) break;
    if (!is_first_refusal) file::Delay();
    if (mode == eLockSharedByte) range.Advance(position);
  }
  if (attempts != 0 && object->mLockFailureCallbacks != nullptr)
    object->mLockFailureCallbacks->NotifyLockWaitOver();
  return error;
}

OZError OZFile::SetLockMode(unsigned int mode) {
  mLockMode = mode | OZ_LOCK_STORED;
  return eErrNone;
}

OZError OZFile::ClearLockMode() {
  mLockMode = OZ_LOCK_NONE;
  return eErrNone;
}

OZError OZFile::GetLockMode(unsigned int* mode) const {
  *mode = mLockMode;
  return eErrNone;
}

OZLockFailureCallbacks::~OZLockFailureCallbacks() = default;

void OZFile::SetLockFailureCallbackFunctor(OZLockFailureCallbacks* functor) {
  mLockFailureCallbacks = functor;
}
