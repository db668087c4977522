// Opening, reading, writing and positioning of files.
#include "platform/portable/files.h"

#include "platform/faults.h"
#include "platform/portable/open_file.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
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
    file.positioned = S_ISREG(status.st_mode) || S_ISBLK(status.st_mode);
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
bool PassesSizeLimit(const OpenFile& file, int64_t position, uint64_t bytes) {
    rlimit limit;
    if (!file.positioned || getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return true;
    const auto start = static_cast<uint64_t>(position);
    return start <= limit.rlim_cur && bytes <= limit.rlim_cur - start;
}

// A write that begins behind the end of the file extends it.
bool HasRoomBefore(OpenFile& file, int64_t position) {
    struct stat status;
    if (!file.positioned || position <= file.reached.load()) return true;
    if (fstat(file.descriptor, &status) != 0 || position <= status.st_size) return true;
    return PromiseRoom(file, static_cast<uint64_t>(position));
}

// The run of bytes that a transfer is about. Of two threads that move bytes at once each has a run of its own.
class Transfer {
  public:
    Transfer(OpenFile& file, DWORD count) : file_(file), count_(count), start_(file.position.load()) {
        while (Begins() && !file.position.compare_exchange_weak(start_, start_ + count)) {
        }
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    bool Begins() const { return start_ <= INT64_MAX - count_; }
    int64_t Start() const { return start_; }

    // Calls move(bytes already moved) until all are moved or one call moves none; its error.
    template <typename Move> DWORD Run(DWORD& moved, Move move) {
        DWORD error = NO_ERROR;
        while (moved < count_) {
            const ssize_t part = move(moved);
            if (part > 0)
                moved += static_cast<DWORD>(part);
            else if (part == 0)
                break;
            else if (errno != EINTR) {
                error = ErrorFromErrno(errno);
                break;
            }
        }
        EndAt(moved);
        return error;
    }
    // Moves the position back to where the transfer ended, unless somebody has moved it meanwhile.
    void EndAt(DWORD moved) {
        int64_t end = start_ + count_;
        if (moved != count_) file_.position.compare_exchange_strong(end, start_ + moved);
    }

  private:
    OpenFile& file_;
    DWORD count_;
    int64_t start_;
};

// Gives the position that a distance from an origin leads to; nothing has moved yet.
bool FindPosition(const OpenFile& file, int64_t distance, DWORD origin, int64_t& position) {
    if (fault::Due(fault::FileSeek)) return Fail(ERROR_SEEK);
    if (origin > FILE_END) return Fail(ERROR_INVALID_PARAMETER);
    if (!file.positioned) return Fail(ErrorFromErrno(ESPIPE));
    const int64_t base = origin == FILE_BEGIN     ? 0
                         : origin == FILE_CURRENT ? file.position.load()
                                                  : lseek(file.descriptor, 0, SEEK_END);
    if (base < 0) return Fail(ErrorFromErrno(errno));
    if (__builtin_add_overflow(base, distance, &position)) return Fail(ERROR_INVALID_PARAMETER);
    return position >= 0 || Fail(ERROR_NEGATIVE_SEEK);
}

// What opening gave: the handle, or the error and nothing.
HANDLE Opened(OpenFile* file, DWORD error) {
    if (error == NO_ERROR) {
        if (HANDLE handle = InsertHandle(OpenFile::kind, *file)) return handle;
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    file->Release();
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
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
    const bool temporary = (attributes & FILE_FLAG_DELETE_ON_CLOSE) != 0;
    if (temporary && !TakeTemporaryDescriptor()) return Opened(file, ERROR_TOO_MANY_OPEN_FILES);
    file->temporary = temporary;
    file->descriptor = OpenDescriptor(name, OpenFlags(access, disposition), CreationMode(attributes));
    return Opened(file, file->descriptor < 0 ? ErrorFromErrno(errno)
                                             : FinishOpen(*file, name, disposition, attributes));
}

HANDLE CreateNamelessFile(const char* folder) {
    const auto fail = [](DWORD error) {
        SetLastError(error);
        return INVALID_HANDLE_VALUE;
    };
    if (fault::Due(fault::FileOpen)) return fail(ERROR_TOO_MANY_OPEN_FILES);
    auto* file = new (std::nothrow) OpenFile;
    if (file == nullptr) return fail(ERROR_NOT_ENOUGH_MEMORY);
    file->sharing = {FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                     FILE_SHARE_READ | FILE_SHARE_WRITE};
    file->temporary = TakeTemporaryDescriptor();
    if (!file->temporary) return Opened(file, ERROR_TOO_MANY_OPEN_FILES);
    file->descriptor = OpenDescriptor(folder, O_TMPFILE | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (file->descriptor >= 0) return Opened(file, FinishOpen(*file, nullptr, OPEN_EXISTING, 0));
    const bool isUnknown = errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL;
    return Opened(file, isUnknown ? ERROR_CALL_NOT_IMPLEMENTED : ErrorFromErrno(errno));
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD count, DWORD* got, void* overlapped) {
    if (got != nullptr) *got = 0;
    const Pin<OpenFile> file(handle);
    if (!file) return FALSE;
    if (overlapped != nullptr || got == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if (!file->Reads()) return Fail(ERROR_ACCESS_DENIED);
    if (fault::Due(fault::FileRead)) return Fail(ERROR_READ_FAULT);
    const auto read = [&](int64_t position, DWORD moved) {
        char* const rest = static_cast<char*>(buffer) + moved;
        return file->positioned ? pread(file->descriptor, rest, count - moved, position + moved)
                                : ::read(file->descriptor, rest, count - moved);
    };
    Transfer transfer(*file, count);
    if (!transfer.Begins()) return TRUE; // no file reaches so far
    const DWORD error = transfer.Run(*got, [&](DWORD moved) { return read(transfer.Start(), moved); });
    return error == NO_ERROR ? TRUE : Fail(error);
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD count, DWORD* done, void* overlapped) {
    if (done != nullptr) *done = 0;
    const Pin<OpenFile> file(handle);
    if (!file) return FALSE;
    if (overlapped != nullptr || done == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if (!file->Writes()) return Fail(ERROR_ACCESS_DENIED);
    if (fault::Due(fault::FileWrite)) return Fail(ERROR_DISK_FULL);
    Transfer transfer(*file, count);
    if (!transfer.Begins()) return Fail(ERROR_DISK_FULL);
    const int64_t start = transfer.Start();
    if (!PassesSizeLimit(*file, start, count) || (count != 0 && !HasRoomBefore(*file, start))) {
        transfer.EndAt(0);
        return Fail(ERROR_DISK_FULL);
    }
    const DWORD error = transfer.Run(*done, [&](DWORD moved) {
        const char* const rest = static_cast<const char*>(buffer) + moved;
        return file->positioned ? pwrite(file->descriptor, rest, count - moved, start + moved)
                                : write(file->descriptor, rest, count - moved);
    });
    if (file->reached.load() < start + *done) file->reached.store(start + *done);
    if (error != NO_ERROR) return Fail(error);
    return *done == count ? TRUE : Fail(ERROR_DISK_FULL);
}

BOOL SetFilePointerEx(HANDLE handle, LARGE_INTEGER distance, LARGE_INTEGER* position, DWORD origin) {
    const Pin<OpenFile> file(handle);
    int64_t reached;
    if (!file || !FindPosition(*file, distance.QuadPart, origin, reached)) return FALSE;
    file->position.store(reached);
    if (position != nullptr) position->QuadPart = reached;
    return TRUE;
}

BOOL SetEndOfFile(HANDLE handle) {
    const Pin<OpenFile> file(handle);
    if (!file) return FALSE;
    if (!file->Writes()) return Fail(ERROR_ACCESS_DENIED);
    const int64_t end = file->position.load();
    if (fault::Due(fault::FileEnd) || !PassesSizeLimit(*file, end, 0) || !HasRoomBefore(*file, end))
        return Fail(ERROR_DISK_FULL);
    int result;
    do {
        result = ftruncate(file->descriptor, end);
    } while (result != 0 && errno == EINTR);
    if (result != 0) return Fail(ErrorFromErrno(errno));
    file->reached.store(end);
    return TRUE;
}

} // namespace zkr::platform
