// Reporting the progress of a long task.
#include "orzcore/feedback.h"

OZTaskFeedbackProtocol::OZTaskFeedbackProtocol(std::int32_t user_input_enabled,
                                               std::int32_t derived_value)
    : mUserInputEnabled(user_input_enabled), mDerivedValue(derived_value) {}

int OZTaskFeedbackProtocol::InitializeFeedback() { return 0; }
void OZTaskFeedbackProtocol::FinishFeedback() {}
int OZTaskFeedbackProtocol::TrackPhase(const char* /*text*/, short /*number*/, short /*value*/) {
  return 0;
}
int OZTaskFeedbackProtocol::TrackCycle(std::int32_t /*first*/, std::int32_t /*second*/) {
  return 0;
}
int OZTaskFeedbackProtocol::TrackUserInput() { return 0; }
OZTaskFeedbackProtocol::~OZTaskFeedbackProtocol() = default;

int OZTaskFeedbackProtocol::Start() {
  const bool outermost = mStartDepth == 0;
  ++mStartDepth;
  if (!outermost) return 0;
  mUserInputActive = 1;
  mPhaseNumber = 0;
  return InitializeFeedback();
}

int OZTaskFeedbackProtocol::Phase(const char* text, short value) {
  int result = mStartDepth == 0 ? Start() : 0;
  if (result == 0) {
    ++mPhaseNumber;
    result = TrackPhase(text, mPhaseNumber, value);
  }
  const bool listens = mUserInputEnabled != 0 && mUserInputActive != 0;
  if (result == 0 && listens) result = TrackUserInput();
  if (result != 0) Finish();
  return result;
}

int OZTaskFeedbackProtocol::Cycle(std::int32_t first, std::int32_t second) {
  int result = mStartDepth == 0 ? Start() : 0;
  if (result == 0) result = TrackCycle(first, second);
  const bool listens = mUserInputEnabled != 0 && mUserInputActive != 0;
  if (result == 0 && listens) result = TrackUserInput();
  if (result != 0) Finish();
  return result;
}

void OZTaskFeedbackProtocol::Finish() {
  if (mStartDepth == 0) return;
  --mStartDepth;
  if (mStartDepth == 0) FinishFeedback();
}
