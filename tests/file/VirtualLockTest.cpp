#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>
#include <string>

#include "support/FakeHost.h"
#include "support/TestFiles.h"

namespace {

constexpr std::int32_t kBase = 5000;
// The ticks of one delay: one reading of the counter at its start, and 51 until more than half a
// second has passed. Each reading adds 10.
constexpr std::uint32_t kDelay = 520;
constexpr unsigned kNoWait = OZ_LOCK_NOWAIT;
constexpr unsigned kRetry = OZ_LOCK_RETRY;

// Records its calls, and runs `act` at the refusal with the number `act_at`.
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

  std::string calls;  // the number of each attempt, after a dot for each delay; `!` for the end
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

  // A step: the user A, B or C; the flags (n for no wait, r for retries, x for a release, - for
  // none); the first letter of the mode; the position, counted from kBase, or "." for the user's
  // last position; the error; the position afterwards. "offset" sets the user's lock offset, and
  // "count" checks the number of his locks.
  void Follow(const char* steps) {
    const std::map<char, eLockModes> kModes = {{'s', eLockSharedByte},
                                               {'f', eLockFixedByte},
                                               {'a', eLockFixedByteAlt},
                                               {'w', eLockWholeRange},
                                               {'p', eLockSharedProbe}};
    TestFile* const files[] = {&mine_, &other_, &third_};
    std::int32_t positions[3] = {};
    std::istringstream words(steps);
    char user = '\0', mode = '\0';
    for (std::string flags, from, step; words >> user >> flags;) {
      TestFile& file = *files[user - 'A'];
      std::int32_t& position = positions[user - 'A'];
      int error = 0, number = 0;
      step = std::string(1, user) + ' ' + flags;
      if (flags == "offset") {
        words >> file.mLockOffset;
      } else if (flags == "count") {
        words >> number;
        EXPECT_EQ(file.mLockCount, number) << step;
      } else {
        ASSERT_TRUE(words >> mode >> from >> error >> number) << step;
        step += std::string(" ") + mode + ' ' + from;
        unsigned bits = flags.find('n') != flags.npos ? kNoWait : 0;
        if (flags.find('r') != flags.npos) bits |= kRetry;
        if (flags.find('x') != flags.npos) bits |= OZ_LOCK_RELEASE;
        if (from != ".") position = kBase + std::stoi(from);
        EXPECT_EQ(file.VirtualLock(bits, &position, kModes.at(mode)), error) << step;
        EXPECT_EQ(position - kBase, number) << step;
      }
    }
    EXPECT_TRUE(words.eof());
  }

