// Files on volumes that lack an ability, such as locks.
#include "file/FileTest.h"
#include "platform/FileFixtures.h"

namespace {

using PoorVolume = FileTest;

TEST_F(PoorVolume, WithoutLocksGrantsEveryOpenAndLock) {
  const VolumeGuard guard({.has_locks = false});
  for (TestFile* file : {&a_, &b_}) Make(*file, "file", "", 2, OZ_SHARE_EXCLUSIVE);
  EXPECT_NE(a_.IsLockingSupported(), 0);
  std::int32_t position = 100;
  EXPECT_EQ(a_.VirtualLock(0, &position, eLockWholeRange), eErrNone);
  EXPECT_EQ(a_.IsLockingSupported(), 0);
  EXPECT_EQ(a_.VirtualLock(OZ_LOCK_RELEASE, &position, eLockWholeRange), eErrNone);
  for (const short operation : {OZ_BYTES_LOCK, OZ_BYTES_UNLOCK}) {
    EXPECT_EQ(a_.LockBytes(operation, 1, 1), eErrNone);
    EXPECT_EQ(a_.mLockCount, 0);
  }
  EXPECT_EQ(b_.VirtualLock(0, &position, eLockSharedProbe), eErrNone);
  EXPECT_EQ(b_.mLockCount, 0);
  EXPECT_EQ(a_.Put("x"), eErrNone);
  EXPECT_EQ(a_.flushFile(), eErrNone);
  EXPECT_NE(a_.IsLockingSupported(), 0);  // a new open assumes locks until a lock fails
}

TEST_F(PoorVolume, WithShortWritesEndsACopyWithAnError) {
  Make(a_, "from", std::string(3000, 'x'));
  Make(b_, "to", "");
  const VolumeGuard guard({.longest_write = 1000});
  EXPECT_EQ(a_.CopyFileTo(b_), eErrWrite);
  EXPECT_EQ(directory_.Read("to"), std::string(1000, 'x'));
}

}  // namespace
