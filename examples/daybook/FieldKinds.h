// The kinds of entry field that daybook knows, and what each makes of a text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orzcore/parser.h"
#include "terminal/Options.h"

/// What a field made of an accepted text.
struct Reading {
  std::string result;   ///< the kind of result
  std::string value;    ///< the value as it is held
  std::string display;  ///< the value as it is shown, or empty if there is nothing to add
};

/// One kind of entry field.
struct FieldKind {
  std::string name;
  std::string accepts;                         ///< some texts that it accepts
  std::optional<OZParser::eEditType> type;     ///< nothing for the priority
  const stCurrencyFormat* currency = nullptr;  ///< for amounts of money

  /// Returns nothing for a rejected text.
  std::optional<Reading> Read(const std::string& text, const Options& options) const;
};

extern const std::vector<FieldKind> kFieldKinds;

/// The kind with a name. Throws `UsageError` if there is none.
const FieldKind& FindFieldKind(const std::string& name);

/// The date that a text names, with the time of `reference`, from which a signed interval counts.
/// Throws `Rejection`.
un_date_time ReadDate(const std::string& text, const un_date_time& reference,
                      const Options& options);
