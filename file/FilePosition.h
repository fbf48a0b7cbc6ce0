// Positions that a signed 32-bit offset cannot name in one step.
#pragma once

#include <cstdint>

/// Moves a handle's position to one that was read from it before, which may lie above 2 GiB.
/// Returns false on failure.
bool RestorePosition(void* handle, std::uint32_t position);
