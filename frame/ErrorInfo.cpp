// The record of an alert.
#include "orzcore/frame.h"
#include "platform/system.h"

namespace platform = orzcore::platform;

int OZErrorInfo::LoadStringA(short id, char* buffer, unsigned int size) const {
  const auto wide_id = static_cast<unsigned int>(int{id});
  return platform::LoadStringA(mInstance, wide_id, buffer, size) != 0 ? 0 : -1;
}
