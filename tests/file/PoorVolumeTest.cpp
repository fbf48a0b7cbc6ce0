// Files on volumes that lack an ability, such as locks.
#include <gtest/gtest.h>

#include "platform/posix/VolumeAbilities.h"
#include "support/TestFiles.h"

namespace platform = orzcore::platform;

namespace {

// Restores all abilities after each test.
class PoorVolume : public testing::Test {
 protected:
  ~PoorVolume() override { platform::gVolumeAbilities = {}; }
  TestDirectory directory_;
};

TEST_F(PoorVolume, WithoutLocksGrantsEveryOpenAndLock) {
  const std::string path = directory_.Write("file", "");
  platform::gVolumeAbilities.has_locks = false;
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
  EXPECT_EQ(file.LockBytes(0, 1, 1), eErrNone);  // a direct call tries again
  EXPECT_EQ(file.LockBytes(1, 1, 1), eErrNone);
  EXPECT_EQ(file.mLockCount, 0);
  EXPECT_EQ(other.LockBytes(OZ_BYTES_LOCK, 1, 0), eErrNone);
  EXPECT_EQ(other.IsLockingSupported(), 0);
  EXPECT_EQ(other.VirtualLock(0, &position, eLockSharedProbe), eErrNone);
  EXPECT_EQ(other.mLockCount, 0);
  EXPECT_EQ(file.Put("x"), eErrNone);
  EXPECT_EQ(file.flushFile(), eErrNone);
  EXPECT_NE(file.IsLockingSupported(), 0);  // a new open assumes locks until a lock fails
}

TEST_F(PoorVolume, WithShortWritesEndsACopyWithAnError) {
  TestFile from;
  TestFile to;
  ASSERT_EQ(from.OpenFile(directory_.Write("from", std::string(3000, 'x')).c_str(), 0), eErrNone);
  ASSERT_EQ(to.OpenFile(directory_.Write("to", "").c_str(), 0), eErrNone);
  platform::gVolumeAbilities.longest_write = 1000;
  unsigned short written = 0;
  EXPECT_EQ(to.Write(std::string(1024, 'y').data(), 1024, &written), eErrNone);
  EXPECT_EQ(written, 1000);  // `Write` itself does not fail
  EXPECT_EQ(from.CopyFileTo(to), eErrWrite);
  EXPECT_EQ(directory_.Read("to"), std::string(1000, 'x'));
}

}  // namespace
