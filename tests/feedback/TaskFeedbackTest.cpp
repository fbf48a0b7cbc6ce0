#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "orzcore/feedback.h"

namespace {

// Records every call of the derived class, and stops the task at the calls named `stop`.
class Recorder : public OZTaskFeedbackProtocol {
 public:
  explicit Recorder(std::string stop = "", int user_input_enabled = 1)
      : OZTaskFeedbackProtocol(user_input_enabled, 7), stop_(std::move(stop)) {}
  int InitializeFeedback() override { return Note("init"); }
  void FinishFeedback() override { Note("finish"); }
  int TrackPhase(const char* text, short number, short value) override {
    return Note("phase", text + (' ' + std::to_string(number)) + ' ' + std::to_string(value) + ' ');
  }
  int TrackCycle(std::int32_t first, std::int32_t second) override {
    return Note("cycle", std::to_string(first) + ' ' + std::to_string(second) + ' ');
  }
  int TrackUserInput() override { return Note("input"); }

  // Returns the calls since the last `Calls`.
  std::string Calls() { return std::exchange(calls_, ""); }

  using OZTaskFeedbackProtocol::mDerivedValue;
  using OZTaskFeedbackProtocol::mStartDepth;
  using OZTaskFeedbackProtocol::mUserInputActive;

 private:
  int Note(const std::string& call, const std::string& arguments = "") {
    calls_ += call + ' ' + arguments;
    return call == stop_ ? 42 : 0;
  }
  std::string stop_;
  std::string calls_;
};

TEST(TaskFeedback, DoesNothingByItself) {
  OZTaskFeedbackProtocol task(1, 0);
  EXPECT_EQ(task.Phase("text", 1), 0);
  EXPECT_EQ(task.Cycle(1, 2), 0);
  task.Finish();
  task.Finish();
  EXPECT_EQ(task.Start(), 0);
}

TEST(TaskFeedback, InitializesAndFinishesOnlyTheOutermostLevel) {
  Recorder task;
  task.Finish();
  EXPECT_EQ(task.Start() | task.Start(), 0);
  EXPECT_EQ(task.Phase("a", 5) | task.Phase("b", -6) | task.Cycle(1, 2147483647), 0);
  task.Finish();
  EXPECT_EQ(task.Calls(), "init phase a 1 5 input phase b 2 -6 input cycle 1 2147483647 input ");
  task.Finish();
  EXPECT_EQ(task.Calls(), "finish ");
  EXPECT_EQ(task.Phase("c", 0), 0);  // calls Start, and numbers phases from 1 again
  EXPECT_EQ(task.Calls(), "init phase c 1 0 input ");
  EXPECT_EQ(task.mDerivedValue, 7);
}

TEST(TaskFeedback, AStopEndsOneLevel) {
  constexpr struct {
    const char* stop;
    int depth;  // before the call: so many calls of `Start`
    int phase, cycle;
    const char *phase_calls, *cycle_calls;
  } kRows[] = {
      {"init", 0, 42, 42, "init finish ", "init finish "},
      {"phase", 0, 42, 0, "init phase p 1 0 finish ", "init cycle 1 2 input "},
      {"cycle", 0, 0, 42, "init phase p 1 0 input ", "init cycle 1 2 finish "},
      {"input", 0, 42, 42, "init phase p 1 0 input finish ", "init cycle 1 2 input finish "},
      {"cycle", 2, 0, 42, "init phase p 1 0 input ", "init cycle 1 2 "},
      {"phase", 2, 42, 0, "init phase p 1 0 ", "init cycle 1 2 input "},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.stop << " at depth " << row.depth);
    Recorder for_phase(row.stop), for_cycle(row.stop);
    for (Recorder* task : {&for_phase, &for_cycle}) {
      for (int i = 0; i < row.depth; ++i) EXPECT_EQ(task->Start(), 0);
    }
    EXPECT_EQ(for_phase.Phase("p", 0), row.phase);
    EXPECT_EQ(for_phase.Calls(), row.phase_calls);
    EXPECT_EQ(for_cycle.Cycle(1, 2), row.cycle);
    EXPECT_EQ(for_cycle.Calls(), row.cycle_calls);
  }
  Recorder refused("init");
  EXPECT_EQ(refused.Start(), 42);
  EXPECT_EQ(refused.mStartDepth, 1);  // a Start that is stopped opens its level all the same
}

TEST(TaskFeedback, ChecksForUserInputOnlyIfBothFlagsAreSet) {
  Recorder deaf("", 0);
  deaf.Cycle(1, 2);
  EXPECT_EQ(deaf.Calls(), "init cycle 1 2 ");
  Recorder task;
  task.Start();
  task.mUserInputActive = 0;
  task.Cycle(1, 2);
  task.Phase("p", 3);
  task.Finish();
  task.Cycle(1, 2);  // the next outermost Start switches it on again
  EXPECT_EQ(task.Calls(), "init cycle 1 2 phase p 1 3 finish init cycle 1 2 input ");
}

}  // namespace
