// The clock on systems other than Windows.
#pragma once

#include "platform/portable/types.h"

#include <ctime>

namespace zkr::platform {

// Milliseconds since some moment before the process began; starts again at 0 after 2^32.
inline DWORD GetTickCount() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<DWORD>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                              static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

} // namespace zkr::platform
