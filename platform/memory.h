// Blocks of global memory, mappings and the figures of the system's memory. The names and contracts are those
// of Windows; namespace zkr::platform holds them on every system. Constants are reached without the
// namespace.
#pragma once

#ifdef _WIN32
#include "platform/windows/memory.h"
#else
#include "platform/portable/memory.h"
#endif
