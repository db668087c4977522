// The clipboard. The names and contracts are those of Windows; namespace zkr::platform holds them on every system.
// Constants are reached without the namespace.
#pragma once

#ifdef _WIN32
#include "platform/windows/clipboard.h"
#else
#include "platform/portable/clipboard.h"
#endif
