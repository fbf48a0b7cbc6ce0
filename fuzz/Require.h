// What fuzz targets check.
#pragma once

#include <cstdlib>

/// Ends the program, so that the fuzzer reports the input.
inline void Require(bool holds) {
  if (!holds) std::abort();
}
