/// @file
/// The mark of everything that the library exports; all else stays hidden in the shared library.
#pragma once

#define ORZCORE_API __attribute__((visibility("default")))

// The mark of a member of an exported class that is not exported itself.
#define ORZCORE_LOCAL __attribute__((visibility("hidden")))
