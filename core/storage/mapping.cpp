// Mappings over the platform's calls.
#include "core/storage/mapping.h"

#include "core/sizes.h"
#include "platform/memory.h"

namespace zkr::storage {

namespace {

bool MapWhole(HANDLE mapping, MappedView& view) {
    view = {};
    if (mapping == nullptr) return false;
    void* data = platform::MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0);
    if (data == nullptr) {
        platform::CloseHandle(mapping);
        return false;
    }
    view = {mapping, static_cast<uint8_t*>(data)};
    return true;
}

} // namespace

bool MapMemory(uint64_t bytes, MappedView& view) {
    view = {};
    if (!FitsSize(bytes)) return false;
    return MapWhole(platform::CreateFileMappingA(
                        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT | SEC_NOCACHE,
                        static_cast<uint32_t>(bytes >> 32), static_cast<uint32_t>(bytes), nullptr),
                    view);
}

bool MapFile(intptr_t file, MappedView& view) {
    return MapWhole(
        platform::CreateFileMappingA(reinterpret_cast<HANDLE>(file), nullptr, PAGE_READWRITE, 0, 0, nullptr),
        view);
}

void Unmap(MappedView& view) {
    if (view.View != nullptr) platform::UnmapViewOfFile(view.View);
    if (view.Mapping != nullptr) platform::CloseHandle(view.Mapping);
    view = {};
}

} // namespace zkr::storage
