// The file family: the platform's file calls in the shape of the thread's file vector. Handles cross the
// interface as integers, -1 for none.
#include "zkr13n/files.h"

#include "core/files.h"
#include "core/thread_settings.h"
#include "platform/files.h"

#include <algorithm>
#include <cstdint>

using namespace zkr;

namespace {

constexpr int32_t Failed = -1;
constexpr uint32_t LargestTransfer = INT32_MAX; // the result is signed

HANDLE ToHandle(intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

intptr_t ToInteger(HANDLE handle) {
    return reinterpret_cast<intptr_t>(handle);
}

uint32_t Disposition(int32_t flags) {
    if ((flags & Z_OPEN_CREATE) != 0) return CREATE_ALWAYS;
    return (flags & Z_OPEN_TRUNCATE) != 0 ? TRUNCATE_EXISTING : OPEN_EXISTING;
}

uint32_t ShareMode(int32_t share) {
    switch (share & Z_SHARE_READ_WRITE) {
    case Z_SHARE_READ_WRITE: return FILE_SHARE_READ | FILE_SHARE_WRITE;
    case Z_SHARE_READ: return FILE_SHARE_READ;
    default: return 0;
    }
}

} // namespace

intptr_t Z_CALL Z_OsCreat(const char* name, int32_t attributes) {
    if (name == nullptr) return Failed;
    const bool readOnly = (attributes & Z_CREATE_READ_ONLY) != 0;
    uint32_t flags = 0;
    if (readOnly) flags |= FILE_ATTRIBUTE_READONLY;
    if ((attributes & Z_CREATE_HIDDEN) != 0) flags |= FILE_ATTRIBUTE_HIDDEN;
    if ((attributes & Z_CREATE_SYSTEM) != 0) flags |= FILE_ATTRIBUTE_SYSTEM;
    if (flags == 0) flags = FILE_ATTRIBUTE_NORMAL;
    if ((attributes & Z_CREATE_DELETE_ON_CLOSE) != 0) flags |= FILE_FLAG_DELETE_ON_CLOSE;
    return ToInteger(platform::CreateFileA(name, readOnly ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, flags,
                                           nullptr));
}

intptr_t Z_CALL Z_OsOpen(const char* name, int32_t flags, int32_t share, intptr_t) {
    if (name == nullptr) return Failed;
    const int32_t mode = flags & Z_OPEN_ACCESS;
    const uint32_t access = mode == Z_OPEN_READ    ? GENERIC_READ
                            : mode == Z_OPEN_WRITE ? GENERIC_WRITE
                                                   : GENERIC_READ | GENERIC_WRITE;
    const uint32_t attribute = mode == Z_OPEN_READ ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL;
    return ToInteger(platform::CreateFileA(name, access, ShareMode(share), nullptr, Disposition(flags),
                                           attribute, nullptr));
}

int32_t Z_CALL Z_OsRead(intptr_t handle, void* buffer, uint32_t count, intptr_t) {
    platform::DWORD moved = 0;
    if (!platform::ReadFile(ToHandle(handle), buffer, std::min(count, LargestTransfer), &moved, nullptr))
        return Failed;
    return static_cast<int32_t>(moved);
}

int32_t Z_CALL Z_OsWrite(intptr_t handle, const void* buffer, uint32_t count, intptr_t) {
    if (count == 0) return platform::SetEndOfFile(ToHandle(handle)) ? 0 : Failed;
    platform::DWORD moved = 0;
    if (!platform::WriteFile(ToHandle(handle), buffer, std::min(count, LargestTransfer), &moved, nullptr))
        return Failed;
    return static_cast<int32_t>(moved);
}

intptr_t Z_CALL Z_OsSeek(intptr_t handle, intptr_t offset, int32_t origin, intptr_t) {
    const uint32_t method = origin == 0 ? FILE_BEGIN : origin == 1 ? FILE_CURRENT : FILE_END;
    platform::LARGE_INTEGER distance{};
    platform::LARGE_INTEGER position{};
    distance.QuadPart = offset;
    if (!platform::SetFilePointerEx(ToHandle(handle), distance, &position, method)) return Failed;
    return position.QuadPart <= INTPTR_MAX ? static_cast<intptr_t>(position.QuadPart) : Failed;
}

int32_t Z_CALL Z_OsClose(intptr_t handle, intptr_t) {
    return platform::CloseHandle(ToHandle(handle)) ? 0 : Failed;
}

int32_t Z_CALL Z_OsDelete(const char* name) {
    return name != nullptr && platform::DeleteFileA(name) ? 0 : Failed;
}

int32_t Z_CALL Z_OsGetTempName(char* buffer) {
    if (buffer != nullptr &&
        platform::GetTempFileNameA(CurrentThreadSettings().TempDirectory, "ZD", 0, buffer) == 0)
        buffer[0] = '\0';
    return 0;
}

int32_t zkr::SetFileLength(intptr_t handle, size_t length) {
    if (length > static_cast<size_t>(INTPTR_MAX)) return Failed;
    const auto end = static_cast<intptr_t>(length);
    return Z_OsSeek(handle, end, 0, 0) == end ? Z_OsWrite(handle, nullptr, 0, 0) : Failed;
}
