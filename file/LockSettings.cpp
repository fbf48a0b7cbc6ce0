// The lock mode that an object keeps, and who hears of its blocked locks.
#include "orzcore/file.h"

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

void OZFile::SetLockFailureCallbackFunctor(OZLockFailureCallbacks* functor) {
  mLockFailureCallbacks = functor;
}
