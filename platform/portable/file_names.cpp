// Files by name: deletion, attributes, temporary names.
#include "platform/faults.h"
#include "platform/portable/files.h"
#include "platform/portable/open_file.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

// Numbers that differ between processes and from call to call.
uint32_t NextNumber() {
    static constinit std::atomic<uint32_t> calls{0};
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const uint64_t seed = static_cast<uint64_t>(now.tv_nsec) ^ (static_cast<uint64_t>(getpid()) << 32) ^
                          (static_cast<uint64_t>(calls.fetch_add(1)) << 16);
    return static_cast<uint32_t>((seed * 0x9E3779B97F4A7C15u) >> 32);
}

bool FormatName(const char* folder, const char* prefix, UINT number, char* buffer) {
    const size_t length = std::strlen(folder);
    const char* separator = length > 0 && folder[length - 1] == '/' ? "" : "/";
    const int written =
        std::snprintf(buffer, MAX_PATH, "%s%s%.3s%08X.TMP", folder, separator, prefix, number);
    return written > 0 && static_cast<size_t>(written) < MAX_PATH;
}

} // namespace

BOOL DeleteFileA(const char* name) {
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return FALSE;
    };
    struct stat status;
    if (lstat(name, &status) != 0) return fail(ErrorFromErrno(errno));
    if (S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && (status.st_mode & 0222) == 0)) {
        return fail(ERROR_ACCESS_DENIED);
    }
    if (!MayDelete({status.st_dev, status.st_ino})) return fail(ERROR_SHARING_VIOLATION);
    return unlink(name) == 0 ? TRUE : fail(ErrorFromErrno(errno));
}

DWORD GetFileAttributesA(const char* name) {
    struct stat status;
    if (stat(name, &status) != 0) {
        SetLastError(ErrorFromErrno(errno));
        return INVALID_FILE_ATTRIBUTES;
    }
    const DWORD attributes = (S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : 0) |
                             ((status.st_mode & 0222) == 0 ? FILE_ATTRIBUTE_READONLY : 0);
    return attributes != 0 ? attributes : FILE_ATTRIBUTE_NORMAL;
}

DWORD GetTempPathA(DWORD size, char* buffer) {
    const char* folder = secure_getenv("TMPDIR");
    if (folder == nullptr || folder[0] == '\0' || std::strlen(folder) >= MAX_PATH - 1) folder = "/tmp";
    const size_t length = std::strlen(folder);
    const char* separator = folder[length - 1] == '/' ? "" : "/";
    const size_t whole = length + std::strlen(separator);
    if (whole >= size) return static_cast<DWORD>(whole + 1);
    std::snprintf(buffer, size, "%s%s", folder, separator);
    return static_cast<DWORD>(whole);
}

UINT GetTempFileNameA(const char* folder, const char* prefix, UINT number, char* buffer) {
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return UINT{0};
    };
    if (folder == nullptr || prefix == nullptr || buffer == nullptr) return fail(ERROR_INVALID_PARAMETER);
    if (number != 0)
        return FormatName(folder, prefix, number, buffer) ? number : fail(ERROR_INVALID_PARAMETER);
    if (fault::Due(fault::FileOpen)) return fail(ERROR_ACCESS_DENIED);
    for (int attempt = 0; attempt < 1000; ++attempt) {
        const UINT candidate = NextNumber();
        if (candidate == 0) continue;
        if (!FormatName(folder, prefix, candidate, buffer)) return fail(ERROR_INVALID_PARAMETER);
        const int descriptor = open(buffer, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
        if (descriptor >= 0) {
            close(descriptor);
            return candidate;
        }
        if (errno != EEXIST && errno != EINTR) return fail(ErrorFromErrno(errno));
    }
    return fail(ERROR_FILE_EXISTS);
}

} // namespace zkr::platform
