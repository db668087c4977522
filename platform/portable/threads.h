// Threads on systems other than Windows.
#pragma once

#include "platform/portable/types.h"

namespace zkr {

inline constexpr uint32_t FLS_OUT_OF_INDEXES = 0xFFFFFFFFu;

} // namespace zkr

namespace zkr::platform {

using PFLS_CALLBACK_FUNCTION = void (*)(void* value);

DWORD GetCurrentThreadId();
// Whether the process has one thread. May be false though it has; true goes on being so until this thread
// starts another.
bool IsOnlyThread();
// Gives way to another thread that is ready to run.
BOOL SwitchToThread();

// A value for each thread. When a thread ends with a value other than null, the callback gets it.
//
// FlsFree gives the callback the values of all other threads that still live, on the calling thread, and
// returns when no callback runs in any other thread. A callback may call it. A library that calls it while it
// is unloaded (from a destructor of static storage, say) therefore leaves neither a value nor a pointer into
// its own code behind. Other threads must not be inside the library then.
DWORD FlsAlloc(PFLS_CALLBACK_FUNCTION callback); // FLS_OUT_OF_INDEXES on failure
BOOL FlsFree(DWORD index);
void* FlsGetValue(DWORD index);
BOOL FlsSetValue(DWORD index, void* value); // FALSE, and the old value stays, where memory is short

} // namespace zkr::platform
