// Opening, reading, writing and positioning of files.
#include "platform/portable/files.h"

#include "platform/faults.h"
#include "platform/portable/open_file.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <new>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

bool Truncates(DWORD disposition) {
    return disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
}

// Truncation waits until the share modes have been looked at, and needs write access whatever the caller
// asked.
int OpenFlags(DWORD access, DWORD disposition) {
    int flags = O_CLOEXEC | O_NOCTTY;
    const bool writes = (access & GENERIC_WRITE) != 0 || Truncates(disposition);
    const bool reads = (access & GENERIC_READ) != 0;
    flags |= !writes ? O_RDONLY : reads ? O_RDWR : O_WRONLY;
    if (disposition == CREATE_NEW) flags |= O_CREAT | O_EXCL;
    if (disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS) flags |= O_CREAT;
    return flags;
}

mode_t CreationMode(DWORD attributes) {
    return (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? 0444 : 0666;
}

int OpenDescriptor(const char* name, int flags, mode_t mode) {
    int descriptor;
    do {
        descriptor = open(name, flags, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

// What is left to do once the descriptor is there: identity, share modes, truncation, the name.
DWORD FinishOpen(OpenFile& file, const char* name, DWORD disposition, DWORD attributes) {
    struct stat status;
    if (fstat(file.descriptor, &status) != 0) return ErrorFromErrno(errno);
    if (S_ISDIR(status.st_mode)) return ERROR_ACCESS_DENIED;
    file.identity = {status.st_dev, status.st_ino};
    if (!BookFile(file)) return ERROR_SHARING_VIOLATION;
    if (Truncates(disposition)) {
        if (S_ISREG(status.st_mode) && ftruncate(file.descriptor, 0) != 0) return ErrorFromErrno(errno);
        const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
        if (disposition == CREATE_ALWAYS && readOnly && (status.st_mode & 0222) != 0 &&
            fchmod(file.descriptor, status.st_mode & 0555) != 0) {
            return ErrorFromErrno(errno);
        }
    }
    if ((attributes & FILE_FLAG_DELETE_ON_CLOSE) != 0 && unlink(name) != 0) return ErrorFromErrno(errno);
    return NO_ERROR;
}

// A write past the limit on the size of files would raise a signal that ends the process; it is refused
// first.
bool PassesSizeLimit(int descriptor, uint64_t bytes) {
    rlimit limit;
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return true;
    const off_t position = lseek(descriptor, 0, SEEK_CUR);
    return position < 0 || (static_cast<uint64_t>(position) <= limit.rlim_cur &&
                            bytes <= limit.rlim_cur - static_cast<uint64_t>(position));
}

bool Seek(const OpenFile& file, int64_t distance, DWORD origin, int64_t& position) {
    if (fault::Due(fault::FileSeek)) return Fail(ERROR_SEEK);
    if (origin > FILE_END) return Fail(ERROR_INVALID_PARAMETER);
    constexpr int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    position = lseek(file.descriptor, distance, whence[origin]);
    if (position < 0) return Fail(errno == EINVAL ? ERROR_NEGATIVE_SEEK : ErrorFromErrno(errno));
    return true;
}

} // namespace

HANDLE CreateFileA(const char* name, DWORD access, DWORD share, void* security, DWORD disposition,
                   DWORD attributes, HANDLE model) {
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return INVALID_HANDLE_VALUE;
    };
    if (name == nullptr || security != nullptr || model != nullptr || disposition < CREATE_NEW ||
        disposition > TRUNCATE_EXISTING ||
        (disposition == TRUNCATE_EXISTING && (access & GENERIC_WRITE) == 0)) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    if (fault::Due(fault::FileOpen)) return fail(ERROR_TOO_MANY_OPEN_FILES);

    auto* file = new (std::nothrow) OpenFile;
    if (file == nullptr) return fail(ERROR_NOT_ENOUGH_MEMORY);
    file->sharing.use = ((access & GENERIC_READ) != 0 ? FILE_SHARE_READ : 0) |
                        ((access & GENERIC_WRITE) != 0 ? FILE_SHARE_WRITE : 0) |
                        ((attributes & FILE_FLAG_DELETE_ON_CLOSE) != 0 ? FILE_SHARE_DELETE : 0);
    file->sharing.allowed = share;
    file->descriptor = OpenDescriptor(name, OpenFlags(access, disposition), CreationMode(attributes));
    DWORD error =
        file->descriptor < 0 ? ErrorFromErrno(errno) : FinishOpen(*file, name, disposition, attributes);
    if (error == NO_ERROR) {
        if (HANDLE handle = InsertHandle(OpenFile::kind, *file)) return handle;
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    file->Release();
    return fail(error);
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* got, void* overlapped) {
    if (got != nullptr) *got = 0;
    const Pin<OpenFile> file(handle);
    if (!file) return FALSE;
    if (overlapped != nullptr || got == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if (!file->Reads()) return Fail(ERROR_ACCESS_DENIED);
    if (fault::Due(fault::FileRead)) return Fail(ERROR_READ_FAULT);
    while (*got < count) {
        const ssize_t part = read(file->descriptor, static_cast<char*>(buffer) + *got, count - *got);
        if (part == 0) break;
        if (part > 0) {
            *got += static_cast<DWORD>(part);
        } else if (errno != EINTR) {
            return Fail(ErrorFromErrno(errno));
        }
    }
    return TRUE;
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void* overlapped) {
    if (done != nullptr) *done = 0;
    const Pin<OpenFile> file(handle);
    if (!file) return FALSE;
    if (overlapped != nullptr || done == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if (!file->Writes()) return Fail(ERROR_ACCESS_DENIED);
    if (fault::Due(fault::FileWrite) || !PassesSizeLimit(file->descriptor, count))
        return Fail(ERROR_DISK_FULL);
    while (*done < count) {
        const ssize_t part = write(file->descriptor, static_cast<const char*>(buffer) + *done, count - *done);
        if (part > 0) {
            *done += static_cast<DWORD>(part);
        } else if (part == 0) {
            return Fail(ERROR_DISK_FULL);
        } else if (errno != EINTR) {
            return Fail(ErrorFromErrno(errno));
        }
    }
    return TRUE;
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD origin) {
    const Pin<OpenFile> file(handle);
    int64_t reached;
    if (!file || !Seek(*file, distance.QuadPart, origin, reached)) return FALSE;
    if (position != nullptr) position->QuadPart = reached;
    return TRUE;
}

DWORD SetFilePointer(HANDLE handle, LONG low, LONG* high, DWORD origin) {
    const Pin<OpenFile> file(handle);
    if (!file) return INVALID_SET_FILE_POINTER;
    const int64_t distance =
        high == nullptr
            ? low
            : static_cast<int64_t>(static_cast<uint64_t>(*high) << 32 | static_cast<uint32_t>(low));
    const off_t before = lseek(file->descriptor, 0, SEEK_CUR);
    int64_t reached;
    if (!Seek(*file, distance, origin, reached)) return INVALID_SET_FILE_POINTER;
    if (high == nullptr && reached > std::numeric_limits<uint32_t>::max()) {
        lseek(file->descriptor, before, SEEK_SET);
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (high != nullptr) *high = static_cast<LONG>(reached >> 32);
    SetLastError(NO_ERROR);
    return static_cast<DWORD>(reached);
}

BOOL SetEndOfFile(HANDLE handle) {
    const Pin<OpenFile> file(handle);
    if (!file) return FALSE;
    if (!file->Writes()) return Fail(ERROR_ACCESS_DENIED);
    if (fault::Due(fault::FileEnd) || !PassesSizeLimit(file->descriptor, 0)) return Fail(ERROR_DISK_FULL);
    const off_t position = lseek(file->descriptor, 0, SEEK_CUR);
    if (position < 0) return Fail(ErrorFromErrno(errno));
    int result;
    do {
        result = ftruncate(file->descriptor, position);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? TRUE : Fail(ErrorFromErrno(errno));
}

} // namespace zkr::platform