  // Returns how many delays of half a second a call took.
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

TEST_F(VirtualLock, SharedLocksExcludeAWriterAndAWriterExcludesEverybody) {
  Follow(R"(
      A offset 100    B offset 700    A - s 0 0 100    B - s 0 0 700    C n w 0 203 0
      A x s . 0 100    C n w 0 203 0    B x s . 0 700    C n w 0 0 0    C count 1
      A offset 0 A n s 0 203 0    A offset 1 A n s 0 203 1    A offset 500 A n s 0 203 500
      A offset 760 A n s 0 203 760    A offset 767 A n s 0 203 763    A n f 766 203 766
      A n a 767 0 767    C x w 0 0 0    C x w 0 205 0    C count 0 )");
}

TEST_F(VirtualLock, SharedLocksAreSpreadOverTheRange) {
  Follow(R"(
      A offset 0 A n s 0 0 0 A x s . 0 0    A offset 1 A n s 0 0 1 A x s . 0 1
      A offset 759 A n s 0 0 759 A x s . 0 759    A offset 760 A n s 0 0 760 A x s . 0 760
      A offset 761 A n s 0 0 757 A x s . 0 757    A offset 764 A n s 0 0 760 A x s . 0 760
      A offset 767 A n s 0 0 763 A x s . 0 763 )");
  for (std::uint32_t clock = 0; clock < 2000; ++clock) {
    host_.clock = clock;
    ASSERT_EQ(TestFile().mLockOffset, clock % 768);
  }
}

TEST_F(VirtualLock, TriesAndWaitsAsTheFlagsSay) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  // Without a wait the functor is not called. Six tries have five delays between them.
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

TEST_F(VirtualLock, TheFunctorCanEndAWait) {
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
  EXPECT_EQ(mine_.VirtualLock(0, &position, eLockWholeRange), eErrNone);  // locks nothing
}

TEST_F(VirtualLock, SearchesForAFreeByteOnlyInsideTheRange) {
  // A search from offset 767 begins with byte 763. At the end of the range, both kinds of search go
  // back to its first byte.
  Follow(R"(
      B - f 0 0 0    A n s 0 203 0    A nr s 0 0 1    A x s . 0 1
      B n f 758 0 758    B n f 759 0 759    B n f 760 0 760    B n f 761 0 761    B n f 762 0 762
      B n f 763 0 763    B n f 764 0 764    B n f 765 0 765    B n f 766 0 766    B x f 0 0 0
      A offset 767    A nr s 0 0 0    A x s . 0 0    A - s 0 0 0 )");
  EXPECT_EQ(listener_.calls.back(), '!');
}

TEST_F(VirtualLock, ProbesTenBytesAndKeepsNone) {
  Follow("A - p 0 0 9  A count 0  B - f 4 0 4  A - p 0 203 4  A count 0 ");
  EXPECT_EQ(Delays([&] { EXPECT_EQ(Lock(mine_, kRetry, eLockSharedProbe), eErrNone); }), 1);
  EXPECT_EQ(position_, kBase + 10);
  Follow("A count 0  C n f 10 0 10  A x p 0 205 0 ");  // all are free again
  EXPECT_EQ(listener_.calls, "");
}

TEST_F(VirtualLock, ReleasesWheneverTheReleaseBitIsSet) {
  // With more flags than this bit, the position moves first, as for a lock, and that byte is
  // released.
  Follow("A offset 7  A - s 0 0 7  A xr s 0 0 7  A count 0  A - s 0 0 7  A xr p 0 0 7  A count 0 ");
}

TEST_F(VirtualLock, UsesTheStoredModeForALock) {
  const auto mode = [this] {
    unsigned stored = 0;
    EXPECT_EQ(mine_.GetLockMode(&stored), eErrNone);
    return stored;
  };
  EXPECT_EQ(mode(), 0xFFFF7FFFU);
  EXPECT_EQ(mine_.SetLockMode(0), eErrNone);
  EXPECT_EQ(mode(), 0x8000U);
  Follow("A - w 0 0 0  A x w 0 0 0  B - w 0 0 0 ");
  mine_.SetLockMode(OZ_LOCK_NOWAIT);
  Follow("A - w 0 203 0 ");
  EXPECT_EQ(mine_.ClearLockMode(), eErrNone);
  EXPECT_EQ(mode(), OZ_LOCK_NONE);
}

TEST_F(VirtualLock, RefusesModesThatDoNotExist) {
  std::int32_t position = kBase;
  for (const int number : {0, 6, -1, 1000}) {
    const auto mode = static_cast<eLockModes>(number);
    EXPECT_EQ(Lock(mine_, 0, mode), eErrInvalidArgument) << number;
    EXPECT_EQ(Lock(mine_, OZ_LOCK_RELEASE, mode), eErrUnlock) << number;
    EXPECT_EQ(mine_.locking(0, &position, 6, mode), eErrInvalidArgument);
  }
  EXPECT_EQ(mine_.locking(0, &position, 6, eLockSharedProbe), eErrInvalidArgument);
  EXPECT_EQ(listener_.calls, "");
  mine_.ClearLockingSupported();
  Follow("A - s 0 0 0  A count 0 ");
}

TEST_F(VirtualLock, LockingTriesTheGivenNumberOfTimes) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  constexpr struct {
    short retries;
    eLockModes mode;
    int delays, moved;
  } kCases[] = {{0, eLockSharedByte, 0, 0},     {1, eLockSharedByte, 0, 0},
                {-32768, eLockFixedByte, 0, 0}, {2, eLockSharedByte, 1, 1},
                {6, eLockSharedByte, 5, 5},     {6, eLockWholeRange, 5, 0}};
  for (const auto& c : kCases) {
    std::int32_t position = kBase;
    const auto lock = [&] { return mine_.locking(0, &position, c.retries, c.mode); };
    EXPECT_EQ(Delays([&] { EXPECT_EQ(lock(), eErrLocked); }), c.delays) << c.retries;
    EXPECT_EQ(position, kBase + c.moved) << c.retries;
  }
  std::int32_t position = kBase + 766;  // `locking` itself does not stop at the end of the range
  EXPECT_EQ(mine_.locking(2, &position, 6, eLockSharedByte), eErrNone);
  EXPECT_EQ(position, kBase + 767);
  EXPECT_EQ(mine_.locking(1, &position, 0, eLockSharedByte), eErrNone);
}

TEST_F(VirtualLock, CountsTheLocksOfAnObject) {
  // A row: mode (0 locks, 1 unlocks), offset, length, error. The object cannot lock a byte twice,
  // and only a whole locked range can be unlocked.
  constexpr short kSteps[][4] = {{0, 10, 5, eErrNone},
                                 {0, 20, 5, eErrNone},
                                 {0, 22, 1, eErrLocked},
                                 {1, 10, 4, eErrUnlock},
                                 {2, 10, 5, eErrInvalidArgument}};
  for (const auto& [mode, offset, length, error] : kSteps) {
    EXPECT_EQ(mine_.LockBytes(mode, offset, length), error) << mode << ' ' << offset;
  }
  EXPECT_EQ(mine_.mLockCount, 2);
  EXPECT_EQ(mine_.CloseFile(), eErrInvalidArgument);
  EXPECT_EQ(mine_.IsOpen(), 0);
  for (const short mode : {short{0}, short{1}}) EXPECT_EQ(mine_.LockBytes(mode, 10, 5), eErrLocked);
  EXPECT_EQ(mine_.mLockCount, 0);
  third_.mLockCount = 32767;  // the highest count
  EXPECT_EQ(third_.LockBytes(0, 10, 5), eErrLocked);
  EXPECT_EQ(other_.LockBytes(0, 10, 15), eErrNone);
}

TEST_F(VirtualLock, ADelayEndsWhenTheTickCounterWraps) {
  ASSERT_EQ(Lock(other_, 0, eLockWholeRange), eErrNone);
  host_.ticks = 0xFFFFFFFFU - 15;
  std::int32_t position = kBase;
  EXPECT_EQ(mine_.locking(0, &position, 2, eLockWholeRange), eErrLocked);
  EXPECT_LT(host_.ticks, 100U);
}

}  // namespace
