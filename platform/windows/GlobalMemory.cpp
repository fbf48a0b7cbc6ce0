// Blocks of memory that the system may discard while they are not locked.
#include "platform/system.h"
#include "platform/windows/Native.h"

namespace orzcore::platform {

void* GlobalAlloc(unsigned int flags, std::uint32_t size) {
  constexpr unsigned int kSupportedFlags = kGlobalMovable | kGlobalZeroFilled | kGlobalDiscardable;
  return flags == kSupportedFlags ? ::GlobalAlloc(flags, size) : nullptr;
}

// The system frees only blocks that are not locked.
void* GlobalFree(void* block) {
  while (GlobalUnlock(block) != 0) continue;
  return ::GlobalFree(block);
}

void* GlobalLock(void* block) { return ::GlobalLock(block); }

int GlobalUnlock(void* block) { return ::GlobalUnlock(block); }

unsigned int GlobalFlags(void* block) { return ::GlobalFlags(block) & kGlobalDiscarded; }

}  // namespace orzcore::platform
