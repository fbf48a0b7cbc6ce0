// The protocol by which the users of a shared file keep out of each other's way.
#include <limits>

#include "orzcore/file.h"
#include "platform/system.h"

namespace platform = orzcore::platform;

namespace {

constexpr short kLockBytes = 0;
constexpr short kUnlockBytes = 1;
constexpr short kUnlocking = 1;   // of `locking`
constexpr short kFirstTries = 6;  // of a call with `OZ_LOCK_RETRY`
constexpr int kProbeBytes = 10;

// The spread offset is drawn from 768 numbers, for a range of 767 bytes.
constexpr std::uint32_t kLastPlainOffset = 760;
constexpr std::uint32_t kOffsetFold = 4;

constexpr std::uint32_t kMillisecondsPerTick = 10;
constexpr std::int32_t kDelayTicks = 50;

// Waits for half a second, on the tick counter alone. It ends early when the counter wraps.
void Delay() {
  const std::uint32_t start = platform::GetTickCount() / kMillisecondsPerTick;
  std::int32_t passed = 0;
  do {
    passed = static_cast<std::int32_t>(platform::GetTickCount() / kMillisecondsPerTick - start);
  } while (passed >= -kDelayTicks && passed <= kDelayTicks);
}

// Positions are counted in 32 bits, and wrap.
std::int32_t Add(std::int32_t position, std::uint32_t bytes) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(position) + bytes);
}

bool IsLockMode(eLockModes mode) { return mode >= eLockSharedByte && mode <= eLockFixedByteAlt; }

std::int32_t LengthOf(eLockModes mode) { return mode == eLockWholeRange ? OZFile::kLockRange : 1; }

// The bytes that a shared lock may take.
struct LockRange {
  std::int32_t first;
  std::int32_t last;

  void Advance(std::int32_t* position) const {
    *position = *position < last ? Add(*position, 1) : first;
  }
};

LockRange RangeFrom(std::int32_t base) { return {base, Add(base, OZFile::kLockRange - 1)}; }

std::uint32_t SpreadOffset(std::uint32_t lock_offset) {
  return lock_offset <= kLastPlainOffset ? lock_offset : lock_offset - kOffsetFold;
}

constexpr LockRange kAllPositions = {std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()};

// Tries to take the range of a mode, again after a delay for as long as `retries` allows. A shared
// lock looks on through `range`, and never beyond: it would not be covered by an exclusive one
// there.
OZError LockWithRetries(OZFile* file, std::int32_t* position, short retries, eLockModes mode,
                        const LockRange& range) {
  for (int left = retries;;) {
    const OZError error = file->LockBytes(kLockBytes, *position, LengthOf(mode));
    if (error == eErrNone || left == 0) return error;
    --left;
    if (left <= 0) return eErrLocked;
    if (mode == eLockSharedByte) range.Advance(position);
    Delay();
  }
}

short FirstTries(unsigned int lock_mode) {
  return (lock_mode & OZ_LOCK_RETRY) != 0 ? kFirstTries : 0;
}

// Takes ten bytes of the range, one at a time, and gives them back.
OZError Probe(OZFile* file, unsigned int lock_mode, std::int32_t* position,
              const LockRange& range) {
  std::int32_t held[kProbeBytes] = {};
  int count = 0;
  const auto release = [file](std::int32_t byte) { file->LockBytes(kUnlockBytes, byte, 1); };
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

OZError OZFile::locking(short operation, std::int32_t* position, short retries, eLockModes mode) {
  if (!IsLockMode(mode)) return eErrInvalidArgument;
  if (operation == kUnlocking) return LockBytes(kUnlockBytes, *position, LengthOf(mode));
  return LockWithRetries(this, position, retries, mode, kAllPositions);
}

OZError OZFile::VirtualLock(unsigned int lock_mode, std::int32_t* position, eLockModes mode) {
  if (IsLockingSupported() == 0) return eErrNone;
  const std::int32_t base = *position;
  const bool is_probe = mode == eLockSharedProbe && lock_mode != OZ_LOCK_RELEASE;
  if (is_probe) mode = eLockSharedByte;
  if (mode == eLockSharedByte && lock_mode != OZ_LOCK_RELEASE) {
    *position = Add(base, SpreadOffset(mLockOffset));
  }
  if ((lock_mode & OZ_LOCK_RELEASE) != 0) {
    return locking(kUnlocking, position, 0, mode) == eErrNone ? eErrNone : eErrUnlock;
  }
  if (!IsLockMode(mode)) return eErrInvalidArgument;
  if ((mLockMode & OZ_LOCK_STORED) != 0) lock_mode = mLockMode;
  return is_probe ? Probe(this, lock_mode, position, RangeFrom(base))
                  : WaitForLock(lock_mode, position, mode, base);
}

OZError OZFile::WaitForLock(unsigned int lock_mode, std::int32_t* position, eLockModes mode,
                            std::int32_t first_byte) {
  const LockRange range = RangeFrom(first_byte);
  short retries = FirstTries(lock_mode);
  std::int32_t attempts = 0;
  OZError error = eErrNone;
  for (;;) {
    error = LockWithRetries(this, position, retries, mode, range);
    if (error == eErrNone || (lock_mode & OZ_LOCK_NOWAIT) != 0) break;
    const bool is_first_refusal = attempts == 0;
    retries = 0;
    if (is_first_refusal || mLockFailureCallbacks != nullptr) ++attempts;
    if (mLockFailureCallbacks != nullptr) mLockFailureCallbacks->NotifyLockBlocked(attempts);
    // The way out of an endless wait: the functor may store another mode, or close the file.
    if ((mLockMode & OZ_LOCK_STORED) != 0) lock_mode = mLockMode;
    if ((lock_mode & OZ_LOCK_NOWAIT) != 0 || IsOpen() == 0) break;
    if (!is_first_refusal) Delay();
    if (mode == eLockSharedByte) range.Advance(position);
  }
  if (attempts != 0 && mLockFailureCallbacks != nullptr)
    mLockFailureCallbacks->NotifyLockWaitOver();
  return error;
}
