#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/FakeHost.h"
#include "support/TestFiles.h"

namespace {

constexpr std::int32_t kBase = 5000;
// One reading of the tick counter to begin with, and 51 until more than half a second has passed.
constexpr std::uint32_t kDelay = 520;
constexpr unsigned kNoWait = OZ_LOCK_NOWAIT;
constexpr unsigned kRetry = OZ_LOCK_RETRY;

// Writes down what it hears, and acts at one of the refusals.
class Listener : public OZLockFailureCallbacks {
 public:
  explicit Listener(const FakeHost* host) : host_(host) {}
  void NotifyLockBlocked(std::int32_t attempt) override {
    const std::uint32_t delays = (host_->ticks - ticks_) / kDelay;
    EXPECT_EQ((host_->ticks - ticks_) % kDelay, 0U);
    ticks_ = host_->ticks;
    calls += std::string(delays, '.') + std::to_string(attempt);
    if (attempt == act_at) act();
  }
  void NotifyLockWaitOver() override { calls += '!'; }

  std::string calls;  // attempts, a dot for each delay before them, and the end
  std::int32_t act_at = 0;
  std::function<void()> act;

 private:
  const FakeHost* host_;
  std::uint32_t ticks_ = 0;
};

class VirtualLock : public testing::Test {
 protected:
  VirtualLock() : listener_(&host_) {
    const std::string path = directory_.Write("file", "");
    for (TestFile* file : {&mine_, &other_, &third_}) {
      EXPECT_EQ(file->OpenFile(path.c_str(), 0), eErrNone);
      file->mLockOffset = 0;
    }
    mine_.SetLockFailureCallbackFunctor(&listener_);
  }

  OZError Lock(TestFile& file, unsigned flags, eLockModes mode, std::int32_t base = kBase) {
    position_ = base;
    return file.VirtualLock(flags, &position_, mode);
  }

  // Half seconds that a call took.
  int Delays(const std::function<void()>& call) {
    const std::uint32_t before = host_.ticks;
    call();
    EXPECT_EQ((host_.ticks - before) % kDelay, 0U);
    return static_cast<int>((host_.ticks - before) / kDelay);
  }

  FakeHost host_;
  TestDirectory directory_;
  TestFile mine_;
  TestFile other_;
  TestFile third_;
  Listener listener_;
  std::int32_t position_ = 0;
};

TEST_F(VirtualLock, LetsReadersExcludeAWriterAndAWriterEveryone) {
  mine_.mLockOffset = 100;
  other_.mLockOffset = 700;
  EXPECT_EQ(Lock(mine_, 0, eLockSharedByte), eErrNone);
  std::int32_t mine = position_;
  EXPECT_EQ(mine, kBase + 100);
  EXPECT_EQ(Lock(other_, 0, eLockSharedByte), eErrNone);
  std::int32_t others = position_;
  EXPECT_EQ(Lock(third_, kNoWait, eLockWholeRange), eErrLocked);
  EXPECT_EQ(mine_.VirtualLock(OZ_LOCK_RELEASE, &mine, eLockSharedByte), eErrNone);
  EXPECT_EQ(Lock(third_, kNoWait, eLockWholeRange), eErrLocked);
  EXPECT_EQ(other_.VirtualLock(OZ_LOCK_RELEASE, &others, eLockSharedByte), eErrNone);
  EXPECT_EQ(Lock(third_, kNoWait, eLockWholeRange), eErrNone);
  EXPECT_EQ(third_.mLockCount, 1);
  for (const std::uint32_t offset : {0U, 1U, 500U, 760U, 761U, 767U}) {
    mine_.mLockOffset = offset;
    EXPECT_EQ(Lock(mine_, kNoWait, eLockSharedByte), eErrLocked) << offset;
  }
  EXPECT_EQ(Lock(mine_, kNoWait, eLockFixedByte, kBase + 766), eErrLocked);
  EXPECT_EQ(Lock(mine_, kNoWait, eLockFixedByteAlt, kBase + 767), eErrNone);  // behind the range
  EXPECT_EQ(Lock(third_, OZ_LOCK_RELEASE, eLockWholeRange), eErrNone);
  EXPECT_EQ(Lock(third_, OZ_LOCK_RELEASE, eLockWholeRange), eErrUnlock);
  EXPECT_EQ(third_.mLockCount, 0);
}

TEST_F(VirtualLock, SpreadsSharedHoldersOverTheRange) {
  constexpr std::uint32_t kOffsets[][2] = {{0, 0},     {1, 1},     {759, 759}, {760, 760},
                                           {761, 757}, {764, 760}, {767, 763}};
  for (const auto& [offset, byte] : kOffsets) {
    mine_.mLockOffset = offset;
    EXPECT_EQ(Lock(mine_, kNoWait, eLockSharedByte), eErrNone);
    EXPECT_EQ(position_, kBase + static_cast<std::int32_t>(byte)) << offset;
    EXPECT_EQ(mine_.VirtualLock(OZ_LOCK_RELEASE, &position_, eLockSharedByte), eErrNone);
  }
  for (std::uint32_t clock = 0; clock < 2000; ++clock) {
    host_.clock = clock;
    ASSERT_EQ(TestFile().mLockOffset, clock % 768);
  }
}

TEST_F(VirtualLock, TriesAndWaitsAsTheFlagsSay) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  // Without a wait the functor hears nothing; six tries have five delays between them.
  EXPECT_EQ(Delays([&] { EXPECT_EQ(Lock(mine_, kNoWait, eLockWholeRange), eErrLocked); }), 0);
  EXPECT_EQ(Delays([&] { EXPECT_EQ(Lock(mine_, kNoWait | kRetry, eLockWholeRange), eErrLocked); }),
            5);
  EXPECT_EQ(listener_.calls, "");

