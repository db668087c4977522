// What the library asks of Windows: threads.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::BOOL;
using ::DWORD;

ZKR_FAULTABLE(FlsAlloc, Thread, FLS_OUT_OF_INDEXES, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(FlsSetValue, Thread, FALSE, ERROR_NOT_ENOUGH_MEMORY);
using ::FlsFree;
using ::FlsGetValue;
using ::GetCurrentThreadId;
using ::SwitchToThread;

// Whether the process is known to have one thread, which Windows does not tell.
inline bool IsOnlyThread() {
    return false;
}

} // namespace zkr::platform
