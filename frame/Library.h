// The library's own `OZErrorInfo` record, and the library's strings.
#pragma once

#include "orzcore/frame.h"

namespace orzcore::frame {

/// The library's own record. The entry function fills it. The library's alerts change it: after the
/// first alert, only `mInstance` still has its value.
extern OZErrorInfo gLibraryErrorInfo;

// The ids of the strings that have a name in the code.
inline constexpr short kStringCompany = 2;    // the caption of an alert that has none
inline constexpr short kStringInUse = 6;      // the message for a file that others have open
inline constexpr short kStringCouldNot = 60;  // between the subject and the reason

/// Registers the library's string resources under the handle of a module.
void RegisterLibraryStrings(const void* module);

}  // namespace orzcore::frame
