// The kinds of entry field, and how each of them reads a text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "terminal/Settings.h"

/// How a field reads a text that it accepts.
struct Reading {
  std::string result;   ///< the kind of result
  std::string value;    ///< the value as it is stored
  std::string display;  ///< the value as it is shown; empty if that is the same
};

/// One kind of entry field.
struct FieldKind {
  std::string name;
  std::string accepts;                         ///< examples of texts that it accepts
  std::optional<OZParser::eEditType> type;     ///< none for the priority
  const stCurrencyFormat* currency = nullptr;  ///< for amounts of money

  /// Returns nothing if the field rejects the text.
  std::optional<Reading> Read(const std::string& text, const Settings& settings) const;
};

extern const std::vector<FieldKind> kFieldKinds;

/// Returns the kind with this name. Throws `UsageError` if there is none.
const FieldKind& FindFieldKind(const std::string& name);

/// Reads a date. Throws `Rejection` if the text is not a date, or means none.
///
/// @param reference  a signed interval such as "+3 d" counts from it; the result has its time
un_date_time ReadDate(const std::string& text, const un_date_time& reference,
                      const Settings& settings);
