// The library's own record, and the strings that it leads to.
#pragma once

#include "orzcore/frame.h"

namespace orzcore::frame {

/// The library's own record. The entry function fills it. Alerts of the library write into it:
/// after the first alert only `mInstance` is reliable.
extern OZErrorInfo gLibraryErrorInfo;

// The strings that the code uses by name.
inline constexpr short kStringCompany = 2;    // the caption of an alert that has none
inline constexpr short kStringInUse = 6;      // the message for a file that others have open
inline constexpr short kStringCouldNot = 60;  // stands between the subject and the reason

/// Registers the library's string resources under the handle of a module.
void RegisterLibraryStrings(const void* module);

}  // namespace orzcore::frame
