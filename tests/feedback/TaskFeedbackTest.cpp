// Checks the table of docs/guide/feedback.md, which shows what calls what.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "orzcore/feedback.h"
#include "support/PageTables.h"

namespace {

using Base = OZTaskFeedbackProtocol;

// Records every call of the derived class. The operation that the cell `stop` names returns 42.
struct Recorder : Base {
  explicit Recorder(std::string the_stop) : Base(1, 7), stop(std::move(the_stop)) {}
  int InitializeFeedback() override {
    phases = 0;
    return Note("InitializeFeedback") + Base::InitializeFeedback();
  }
  void FinishFeedback() override { Note("FinishFeedback"); }
  int TrackPhase(const char* text, short number, short value) override {
    EXPECT_STREQ(text, "text");
    EXPECT_EQ(value, -6);
    EXPECT_EQ(number, ++phases);
    return Note("TrackPhase") + Base::TrackPhase(text, number, value);
  }
  int TrackCycle(std::int32_t first, std::int32_t second) override {
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2147483647);
    return Note("TrackCycle") + Base::TrackCycle(first, second);
  }
  int TrackUserInput() override { return Note("TrackUserInput") + Base::TrackUserInput(); }

  int Note(const std::string& call) {
    calls.push_back(call);
    return stop == '`' + call + '`' ? 42 : 0;
  }
  using Base::mDerivedValue;
  using Base::mUserInputActive;
  using Base::mUserInputEnabled;
  const std::string stop;
  int phases = 0;
  std::vector<std::string> calls;
};

// What the task calls; the result is that of the call.
const std::map<std::string, int (*)(Recorder& it)> kCalls = {
    {"Start", [](Recorder& it) { return it.Start(); }},
    {"Phase", [](Recorder& it) { return it.Phase("text", -6); }},
    {"Cycle", [](Recorder& it) { return it.Cycle(1, 2147483647); }},
    {"Finish", [](Recorder& it) { return it.Finish(), 0; }},
    {"mUserInputEnabled = 0", [](Recorder& it) { return it.mUserInputEnabled = 0; }},
    {"mUserInputActive = 0", [](Recorder& it) { return it.mUserInputActive = 0; }},
};

TEST(TaskFeedback, CallsWhatThePageShows) {
  for (const PageRow& row : RowsUnder(
           "guide/feedback.md",
           {"The task", "Stop by", "Result", "Operations of the derived class that are called"})) {
    SCOPED_TRACE(row.place);
    Recorder it(row.cells[1]);
    int result = 0;
    for (const std::string& call : CodeIn(row.cells[0])) {
      ASSERT_TRUE(kCalls.contains(call)) << call;
      result = kCalls.at(call)(it);
    }
    EXPECT_EQ(std::to_string(result), row.cells[2]);
    EXPECT_EQ(it.calls, CodeIn(row.cells[3]));
    EXPECT_EQ(it.mDerivedValue, 7);
  }
}

}  // namespace
