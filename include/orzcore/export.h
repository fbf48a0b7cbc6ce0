/// @file
/// The macros that mark what the library exports. The shared library hides everything else.
#pragma once
#if __cplusplus < 202002L
#error "orzcore needs C++20: compile with -std=c++20"
#endif

#if !defined(_WIN32)
/// Marks a class or a function that the library exports.
#define ORZCORE_API __attribute__((visibility("default")))
/// Marks a member of an exported class that is not exported.
#define ORZCORE_LOCAL __attribute__((visibility("hidden")))
#elif defined(ORZCORE_STATIC)  // the static library, and programs that use it
#define ORZCORE_API
#define ORZCORE_LOCAL
#elif defined(ORZCORE_BUILDS_DLL)  // the DLL itself
#define ORZCORE_API __declspec(dllexport)
#define ORZCORE_LOCAL
#else  // programs that use the DLL
#define ORZCORE_API __declspec(dllimport)
#define ORZCORE_LOCAL
#endif
