// Global blocks, mappings and the system's figures.
#include "platform/files.h"
#include "platform/memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace zkr {
namespace {

using namespace platform;

constexpr DWORD Anonymous = PAGE_READWRITE | SEC_COMMIT | SEC_NOCACHE;

HANDLE MapAnonymous(uint64_t size) {
    return CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, Anonymous, static_cast<DWORD>(size >> 32),
                              static_cast<DWORD>(size), nullptr);
}

TEST(GlobalMemory, RefusesWhatIsNotALiveBlock) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 64);
    auto* bytes = static_cast<uint8_t*>(GlobalLock(block));
    int local = 0;
    EXPECT_EQ(GlobalHandle(bytes), block);
    EXPECT_EQ(GlobalHandle(bytes + 1), nullptr);
    EXPECT_EQ(GlobalHandle(&local), nullptr);
    EXPECT_EQ(GlobalHandle(reinterpret_cast<void*>(uintptr_t{4096})), nullptr); // not even readable
    EXPECT_EQ(GlobalLock(&local), nullptr);
    EXPECT_EQ(GlobalFree(bytes), bytes);
    GlobalFree(block);

    EXPECT_EQ(GlobalHandle(bytes), nullptr);
    EXPECT_EQ(GlobalLock(block), nullptr);
    EXPECT_EQ(GlobalReAlloc(block, 10, GMEM_MOVEABLE), nullptr);
    EXPECT_EQ(GlobalSize(block), 0u);
    EXPECT_EQ(GlobalFree(block), block);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Mapping, OfAnySizeIsZeroedAndHoldsItsBytes) {
    // Around the borders between heap, pages and huge pages.
    constexpr size_t sizes[] = {1, 65535, 65536, 100000, (2 << 20) - 1, 2 << 20, (36 << 20) + 31};
    for (const size_t size : sizes) {
        HANDLE mapping = MapAnonymous(size);
        ASSERT_NE(mapping, nullptr) << size;
        auto* view = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
        ASSERT_NE(view, nullptr) << size;
        EXPECT_TRUE(std::all_of(view, view + size, [](uint8_t byte) { return byte == 0; })) << size;
        std::memset(view, 0xA5, size);
        EXPECT_NE(CloseHandle(mapping), FALSE);
        EXPECT_EQ(std::count(view, view + size, 0xA5), static_cast<ptrdiff_t>(size)) << "view without handle";
        EXPECT_NE(UnmapViewOfFile(view), FALSE);
        EXPECT_EQ(UnmapViewOfFile(view), FALSE) << "no longer mapped";
    }
}

// Memory of the process in bytes, as the kernel counts it.
size_t AddressSpace() {
    FILE* file = std::fopen("/proc/self/statm", "r");
    size_t pages = 0;
    EXPECT_EQ(std::fscanf(file, "%zu", &pages), 1);
    std::fclose(file);
    return pages * 4096;
}

TEST(Mapping, GivesTheMemoryBackWhenHandleAndViewAreGone) {
    constexpr uint64_t size = uint64_t{6} << 30;
    const size_t before = AddressSpace();
    HANDLE mapping = MapAnonymous(size);
    auto* view = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_NE(view, nullptr);
    view[size - 1] = 1;
    EXPECT_GE(AddressSpace(), before + size);
    EXPECT_NE(UnmapViewOfFile(view), FALSE);
    CloseHandle(mapping);
    EXPECT_LT(AddressSpace(), before + (size_t{64} << 20));
}

} // namespace
} // namespace zkr
