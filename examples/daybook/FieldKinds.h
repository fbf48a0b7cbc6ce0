// The kinds of entry field that daybook knows, and what each makes of a text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Options.h"

/// What a field made of an accepted text.
struct Reading {
  std::string result;   ///< the kind of result
  std::string value;    ///< the value as it is held
  std::string display;  ///< the value as it is shown, or empty if there is nothing to add
};

/// One kind of entry field.
struct FieldKind {
  std::string name;
  std::string accepts;  ///< some texts that it accepts
  /// Returns nothing for a rejected text.
  std::optional<Reading> (*read)(const char* text, const Options& options);
};

extern const std::vector<FieldKind> kFieldKinds;
