// What the benchmarks run on.
#pragma once

#include "Table.h"

namespace bench {

/// The processor, the system, the compiler and the versions of the peers. It names neither the host
/// nor any path.
Table MachineTable();

/// Lets the process have as many files open as the system grants it.
void AllowManyFiles();

}  // namespace bench
