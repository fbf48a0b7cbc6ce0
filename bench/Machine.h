// What the benchmarks run on.
#pragma once

#include "Table.h"

namespace bench {

/// The processor, the system, the compiler and the versions of the peers. It names neither the host
/// nor any path.
Table MachineTable();

/// Gives the process the environment of a usual session, whatever it was started from: the C locale,
/// in which the peers write the month first and have a 12-hour clock, and so many variables in all.
/// Where files and zones come from stays as it is.
constexpr int kVariables = 40;
void SetEnvironment(int variables);

/// Lets the process have as many files open as the system grants it.
void AllowManyFiles();

}  // namespace bench
