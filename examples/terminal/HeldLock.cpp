#include "terminal/HeldLock.h"

#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

HeldLock::HeldLock(OZFile& file, std::int32_t position, eLockModes mode, const std::string& path)
    : file_(file), position_(position), mode_(mode) {
  constexpr unsigned int kWait = 0;  // no flag: waits until the lock is free
  const OZError error = file_.VirtualLock(kWait, &position_, mode_);
  if (error != eErrNone && Interrupt::Came()) throw Stopped{};
  if (error != eErrNone) throw Failure{error, "Locking " + path, __FILE__, __LINE__};
}
