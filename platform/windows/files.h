// What the library asks of Windows: files.
#pragma once

#include "platform/windows/guarded.h"
#include "platform/windows/handles.h"

namespace zkr::platform {

using ::BOOL;
using ::DWORD;
using ::LARGE_INTEGER;
using ::LONG;
using ::UINT;

ZKR_MAKING(CreateFileA, FileOpen, INVALID_HANDLE_VALUE, ERROR_TOO_MANY_OPEN_FILES);
ZKR_FAULTABLE(GetTempFileNameA, FileOpen, 0, ERROR_ACCESS_DENIED);
ZKR_FAULTABLE(ReadFile, FileRead, FALSE, ERROR_READ_FAULT);
ZKR_FAULTABLE(SetEndOfFile, FileEnd, FALSE, ERROR_DISK_FULL);
ZKR_FAULTABLE(SetFilePointerEx, FileSeek, FALSE, ERROR_SEEK);
ZKR_FAULTABLE(WriteFile, FileWrite, FALSE, ERROR_DISK_FULL);
using ::DeleteFileA;
using ::GetFileAttributesA;
using ::GetLastError;
using ::GetTempPathA;
using ::SetLastError;

// Temporary files have names here.
inline HANDLE CreateNamelessFile(const char*) {
    SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return INVALID_HANDLE_VALUE;
}

} // namespace zkr::platform
