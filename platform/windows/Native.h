// The system's own header. Its calls have the names that this folder gives to its own functions, so
// the code writes `::CreateFileA` for the system's.
#pragma once

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX  // the C++ library of mingw-w64 defines it, too
#define NOMINMAX
#endif
#include <windows.h>
