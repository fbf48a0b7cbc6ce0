// The mark of everything that the library exports; all else stays hidden in the shared library.
#pragma once

#define ORZCORE_API __attribute__((visibility("default")))
