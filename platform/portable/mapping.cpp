// Mappings and their views. An anonymous mapping takes its memory when it is made; a file mapping keeps the
// file open for its views. Both are released with the last of their handle and views.
#include "platform/faults.h"
#include "platform/portable/address_index.h"
#include "platform/portable/files.h"
#include "platform/portable/fork.h"
#include "platform/portable/memory.h"
#include "platform/portable/open_file.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zkr::platform {

namespace {

constexpr size_t HugePage = size_t{2} << 20;
constexpr size_t Granularity = size_t{64} << 10; // of view offsets
// Blocks below this come from the run-time heap, which has them ready again for the next one: the system
// counts mappings, takes a lock of the whole process for each, and gives their pages one by one.
constexpr size_t SmallBlock = HugePage;
// Their views begin on a border that suits every vector, so that a bitmap's rows need no shift in any
// mapping.
constexpr size_t SmallAlignment = 64;

HANDLE Fail(DWORD error) {
    SetLastError(error);
    return nullptr;
}

void* MapAnonymous(size_t size) {
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

size_t WholePages(size_t size) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (size + page - 1) / page * page;
}

void* ZeroedSmallBlock(size_t size) {
    void* memory = nullptr;
    return posix_memalign(&memory, SmallAlignment, size) == 0 ? std::memset(memory, 0, size) : nullptr;
}

// Memory of a large block; Bytes is what of it is mapped.
struct LargeBlock {
    uint8_t* Start;
    size_t Bytes;
};

// The last huge page is taken whole where that costs at most an eighth more: its small pages would take as
// long to get as many huge ones.
size_t LargeBytes(size_t size) {
    const size_t whole = (size + HugePage - 1) / HugePage * HugePage;
    return whole - size <= size / 8 ? whole : WholePages(size);
}

// On a huge page's border, so that all of the block but its tail can lie in huge pages.
LargeBlock MapLarge(size_t size) {
    const size_t bytes = LargeBytes(size);
    auto* memory = static_cast<uint8_t*>(MapAnonymous(bytes + HugePage));
    if (memory == nullptr) return {static_cast<uint8_t*>(MapAnonymous(size)), size};
    const size_t before = (HugePage - reinterpret_cast<uintptr_t>(memory) % HugePage) % HugePage;
    if (before != 0) munmap(memory, before);
    uint8_t* start = memory + before;
    munmap(start + bytes, HugePage - before);
    madvise(start, bytes, MADV_HUGEPAGE);
    return {start, bytes};
}

struct Mapping final : Object {
    static constexpr ObjectKind kind = ObjectKind::Mapping;

    size_t size = 0;
    uint8_t* memory = nullptr; // of an anonymous mapping
    size_t mappedBytes = 0;    // likewise, of a large one
    int descriptor = -1;       // of a file mapping
    bool temporary = false;    // the descriptor counts among those of temporary files
    bool writes = true;
    std::atomic<uint32_t> references{1}; // the handles and the views

