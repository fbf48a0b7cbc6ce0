#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

#include "orzcore/feedback.h"

namespace {

// Records every call of the derived class, and stops the task at the calls in `stops`.
class Recorder : public OZTaskFeedbackProtocol {
 public:
  explicit Recorder(int user_input_enabled = 1) : OZTaskFeedbackProtocol(user_input_enabled, 7) {}
  int InitializeFeedback() override { return Note("init"); }
  void FinishFeedback() override { Note("finish"); }
  int TrackPhase(const char* text, short number, short value) override {
    return Note("phase", std::string(" ") + text + ' ' + std::to_string(number) + ' ' +
                             std::to_string(value));
  }
  int TrackCycle(std::int32_t first, std::int32_t second) override {
    return Note("cycle", ' ' + std::to_string(first) + ' ' + std::to_string(second));
  }
  int TrackUserInput() override { return Note("input"); }

  void IgnoreUser() { mUserInputActive = 0; }
  int Derived() const { return mDerivedValue; }
  int Depth() const { return mStartDepth; }

  // Returns the calls since the last `Calls`.
  std::string Calls() { return std::exchange(calls_, ""); }
  std::map<std::string, int> stops;

 private:
  int Note(const std::string& call, const std::string& arguments = "") {
    calls_ += call + arguments + "; ";
    return stops.count(call) != 0 ? stops[call] : 0;
  }
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
  EXPECT_EQ(task.Calls(), "");
  EXPECT_EQ(task.Start() | task.Start(), 0);
  EXPECT_EQ(task.Calls(), "init; ");
  EXPECT_EQ(task.Phase("a", 5), 0);
  EXPECT_EQ(task.Phase("b", -6), 0);
  EXPECT_EQ(task.Cycle(1, 2147483647), 0);
  EXPECT_EQ(task.Calls(), "phase a 1 5; input; phase b 2 -6; input; cycle 1 2147483647; input; ");
  task.Finish();
  EXPECT_EQ(task.Calls(), "");
  task.Finish();
  EXPECT_EQ(task.Calls(), "finish; ");
  EXPECT_EQ(task.Phase("c", 0), 0);  // calls Start, and numbers phases from 1 again
  EXPECT_EQ(task.Calls(), "init; phase c 1 0; input; ");
  EXPECT_EQ(task.Derived(), 7);
}

TEST(TaskFeedback, AStopEndsOneLevel) {
  constexpr struct {
    const char *at, *phase_calls, *cycle_calls;
  } kCases[] = {
      {"init", "init; finish; ", "init; finish; "},
      {"phase", "init; phase p 1 0; finish; ", "init; cycle 1 2; input; "},
      {"cycle", "init; phase p 1 0; input; ", "init; cycle 1 2; finish; "},
      {"input", "init; phase p 1 0; input; finish; ", "init; cycle 1 2; input; finish; "},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.at);
    Recorder task;
    task.stops[c.at] = 42;
    EXPECT_EQ(task.Phase("p", 0), std::string(c.at) == "cycle" ? 0 : 42);
    EXPECT_EQ(task.Calls(), c.phase_calls);
    if (task.Depth() > 0) task.Finish();
    task.Calls();
    EXPECT_EQ(task.Cycle(1, 2), std::string(c.at) == "phase" ? 0 : 42);
    EXPECT_EQ(task.Calls(), c.cycle_calls);
  }
  Recorder nested;
  nested.stops["cycle"] = -1;
  nested.Start();
  nested.Start();
  EXPECT_EQ(nested.Cycle(0, 0), -1);
  EXPECT_EQ(nested.Calls(), "init; cycle 0 0; ");
  nested.Finish();
  EXPECT_EQ(nested.Calls(), "finish; ");
  Recorder refused;
  refused.stops["init"] = 9;
  EXPECT_EQ(refused.Start(), 9);
  EXPECT_EQ(refused.Depth(), 1);  // a Start that is stopped opens its level all the same
}

TEST(TaskFeedback, ChecksForUserInputOnlyIfBothFlagsAreSet) {
  Recorder deaf(0);
  deaf.Cycle(1, 2);
  EXPECT_EQ(deaf.Calls(), "init; cycle 1 2; ");
  Recorder task;
  task.Start();
  task.IgnoreUser();
  task.Cycle(1, 2);
  task.Phase("p", 3);
  EXPECT_EQ(task.Calls(), "init; cycle 1 2; phase p 1 3; ");
  task.Finish();
  task.Cycle(1, 2);  // the next outermost Start switches it on again
  EXPECT_EQ(task.Calls(), "finish; init; cycle 1 2; input; ");
}

}  // namespace
