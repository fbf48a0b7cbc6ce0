/// @file
/// The marks for what the library exports. The shared library hides everything without a mark.
#pragma once

/// Marks what is exported.
#define ORZCORE_API __attribute__((visibility("default")))

/// Marks a member of an exported class that is not exported.
#define ORZCORE_LOCAL __attribute__((visibility("hidden")))
