// Files on systems other than Windows.
//
// Share modes hold between the opens of this process, by file and not by name: an open that an earlier open
// does not allow fails with ERROR_SHARING_VIOLATION, and so does the deletion of a file opened without
// FILE_SHARE_DELETE. Other processes are not held off. A file with FILE_FLAG_DELETE_ON_CLOSE loses its name
// as soon as it is open, so that a crash leaves nothing behind. Attributes: READONLY stands for the absence
// of write permission; HIDDEN and SYSTEM are accepted and have no effect.
//
// A file is never extended beyond the space that its disk has: a position behind the end, a length and a mapping
// are held against what is free less what open files of the process have been extended by and not filled, and
// fail with ERROR_DISK_FULL. Temporary files take at most three quarters of the descriptors that the process may
// have and fail with ERROR_TOO_MANY_OPEN_FILES beyond. Positions belong to the handle and the process: a child
// made by fork moves its own.
#pragma once

#include "platform/portable/types.h"

namespace zkr {

inline constexpr uint32_t GENERIC_READ = 0x80000000u;
inline constexpr uint32_t GENERIC_WRITE = 0x40000000u;
inline constexpr uint32_t FILE_SHARE_READ = 1;
inline constexpr uint32_t FILE_SHARE_WRITE = 2;
inline constexpr uint32_t FILE_SHARE_DELETE = 4;
inline constexpr uint32_t CREATE_NEW = 1;
inline constexpr uint32_t CREATE_ALWAYS = 2;
inline constexpr uint32_t OPEN_EXISTING = 3;
inline constexpr uint32_t OPEN_ALWAYS = 4;
inline constexpr uint32_t TRUNCATE_EXISTING = 5;
inline constexpr uint32_t FILE_ATTRIBUTE_READONLY = 0x01;
inline constexpr uint32_t FILE_ATTRIBUTE_HIDDEN = 0x02;
inline constexpr uint32_t FILE_ATTRIBUTE_SYSTEM = 0x04;
inline constexpr uint32_t FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr uint32_t FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr uint32_t FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr uint32_t FILE_FLAG_DELETE_ON_CLOSE = 0x04000000;
inline constexpr uint32_t INVALID_FILE_ATTRIBUTES = 0xFFFFFFFFu;
inline constexpr uint32_t FILE_BEGIN = 0;
inline constexpr uint32_t FILE_CURRENT = 1;
inline constexpr uint32_t FILE_END = 2;

} // namespace zkr

namespace zkr::platform {

union LARGE_INTEGER {
    int64_t QuadPart;
};

// INVALID_HANDLE_VALUE on failure; security and model must be null. Directories cannot be opened.
HANDLE CreateFileA(const char* name, DWORD access, DWORD share, void* security, DWORD disposition,
                   DWORD attributes, HANDLE model);
// TRUE with 0 bytes at the end of the file. The last argument must be null.
BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* got, void* overlapped);
// All or nothing counts as success; done tells how much went out. A disk that is full and a limit on the size
// of files are failures, never signals.
BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* done, void* overlapped);
BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD origin);
// The file ends at the current position from now on.
BOOL SetEndOfFile(HANDLE file);
BOOL CloseHandle(HANDLE handle);

BOOL DeleteFileA(const char* name);
DWORD GetFileAttributesA(const char* name);

// The folder of temporary files with a slash at its end: TMPDIR, or /tmp where that is not set or longer than a
// name may be. Gives the length without the zero, or the size needed where size is too small.
DWORD GetTempPathA(DWORD size, char* buffer);
// Writes a name of the folder, up to three characters of the prefix and a number into buffer (MAX_PATH
// bytes). With number 0 a fresh file is made under that name, readable by its owner alone. Gives the number,
// 0 on failure.
UINT GetTempFileNameA(const char* folder, const char* prefix, UINT number, char* buffer);
// A fresh file for reading and writing that has never had a name and goes when it is closed. INVALID_HANDLE_VALUE on
// failure, with ERROR_CALL_NOT_IMPLEMENTED where the folder's file system has no such files.
HANDLE CreateNamelessFile(const char* folder);

} // namespace zkr::platform
