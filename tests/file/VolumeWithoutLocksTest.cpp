// A file on a volume that has no locks.
#include <gtest/gtest.h>

#include "platform/posix/Volume.h"
#include "support/TestFiles.h"

namespace {

TEST(VolumeWithoutLocks, IsWorkedOnAsIfAllLocksWereGranted) {
  const TestDirectory directory;
  const std::string path = directory.Write("file", "");
  const auto volume = platform::gVolume;
  platform::gVolume.has_locks = false;
  TestFile file;
  ASSERT_EQ(file.OpenFile(path.c_str(), 0x10), eErrNone);
  TestFile other;
  EXPECT_EQ(other.OpenFile(path.c_str(), 0x10), eErrNone);  // nothing keeps anybody out
  EXPECT_NE(file.IsLockingSupported(), 0);
  std::int32_t position = 100;
  EXPECT_EQ(file.VirtualLock(0, &position, eLockWholeRange), eErrNone);
  EXPECT_EQ(file.IsLockingSupported(), 0);
  EXPECT_EQ(file.mLockCount, 0);
  EXPECT_EQ(file.VirtualLock(OZ_LOCK_RELEASE, &position, eLockWholeRange), eErrNone);
  EXPECT_EQ(file.LockBytes(0, 1, 1), eErrNone);  // a direct call asks again
  EXPECT_EQ(file.LockBytes(1, 1, 1), eErrNone);
  EXPECT_EQ(file.mLockCount, 0);
  EXPECT_EQ(other.VirtualLock(0, &position, eLockSharedProbe), eErrNone);
  EXPECT_EQ(other.mLockCount, 0);
  EXPECT_EQ(file.Put("x"), eErrNone);
  EXPECT_EQ(file.flushFile(), eErrNone);
  EXPECT_NE(file.IsLockingSupported(), 0);  // until it is found out again
  platform::gVolume = volume;
}

}  // namespace
