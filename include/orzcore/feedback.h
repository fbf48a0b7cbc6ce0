/// @file
/// How a long task reports its progress, and how the user stops it.
#pragma once

#include <cstdint>

#include "orzcore/export.h"

/// The base class for reporting the progress of a long task.
///
/// The task calls `Start`, `Phase`, `Cycle` and `Finish`. These call the virtual operations, which
/// a derived class overrides to show the progress and to look for the user's input. By default the
/// virtual operations do nothing and return 0. Each of them except `FinishFeedback` can stop the
/// task by returning another number. Such a number is called a *stop*, and the task receives it
/// unchanged.
///
/// Levels nest: `Start` opens a level and `Finish` closes it. Only the outermost level calls
/// `InitializeFeedback` and `FinishFeedback`. `Phase` and `Cycle` open a level if none is open. The
/// task must close each level by `Finish`, with one exception: if `Phase` or `Cycle` returns a
/// stop, it has already closed one level.
///
/// Every `Phase` and every `Cycle` calls the derived class. If that is too often, the derived class
/// must skip calls itself.
class ORZCORE_API OZTaskFeedbackProtocol {
 public:
  /// @param user_input_enabled  if 0, `TrackUserInput` is never called
  /// @param derived_value       any number for the derived class; this class does not use it
  OZTaskFeedbackProtocol(std::int32_t user_input_enabled, std::int32_t derived_value);

  /// Called when the outermost level begins.
  ///
  /// @return 0, or a stop
  virtual int InitializeFeedback();

  /// Called when the outermost level ends.
  virtual void FinishFeedback();

  /// Called when a phase of the task begins.
  ///
  /// @param text    the text that the task passed to `Phase`
  /// @param number  the number of the phase: 1 for the first phase after the outermost `Start`
  /// @param value   the value that the task passed to `Phase`
  /// @return 0, or a stop
  virtual int TrackPhase(const char* text, short number, short value);

  /// Called when the task has made progress within a phase. Both numbers are those that the task
  /// passed to `Cycle`.
  ///
  /// @return 0, or a stop
  virtual int TrackCycle(std::int32_t first, std::int32_t second);

  /// Checks for the user's input. Called after `TrackPhase` and `TrackCycle`, except after a stop.
  ///
  /// @return 0, or a stop
  virtual int TrackUserInput();

  // The last in the virtual table, so that the places of the others stay as they were.
  virtual ~OZTaskFeedbackProtocol();

  /// Opens a level.
  ///
  /// @return 0, or a stop of `InitializeFeedback`. The level is open in both cases.
  int Start();

  /// Reports that the next phase begins. If no level is open, it calls `Start` first.
  ///
  /// @param text   a text for `TrackPhase`
  /// @param value  a number for `TrackPhase`
  /// @return 0, or a stop. A stop has closed one level.
  int Phase(const char* text, short value);

  /// Reports progress within a phase. If no level is open, it calls `Start` first.
  ///
  /// @param first   a number for `TrackCycle`, such as how much is done
  /// @param second  a number for `TrackCycle`, such as the total
  /// @return 0, or a stop. A stop has closed one level.
  int Cycle(std::int32_t first, std::int32_t second);

  /// Closes a level. If none is open, it does nothing.
  void Finish();

 protected:
  std::int32_t mUserInputEnabled;  ///< if 0, `TrackUserInput` is never called
  std::int32_t mDerivedValue;      ///< for the derived class

  /// The outermost `Start` sets it to 1. If a derived class sets it to 0, `TrackUserInput` is not
  /// called until the next outermost `Start`.
  std::int32_t mUserInputActive = 0;

  short mStartDepth = 0;   ///< how many levels are open
  short mPhaseNumber = 0;  ///< the number of the last phase; 0 before the first one
};
