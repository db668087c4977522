// What the library asks of Windows: memory.
#pragma once

#include "platform/windows/guarded.h"
#include "platform/windows/handles.h"

namespace zkr::platform {

using ::BOOL;
using ::DWORD;
using ::MEMORYSTATUSEX;
using ::UINT;

ZKR_MAKING(GlobalAlloc, Global, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_FAULTABLE(GlobalReAlloc, Global, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_RELEASING(GlobalFree, nullptr);
using ::GlobalHandle;
using ::GlobalLock;
using ::GlobalSize;
using ::GlobalUnlock;

using ::GlobalMemoryStatusEx;

ZKR_MAKING(CreateFileMappingA, Mapping, nullptr, ERROR_COMMITMENT_LIMIT);
ZKR_MAKING(DuplicateHandle, Mapping, FALSE, ERROR_NOT_ENOUGH_MEMORY);
using ::GetCurrentProcess;
ZKR_MAKING(MapViewOfFile, View, nullptr, ERROR_NOT_ENOUGH_MEMORY);
ZKR_RELEASING(UnmapViewOfFile, TRUE);

} // namespace zkr::platform