  // A wait: the second try comes at once, each later one after a delay.
  listener_.act_at = 4;
  listener_.act = [&] { EXPECT_EQ(Lock(other_, OZ_LOCK_RELEASE, eLockWholeRange), eErrNone); };
  listener_.calls.clear();
  host_.ticks = 0;
  std::int32_t position = kBase;
  EXPECT_EQ(mine_.VirtualLock(0, &position, eLockWholeRange), eErrNone);
  EXPECT_EQ(listener_.calls, "12.3.4!");
  EXPECT_EQ(mine_.VirtualLock(OZ_LOCK_RELEASE, &position, eLockWholeRange), eErrNone);

  // With retries, the first attempt alone has six tries.
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  listener_.calls.clear();
  position = kBase;
  EXPECT_EQ(mine_.VirtualLock(kRetry, &position, eLockWholeRange), eErrNone);
  EXPECT_EQ(listener_.calls.substr(listener_.calls.find('1')), "12.3.4!");
}

TEST_F(VirtualLock, EndsAWaitThroughTheFunctor) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  for (const eLockModes mode : {eLockSharedByte, eLockFixedByte, eLockWholeRange}) {
    listener_.calls.clear();
    listener_.act_at = 2;
    listener_.act = [&] { mine_.SetLockMode(OZ_LOCK_NOWAIT); };
    std::int32_t position = kBase;
    EXPECT_EQ(mine_.VirtualLock(0, &position, mode), eErrLocked);
    EXPECT_EQ(listener_.calls.back(), '!');
    EXPECT_EQ(mine_.mLockCount, 0);
    mine_.ClearLockMode();
  }
  listener_.act = [&] { mine_.CloseFile(); };
  std::int32_t position = kBase;
  EXPECT_EQ(mine_.VirtualLock(0, &position, eLockWholeRange), eErrLocked);
  EXPECT_EQ(mine_.VirtualLock(0, &position, eLockWholeRange), eErrNone);  // nothing done any more
}

