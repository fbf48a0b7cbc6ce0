/// @file
/// The protocol by which a long task reports its progress and can be stopped.
#pragma once

#include <cstdint>

#include "orzcore/export.h"

/// The base class for reporting the progress of a long task.
///
/// The task calls `Start`, `Phase`, `Cycle` and `Finish`. A derived class overrides the virtual
/// operations to show the progress and to watch for the user's input; those of this class do
/// nothing. Except for `FinishFeedback`, each of them can stop the task by returning a value other
/// than 0, which the task receives unchanged.
///
/// `Start` and `Finish` nest, and only the outermost level reaches the user. A task calls `Finish`
/// once for each `Start` that it made or that its first `Phase` or `Cycle` made for it, unless a
/// stop has used up that level already. Every call reaches the derived class: one that finds this
/// too often limits the rate itself.
///
/// There is no virtual destructor: an object is not deleted through a pointer to this class.
class ORZCORE_API OZTaskFeedbackProtocol {
 public:
  /// @param user_input_enabled  if 0, `TrackUserInput` is never called
  /// @param derived_value       for the derived class; not read here
  OZTaskFeedbackProtocol(std::int32_t user_input_enabled, std::int32_t derived_value);

  /// Begins the outermost level. Not 0 stops the task.
  virtual int InitializeFeedback();

  /// Ends the outermost level.
  virtual void FinishFeedback();

  /// Shows a phase. Not 0 stops the task.
  ///
  /// @param text    of the task; passed through
  /// @param number  of the phase in this task, from 1
  /// @param value   of the task; passed through
  virtual int TrackPhase(const char* text, short number, short value);

  /// Shows the progress within a phase; both numbers are the task's, and passed through. Not 0
  /// stops the task.
  virtual int TrackCycle(std::int32_t first, std::int32_t second);

  /// Looks for the user's input. Not 0 stops the task.
  virtual int TrackUserInput();

  /// Opens a level.
  ///
  /// @return 0; or a stop from `InitializeFeedback`, after which the level is open all the same
  int Start();

  /// Reports the next phase, after a `Start` if no level is open.
  ///
  /// @return 0; or a stop, which has closed one level
  int Phase(const char* text, short value);

  /// Reports progress within a phase, after a `Start` if no level is open.
  ///
  /// @return 0; or a stop, which has closed one level
  int Cycle(std::int32_t first, std::int32_t second);

  /// Closes a level. It does nothing if none is open.
  void Finish();

 protected:
  std::int32_t mUserInputEnabled;  ///< if 0, `TrackUserInput` is never called
  std::int32_t mDerivedValue;      ///< for the derived class
  std::int32_t mUserInputActive =
      0;                   ///< set by the outermost `Start`; a derived class may clear it
  short mStartDepth = 0;   ///< how many levels are open
  short mPhaseNumber = 0;  ///< of the phase reported last, 0 before the first
};
