// Files, temporary names and the last error. The names and contracts are those of Windows; namespace
// zkr::platform holds them on every system. Constants are reached without the namespace.
#pragma once

#ifdef _WIN32
#include "platform/windows/files.h"
#else
#include "platform/portable/files.h"
#endif

namespace zkr::platform {

// A fresh file for reading and writing that goes when it is closed; INVALID_HANDLE_VALUE on failure. It has no
// name where the folder's file system can do without, and elsewhere one of GetTempFileNameA as long as the
// system needs it.
inline HANDLE CreateTemporaryFile(const char* folder, const char* prefix) {
    HANDLE file = CreateNamelessFile(folder);
    if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_CALL_NOT_IMPLEMENTED) return file;
    char name[MAX_PATH];
    if (GetTempFileNameA(folder, prefix, 0, name) == 0) return INVALID_HANDLE_VALUE;
    file = CreateFileA(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) DeleteFileA(name);
    return file;
}

} // namespace zkr::platform
