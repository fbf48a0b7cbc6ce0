// Memory that the system may discard while nobody uses it.
#include "orzcore/foundation.h"
#include "platform/system.h"

namespace orzcore::foundation {
namespace {

constexpr unsigned int kBlockFlags =
    platform::kGlobalMovable | platform::kGlobalZeroFilled | platform::kGlobalDiscardable;
constexpr int kLockAttempts = 2;

}  // namespace
}  // namespace orzcore::foundation

namespace foundation = orzcore::foundation;
namespace platform = orzcore::platform;

IRDiscardableMemory::IRDiscardableMemory() : IRDiscardableMemory(0, 0) {}

IRDiscardableMemory::IRDiscardableMemory(std::uint32_t size, int allocate)
    : mPointer(nullptr), mSize(size), mLockCount(0), mHandle(nullptr) {
  if (allocate != 0 && size != 0) AllocateMemory(size);
}

IRDiscardableMemory::~IRDiscardableMemory() {
  if (mLockCount != 0) platform::GlobalUnlock(mHandle);
  if (mHandle != nullptr) platform::GlobalFree(mHandle);
}

// Frees the earlier block first, since an object has only one.
OZError IRDiscardableMemory::AllocateMemory(std::uint32_t size) {
  if (mHandle != nullptr) platform::GlobalFree(mHandle);
  mHandle = platform::GlobalAlloc(foundation::kBlockFlags, size);
  if (mHandle == nullptr) return eErrOutOfMemory;
  mSize = size;
  return eErrNone;
}

int IRDiscardableMemory::IsAllocated() const { return mHandle != nullptr ? 1 : 0; }

int IRDiscardableMemory::IsDiscarded() const {
  if (mHandle == nullptr) return 1;
  return (platform::GlobalFlags(mHandle) & platform::kGlobalDiscarded) != 0 ? 1 : 0;
}

OZError IRDiscardableMemory::LockMemory() {
  if (mHandle == nullptr && AllocateMemory(mSize) != eErrNone) return eErrOutOfMemory;
  if (mLockCount != 0) {
    ++mLockCount;
    return eErrNone;
  }
  for (int attempt = 0; attempt < foundation::kLockAttempts; ++attempt) {
    mPointer = platform::GlobalLock(mHandle);
    if (mPointer != nullptr) {
      mLockCount = 1;
      return eErrNone;
    }
    // The block has been discarded, so a new one replaces it. After the last attempt, too: the
    // object then has a block for the next call.
    if (AllocateMemory(mSize) != eErrNone) return eErrOutOfMemory;
  }
  return eErrOutOfMemory;
}

void IRDiscardableMemory::UnlockMemory() {
  if (mLockCount == 0) return;  // the count must not wrap
  --mLockCount;
  if (mLockCount != 0) return;
  platform::GlobalUnlock(mHandle);
  mPointer = nullptr;
}