TEST_F(VirtualLock, LooksOnThroughTheRangeAndNeverBeyond) {
  EXPECT_EQ(Lock(other_, 0, eLockFixedByte, kBase), eErrNone);
  EXPECT_EQ(Lock(mine_, kNoWait, eLockSharedByte), eErrLocked);  // one try, on a taken byte
  EXPECT_EQ(position_, kBase);
  EXPECT_EQ(Lock(mine_, kNoWait | kRetry, eLockSharedByte), eErrNone);
  EXPECT_EQ(position_, kBase + 1);
  EXPECT_EQ(mine_.VirtualLock(OZ_LOCK_RELEASE, &position_, eLockSharedByte), eErrNone);

  // Near the end of the range both kinds of try go back to its first byte.
  for (std::int32_t byte = 758; byte < 767; ++byte) {
    ASSERT_EQ(Lock(other_, kNoWait, eLockFixedByte, kBase + byte), eErrNone);
  }
  EXPECT_EQ(Lock(other_, OZ_LOCK_RELEASE, eLockFixedByte, kBase), eErrNone);
  mine_.mLockOffset = 767;  // begins with 763
  EXPECT_EQ(Lock(mine_, kRetry | kNoWait, eLockSharedByte), eErrNone);
  EXPECT_EQ(position_, kBase);
  EXPECT_EQ(mine_.VirtualLock(OZ_LOCK_RELEASE, &position_, eLockSharedByte), eErrNone);
  EXPECT_EQ(Lock(mine_, 0, eLockSharedByte), eErrNone);
  EXPECT_EQ(position_, kBase);
  EXPECT_EQ(listener_.calls.back(), '!');
}

TEST_F(VirtualLock, ProbesTenBytesAndKeepsNone) {
  EXPECT_EQ(Lock(mine_, 0, eLockSharedProbe), eErrNone);
  EXPECT_EQ(position_, kBase + 9);
  EXPECT_EQ(mine_.mLockCount, 0);
  ASSERT_EQ(Lock(other_, 0, eLockFixedByte, kBase + 4), eErrNone);
  EXPECT_EQ(Lock(mine_, 0, eLockSharedProbe), eErrLocked);
  EXPECT_EQ(position_, kBase + 4);
  EXPECT_EQ(mine_.mLockCount, 0);
  EXPECT_EQ(Delays([&] { EXPECT_EQ(Lock(mine_, kRetry, eLockSharedProbe), eErrNone); }), 1);
  EXPECT_EQ(position_, kBase + 10);
  EXPECT_EQ(mine_.mLockCount, 0);
  EXPECT_EQ(Lock(third_, kNoWait, eLockFixedByte, kBase + 10), eErrNone);  // all are free again
  EXPECT_EQ(Lock(mine_, OZ_LOCK_RELEASE, eLockSharedProbe), eErrUnlock);
  EXPECT_EQ(listener_.calls, "");
}

TEST_F(VirtualLock, GoesByTheStoredModeWhenItLocks) {
  unsigned mode = 0;
  mine_.GetLockMode(&mode);
  EXPECT_EQ(mode, 0xFFFF7FFFU);
  EXPECT_EQ(mine_.SetLockMode(0), eErrNone);
  mine_.GetLockMode(&mode);
  EXPECT_EQ(mode, 0x8000U);
  ASSERT_EQ(Lock(mine_, 0, eLockWholeRange), eErrNone);
  EXPECT_EQ(Lock(mine_, OZ_LOCK_RELEASE, eLockWholeRange), eErrNone);
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  mine_.SetLockMode(OZ_LOCK_NOWAIT);
  EXPECT_EQ(Lock(mine_, 0, eLockWholeRange), eErrLocked);
  mine_.ClearLockMode();
  mine_.GetLockMode(&mode);
  EXPECT_EQ(mode, OZ_LOCK_NONE);
}

TEST_F(VirtualLock, RefusesModesThatDoNotExist) {
  for (const int mode : {0, 6, -1, 1000}) {
    EXPECT_EQ(Lock(mine_, 0, static_cast<eLockModes>(mode)), eErrInvalidArgument) << mode;
    EXPECT_EQ(Lock(mine_, OZ_LOCK_RELEASE, static_cast<eLockModes>(mode)), eErrUnlock) << mode;
    std::int32_t position = kBase;
    EXPECT_EQ(mine_.locking(0, &position, 6, static_cast<eLockModes>(mode)), eErrInvalidArgument);
  }
  std::int32_t position = kBase;
  EXPECT_EQ(mine_.locking(0, &position, 6, eLockSharedProbe), eErrInvalidArgument);
  EXPECT_EQ(listener_.calls, "");
  mine_.ClearLockingSupported();
  EXPECT_EQ(Lock(mine_, 0, eLockSharedByte), eErrNone);
  EXPECT_EQ(position_, kBase);
  EXPECT_EQ(mine_.mLockCount, 0);
}

