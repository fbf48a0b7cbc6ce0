/// @file
/// The macros that mark what the library exports. The shared library hides everything else.
#pragma once

/// Marks a class or a function that the library exports.
#define ORZCORE_API __attribute__((visibility("default")))

/// Marks a member of an exported class that is not exported.
#define ORZCORE_LOCAL __attribute__((visibility("hidden")))
