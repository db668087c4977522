// What the library asks of Windows: memory.
#pragma once

#include "platform/windows/guarded.h"

namespace zkr::platform {

using ::BOOL;
using ::DWORD;
using ::MEMORYSTATUS;
using ::MEMORYSTATUSEX;
using ::UINT;

ZKR_FAULTABLE(GlobalAlloc, Global, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(GlobalReAlloc, Global, nullptr, ERROR_NOT_ENOUGH_MEMORY);
using ::GlobalFree;
using ::GlobalHandle;
using ::GlobalLock;
using ::GlobalSize;
using ::GlobalUnlock;

using ::GlobalMemoryStatus;
using ::GlobalMemoryStatusEx;

ZKR_FAULTABLE(CreateFileMappingA, Mapping, nullptr, ERROR_COMMITMENT_LIMIT);
ZKR_FAULTABLE(MapViewOfFile, View, nullptr, ERROR_NOT_ENOUGH_MEMORY);
using ::CloseHandle;
using ::UnmapViewOfFile;

} // namespace zkr::platform
