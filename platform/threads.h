// Thread identity, values kept for each thread, giving way. The names and contracts are those of Windows;
// namespace zkr::platform holds them on every system. Constants are reached without the namespace.
#pragma once

#ifdef _WIN32
#include "platform/windows/threads.h"
#else
#include "platform/portable/threads.h"
#endif