    bool TakeMemory() {
        if (size < SmallBlock) {
            memory = static_cast<uint8_t*>(ZeroedSmallBlock(size));
        } else {
            const LargeBlock block = MapLarge(size);
            memory = block.Start;
            mappedBytes = block.Bytes;
        }
        return memory != nullptr;
    }
    void Release() override {
        if (references.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
        if (memory != nullptr && size < SmallBlock) std::free(memory);
        if (memory != nullptr && size >= SmallBlock) munmap(memory, mappedBytes);
        if (descriptor >= 0) close(descriptor);
        if (temporary) GiveTemporaryDescriptor();
        delete this;
    }
};

struct View final : AddressNode {
    Mapping* mapping = nullptr;
    size_t size = 0;
};

constinit AddressIndex views;
const ForkPart forkPart(
    ForkOrder::Inner, [] { views.LockAll(); }, [](bool) { views.UnlockAll(); });

// Takes the file for the mapping and brings it to the mapping's size.
DWORD TakeFile(Mapping& mapping, HANDLE handle, DWORD protection) {
    const Pin<OpenFile> file(handle);
    if (!file) return ERROR_INVALID_HANDLE;
    mapping.writes = (protection & PAGE_READWRITE) != 0;
    if (!file->Reads() || (mapping.writes && !file->Writes())) return ERROR_ACCESS_DENIED;
    struct stat status;
    if (fstat(file->descriptor, &status) != 0) return ErrorFromErrno(errno);
    const auto length = static_cast<size_t>(status.st_size);
    if (mapping.size == 0) mapping.size = length;
    if (mapping.size == 0) return ERROR_FILE_INVALID;
    if (mapping.size > length) {
        rlimit limit;
        if (!mapping.writes) return ERROR_NOT_ENOUGH_MEMORY;
        if (mapping.size > static_cast<uint64_t>(INT64_MAX) ||
            (getrlimit(RLIMIT_FSIZE, &limit) == 0 && mapping.size > limit.rlim_cur) ||
            !PromiseRoom(*file, mapping.size) ||
            ftruncate(file->descriptor, static_cast<off_t>(mapping.size)) != 0) {
            return ERROR_DISK_FULL;
        }
    }
    if (file->temporary && !TakeTemporaryDescriptor()) return ERROR_TOO_MANY_OPEN_FILES;
    mapping.temporary = file->temporary;
    mapping.descriptor = fcntl(file->descriptor, F_DUPFD_CLOEXEC, 0);
    return mapping.descriptor < 0 ? ErrorFromErrno(errno) : NO_ERROR;
}

// A store to a page of a view for which the disk has no room would end the process; so the room is taken now.
bool ReserveRoom(int descriptor, off_t offset, size_t bytes) {
    struct stat status;
    if (fstat(descriptor, &status) == 0 && status.st_blocks >= (status.st_size + 511) / 512) return true;
    int result;
    do {
        result = fallocate(descriptor, FALLOC_FL_KEEP_SIZE, offset, static_cast<off_t>(bytes));
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EOPNOTSUPP || errno == ENOSYS;
}

void* MapFile(const Mapping& mapping, bool writes, size_t offset, size_t bytes) {
    const auto start = static_cast<off_t>(offset);
    if (writes && !ReserveRoom(mapping.descriptor, start, bytes)) return Fail(ERROR_DISK_FULL);
    const int protection = PROT_READ | (writes ? PROT_WRITE : 0);
    void* memory = mmap(nullptr, bytes, protection, MAP_SHARED, mapping.descriptor, start);
    return memory == MAP_FAILED ? Fail(ERROR_NOT_ENOUGH_MEMORY) : memory;
}

} // namespace

HANDLE CreateFileMappingA(HANDLE file, void* security, DWORD protection, DWORD sizeHigh, DWORD sizeLow,
                          const char* name) {
    const bool anonymous = file == INVALID_HANDLE_VALUE;
    const uint64_t size = static_cast<uint64_t>(sizeHigh) << 32 | sizeLow;
    if (security != nullptr || name != nullptr || (protection & (PAGE_READONLY | PAGE_READWRITE)) == 0 ||
        (anonymous && size == 0)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (size > SIZE_MAX - 2 * HugePage || fault::Due(fault::Mapping)) return Fail(ERROR_COMMITMENT_LIMIT);

    auto* mapping = new (std::nothrow) Mapping;
    if (mapping == nullptr) return Fail(ERROR_NOT_ENOUGH_MEMORY);
    mapping->size = static_cast<size_t>(size);
    DWORD error = !anonymous              ? TakeFile(*mapping, file, protection)
                  : mapping->TakeMemory() ? NO_ERROR
                                          : ERROR_COMMITMENT_LIMIT;
    if (error == NO_ERROR) {
        if (HANDLE handle = InsertHandle(Mapping::kind, *mapping)) return handle;
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    mapping->Release();
    return Fail(error);
}

void* MapViewOfFile(HANDLE handle, DWORD access, DWORD offsetHigh, DWORD offsetLow, size_t bytes) {
    const Pin<Mapping> mapping(handle);
    if (!mapping) return nullptr;
    const uint64_t offset = static_cast<uint64_t>(offsetHigh) << 32 | offsetLow;
    const bool writes = (access & FILE_MAP_WRITE) != 0;
    if (offset % Granularity != 0) return Fail(ERROR_MAPPED_ALIGNMENT);
    if (offset >= mapping->size || bytes > mapping->size - offset || (writes && !mapping->writes)) {
        return Fail(ERROR_ACCESS_DENIED);
    }
    if (fault::Due(fault::View)) return Fail(ERROR_NOT_ENOUGH_MEMORY);

    auto* view = new (std::nothrow) View;
    if (view == nullptr) return Fail(ERROR_NOT_ENOUGH_MEMORY);
    view->size = bytes != 0 ? bytes : mapping->size - static_cast<size_t>(offset);
    view->address = mapping->memory != nullptr
                        ? mapping->memory + offset
                        : MapFile(*mapping, writes, static_cast<size_t>(offset), view->size);
    if (view->address == nullptr) {
        delete view;
        return nullptr;
    }
    mapping->references.fetch_add(1, std::memory_order_relaxed);
    view->mapping = &*mapping;
    views.Add(*view);
    fault::Made();
    return const_cast<void*>(view->address);
}

BOOL UnmapViewOfFile(const void* address) {
    auto* view = static_cast<View*>(views.Take(address));
    if (view == nullptr) {
        SetLastError(ERROR_INVALID_ADDRESS);
        return FALSE;
    }
    if (view->mapping->memory == nullptr) munmap(const_cast<void*>(view->address), view->size);
    view->mapping->Release();
    delete view;
    fault::Released();
    return TRUE;
}

BOOL DuplicateHandle(HANDLE from, HANDLE handle, HANDLE to, HANDLE* out, DWORD, BOOL inherit, DWORD options) {
    const Pin<Mapping> mapping(handle);
    if (!mapping) return FALSE;
    if (from != GetCurrentProcess() || to != from || out == nullptr || inherit != FALSE ||
        options != DUPLICATE_SAME_ACCESS) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (fault::Due(fault::Mapping)) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    mapping->references.fetch_add(1, std::memory_order_relaxed);
    HANDLE further = InsertHandle(Mapping::kind, *mapping);
    if (further == nullptr) {
        mapping->Release();
        return FALSE;
    }
    *out = further;
    return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
    const ObjectKind kind = ClaimedKind(handle) == ObjectKind::File ? ObjectKind::File : ObjectKind::Mapping;
    return CloseHandleOfKind(kind, handle) ? TRUE : FALSE;
}

} // namespace zkr::platform
