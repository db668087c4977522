// Files, temporary names and the last error. The names and contracts are those of Windows; namespace
// zkr::platform holds them on every system. Constants are reached without the namespace.
#pragma once

#ifdef _WIN32
#include "platform/windows/files.h"
#else
#include "platform/portable/files.h"
#endif
