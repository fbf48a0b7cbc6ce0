#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "file/FileTest.h"
#include "support/PageTables.h"

namespace {

constexpr std::int32_t kBase = 5000;
// The ticks of one delay: one reading of the counter at its start, and 51 until more than half a
// second has passed. Each reading adds 10.
constexpr std::uint32_t kDelay = 520;

// A call of the functor: the number of the attempt, and the delays since the call before.
using Notice = std::pair<std::int32_t, int>;
constexpr std::int32_t kWaitIsOver = 0;

// The functor of A is the fixture, which acts at one of the attempts.
class VirtualLock : public FileTest, public OZLockFailureCallbacks {
 protected:
  VirtualLock() {
    for (TestFile* file : {&a_, &b_, &c_}) Make(*file, "file", "");
    a_.mLockOffset = 0;
    b_.mLockOffset = 100;
    c_.mLockOffset = 767;
    a_.SetLockFailureCallbackFunctor(this);
  }

  static OZError Lock(TestFile& user, unsigned flags, eLockModes mode) {
    std::int32_t position = kBase;
    return user.VirtualLock(flags, &position, mode);
  }

  void NotifyLockBlocked(std::int32_t attempt) override {
    notices_.emplace_back(attempt, TakeDelays());
    if (attempt == act_at_) act_();
  }
  void NotifyLockWaitOver() override { notices_.emplace_back(kWaitIsOver, TakeDelays()); }

  // Returns how many delays of half a second there were since the last call.
  int TakeDelays() {
    const std::uint32_t ticks = std::exchange(host_.ticks, 0);
    EXPECT_EQ(ticks % kDelay, 0U);
    return static_cast<int>(ticks / kDelay);
  }

  std::vector<Notice> notices_;
  std::int32_t act_at_ = 0;
  std::function<void()> act_;
};

TEST_F(VirtualLock, DoesWhatThePageSays) {
  const std::map<std::string, eLockModes> kModes = {{"`eLockSharedByte`", eLockSharedByte},
                                                    {"`eLockFixedByte`", eLockFixedByte},
                                                    {"`eLockWholeRange`", eLockWholeRange},
                                                    {"`eLockFixedByteAlt`", eLockFixedByteAlt},
                                                    {"`eLockSharedProbe`", eLockSharedProbe}};
  const std::map<std::string, unsigned> kFlags = {
      {"try", OZ_LOCK_NOWAIT},
      {"retry", OZ_LOCK_NOWAIT | OZ_LOCK_RETRY},
      {"release", OZ_LOCK_RELEASE},
      {"release, retry", OZ_LOCK_RELEASE | OZ_LOCK_RETRY}};
  for (const PageRow& row : RowsUnder("guide/file.md", {"User", "Call", "Mode", "Position",
                                                        "Result", "New position", "Seconds"})) {
    SCOPED_TRACE(row.place);
    TestFile& user = *users_.at(row.cells[0]);
    const auto known = kModes.find(row.cells[2]);
    const eLockModes mode =
        known != kModes.end() ? known->second : static_cast<eLockModes>(std::stoi(row.cells[2]));
    std::int32_t position = kBase + std::stoi(row.cells[3]);
    const auto flags = kFlags.find(row.cells[1]);
    const OZError error = flags != kFlags.end()
                              ? user.VirtualLock(flags->second, &position, mode)
                              : user.locking(OZ_BYTES_LOCK, &position,
                                             static_cast<short>(std::stoi(row.cells[1])), mode);
    EXPECT_EQ(error, std::stoi(row.cells[4]));
    EXPECT_EQ(position - kBase, std::stoi(row.cells[5]));
    EXPECT_EQ(TakeDelays() / 2.0, std::stod(row.cells[6]));
  }
  EXPECT_EQ(a_.mLockCount + c_.mLockCount, 0);
  EXPECT_EQ(b_.mLockCount, 5);
  EXPECT_TRUE(notices_.empty());
  c_.mLockCount = 32767;  // the highest count
  EXPECT_EQ(c_.LockBytes(OZ_BYTES_LOCK, 10, 5), eErrLocked);
}

TEST_F(VirtualLock, BeginsAtAByteThatTheClockChooses) {
  constexpr std::pair<std::uint32_t, int> kBytes[] = {{0, 0},     {1, 1},   {760, 760}, {761, 757},
                                                      {767, 763}, {768, 0}, {2303, 763}};
  for (const auto& [clock, byte] : kBytes) {
    host_.clock = clock;
    TestFile file;
    Make(file, "file", "");
    std::int32_t position = kBase;
    EXPECT_EQ(file.VirtualLock(0, &position, eLockSharedByte), eErrNone);
    EXPECT_EQ(position - kBase, byte) << clock;
  }
}

TEST_F(VirtualLock, WaitsAndCallsTheFunctor) {
  act_at_ = 4;
  act_ = [&] { Lock(b_, OZ_LOCK_RELEASE, eLockWholeRange); };
  // With retries, the first attempt has six tries, which have five delays between them.
  for (const unsigned flags : {0U, OZ_LOCK_RETRY}) {
    ASSERT_EQ(Lock(b_, 0, eLockWholeRange), eErrNone);
    notices_.clear();
    EXPECT_EQ(Lock(a_, flags, eLockWholeRange), eErrNone);
    const int delays = flags == OZ_LOCK_RETRY ? 5 : 0;
    EXPECT_EQ(notices_,
              (std::vector<Notice>{{1, delays}, {2, 0}, {3, 1}, {4, 1}, {kWaitIsOver, 1}}));
    EXPECT_EQ(Lock(a_, OZ_LOCK_RELEASE, eLockWholeRange), eErrNone);
  }
  // A wait for a shared byte goes back to the first byte of the range, too.
  ASSERT_EQ(b_.LockBytes(OZ_BYTES_LOCK, kBase + 760, 10), eErrNone);
  a_.mLockOffset = 767;
  std::int32_t position = kBase;
  EXPECT_EQ(a_.VirtualLock(0, &position, eLockSharedByte), eErrNone);
  EXPECT_EQ(position, kBase);
}

TEST_F(VirtualLock, TheFunctorCanEndAWait) {
  ASSERT_EQ(Lock(b_, 0, eLockWholeRange), eErrNone);
  act_at_ = 2;
  act_ = [&] { a_.SetLockMode(OZ_LOCK_NOWAIT); };
  for (const eLockModes mode : {eLockSharedByte, eLockFixedByte, eLockWholeRange}) {
    EXPECT_EQ(Lock(a_, 0, mode), eErrLocked);
    EXPECT_EQ(std::exchange(notices_, {}).back().first, kWaitIsOver);
    EXPECT_EQ(Lock(a_, 0, mode), eErrLocked);
    EXPECT_TRUE(notices_.empty());  // the stored mode does not wait
    a_.ClearLockMode();
  }
  act_ = [&] { a_.CloseFile(); };
  EXPECT_EQ(Lock(a_, 0, eLockWholeRange), eErrLocked);
  EXPECT_EQ(Lock(a_, 0, eLockWholeRange), eErrNone);  // a closed object locks nothing
  host_.ticks = 0xFFFFFFFFU - 15;                     // a delay ends when the counter wraps
  EXPECT_EQ(Lock(c_, OZ_LOCK_NOWAIT | OZ_LOCK_RETRY, eLockWholeRange), eErrLocked);
  EXPECT_LT(host_.ticks, 5 * kDelay);
}

}  // namespace
