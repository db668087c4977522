// Memory on systems other than Windows. Handles come from the handle table. Blocks of GlobalAlloc are movable
// ones only and never move but in GlobalReAlloc, so that an address stays good after GlobalUnlock.
//
// Anonymous mappings are zeroed. From 2 MiB they lie on borders of 2 MiB, ask for huge pages, and go back to the
// system as soon as the mapping's handle and all its views are gone; smaller ones go back to the run-time heap.
#pragma once

#include "platform/portable/types.h"

namespace zkr {

inline constexpr uint32_t GMEM_MOVEABLE = 0x0002;
inline constexpr uint32_t GMEM_ZEROINIT = 0x0040;
inline constexpr uint32_t GMEM_SHARE = 0x2000;
inline constexpr uint32_t PAGE_READONLY = 0x02;
inline constexpr uint32_t PAGE_READWRITE = 0x04;
inline constexpr uint32_t SEC_COMMIT = 0x08000000;
inline constexpr uint32_t SEC_NOCACHE = 0x10000000;
inline constexpr uint32_t FILE_MAP_WRITE = 0x0002;
inline constexpr uint32_t FILE_MAP_READ = 0x0004;

inline constexpr uint32_t DUPLICATE_SAME_ACCESS = 2;

} // namespace zkr

namespace zkr::platform {

// Null for anything but a movable block and where memory is short. A block of 0 bytes has a handle and no
// address.
HGLOBAL GlobalAlloc(UINT flags, size_t bytes);
// Resizes; new bytes are zero with GMEM_ZEROINIT. Gives the handle, or null with the block as it was.
HGLOBAL GlobalReAlloc(HGLOBAL block, size_t bytes, UINT flags);
// Null on success, else the handle.
HGLOBAL GlobalFree(HGLOBAL block);
void* GlobalLock(HGLOBAL block);
// TRUE while the block is still locked.
BOOL GlobalUnlock(HGLOBAL block);
// The handle of the block that starts at the address, or null. The address is not followed.
HGLOBAL GlobalHandle(const void* address);
size_t GlobalSize(HGLOBAL block);

struct MEMORYSTATUSEX {
    DWORD dwLength; // sizeof(MEMORYSTATUSEX), set by the caller
    DWORD dwMemoryLoad;
    uint64_t ullTotalPhys;
    uint64_t ullAvailPhys;
    uint64_t ullTotalPageFile; // swap space
    uint64_t ullAvailPageFile;
    uint64_t ullTotalVirtual;
    uint64_t ullAvailVirtual;
    uint64_t ullAvailExtendedVirtual;
};

// The system's own figures at this moment, in bytes.
BOOL GlobalMemoryStatusEx(MEMORYSTATUSEX* status);

// A mapping of an open file, or with INVALID_HANDLE_VALUE of anonymous memory. Size 0 is the file's own size;
// a file that is shorter grows. Security and name must be null.
HANDLE CreateFileMappingA(HANDLE file, void* security, DWORD protection, DWORD sizeHigh, DWORD sizeLow,
                          const char* name);
// A view of a mapping. The offset is a multiple of 65536; 0 bytes means to the end. Views of one mapping show
// the same memory, and the file's reads and writes see it too. A view for writing reserves the file's room on
// the disk first, where the file system can, so that a full disk fails here and not on a later store.
void* MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow, size_t bytes);
BOOL UnmapViewOfFile(const void* address);

// This process, for DuplicateHandle.
inline HANDLE GetCurrentProcess() {
    return INVALID_HANDLE_VALUE;
}
// A further handle of a mapping, within this process and with the same access.
BOOL DuplicateHandle(HANDLE from, HANDLE handle, HANDLE to, HANDLE* out, DWORD access, BOOL inherit,
                     DWORD options);

// Closes a file or a mapping.
BOOL CloseHandle(HANDLE handle);

} // namespace zkr::platform