TEST_F(VirtualLock, ReleasesByTheBit) {
  mine_.mLockOffset = 7;
  for (const eLockModes mode : {eLockSharedByte, eLockSharedProbe}) {
    ASSERT_EQ(Lock(mine_, 0, eLockSharedByte), eErrNone);
    // Anything but exactly the release flag moves to the byte as a lock would, and releases it.
    EXPECT_EQ(Lock(mine_, OZ_LOCK_RELEASE | OZ_LOCK_RETRY, mode), eErrNone);
    EXPECT_EQ(position_, kBase + 7);
    EXPECT_EQ(mine_.mLockCount, 0);
  }
}

TEST_F(VirtualLock, RefusesALockThatItCouldNotCount) {
  mine_.mLockCount = 32767;
  EXPECT_EQ(mine_.LockBytes(0, 10, 5), eErrLocked);
  EXPECT_EQ(other_.LockBytes(0, 10, 5), eErrNone);
}

TEST_F(VirtualLock, TriesABoundedNumberOfTimesInLocking) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  const struct {
    short retries;
    eLockModes mode;
    int delays;
    std::int32_t moved;
  } kCases[] = {
      {0, eLockSharedByte, 0, 0},     {1, eLockSharedByte, 0, 0}, {-1, eLockSharedByte, 0, 0},
      {-32768, eLockFixedByte, 0, 0}, {2, eLockSharedByte, 1, 1}, {6, eLockSharedByte, 5, 5},
      {6, eLockFixedByte, 5, 0},      {6, eLockWholeRange, 5, 0},
  };
  for (const auto& c : kCases) {
    std::int32_t position = kBase;
    EXPECT_EQ(
        Delays([&] { EXPECT_EQ(mine_.locking(0, &position, c.retries, c.mode), eErrLocked); }),
        c.delays)
        << c.retries;
    EXPECT_EQ(position, kBase + c.moved) << c.retries;
  }
  std::int32_t position = kBase + 766;  // a direct call knows no end of the range
  EXPECT_EQ(mine_.locking(2, &position, 6, eLockSharedByte), eErrNone);
  EXPECT_EQ(position, kBase + 767);
  EXPECT_EQ(mine_.locking(1, &position, 0, eLockSharedByte), eErrNone);
}

TEST_F(VirtualLock, CountsTheLocksOfAnObject) {
  EXPECT_EQ(mine_.LockBytes(0, 10, 5), eErrNone);
  EXPECT_EQ(mine_.LockBytes(0, 20, 5), eErrNone);
  EXPECT_EQ(mine_.LockBytes(0, 22, 1), eErrLocked);  // its own range is taken, too
  EXPECT_EQ(mine_.LockBytes(1, 10, 4), eErrUnlock);  // only what was locked can be given back
  EXPECT_EQ(mine_.LockBytes(2, 10, 5), eErrInvalidArgument);
  EXPECT_EQ(mine_.mLockCount, 2);
  EXPECT_EQ(mine_.CloseFile(), eErrInvalidArgument);
  EXPECT_EQ(mine_.IsOpen(), 0);
  EXPECT_EQ(mine_.LockBytes(0, 10, 5), eErrLocked);
  EXPECT_EQ(mine_.LockBytes(1, 10, 5), eErrLocked);
  EXPECT_EQ(mine_.mLockCount, 0);
  EXPECT_EQ(other_.LockBytes(0, 10, 15), eErrNone);
}

TEST_F(VirtualLock, EndsADelayWhenTheTickCounterWraps) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  host_.ticks = 0xFFFFFFFFU - 15;
  std::int32_t position = kBase;
  EXPECT_EQ(mine_.locking(0, &position, 2, eLockWholeRange), eErrLocked);
  EXPECT_LT(host_.ticks, 100U);
}

}  // namespace
