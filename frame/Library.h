// The library's own record, through which it reaches its own string resources.
#pragma once

#include "orzcore/frame.h"

/// Filled by the entry function. Alerts of the library write into it, so that no field but
/// `mInstance` may be relied on after the first one.
extern OZErrorInfo gLibraryErrorInfo;

// The strings that the library looks up by name.
inline constexpr short kStringCompany = 2;    // the caption of alerts
inline constexpr short kStringInUse = 6;      // a file that others have open
inline constexpr short kStringCouldNot = 60;  // joins the subject and the reason of a failure

/// Makes the library's string resources known under a module handle.
void RegisterLibraryStrings(const void* module);
