// Both allocators: blocks that grow and shrink, sizes that no memory holds.
#include "platform/faults.h"
#include "zkr13n/allocation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

namespace fault = zkr::platform::fault;

bool IsFilledWith(const void* bytes, size_t from, size_t to, uint8_t value) {
    const auto* first = static_cast<const uint8_t*>(bytes);
    return std::all_of(first + from, first + to, [=](uint8_t byte) { return byte == value; });
}

TEST(Allocation, ProductsThatDoNotFitAreRefused) {
    EXPECT_EQ(Z_Calloc(SIZE_MAX / 2 + 2, 2), nullptr);
    EXPECT_EQ(Z_Calloc(2, SIZE_MAX / 2 + 2), nullptr);
    void* cleared = Z_Calloc(3, 100);
    ASSERT_NE(cleared, nullptr);
    EXPECT_TRUE(IsFilledWith(cleared, 0, 300, 0));
    Z_Free(cleared);
    Z_Free(nullptr);
}

// A block keeps what it held whatever road it was resized by, and new bytes are zero where that is promised.
TEST(Allocation, BlocksKeepTheirContent) {
    for (size_t size : {size_t{1}, size_t{40}, size_t{5000}, size_t{3000000}}) {
        void* block = Z_OsReAllocInit(nullptr, size);
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(IsFilledWith(block, 0, size, 0));
        std::memset(block, 0x5A, size);
        block = Z_OsReAllocInit(block, 3 * size);
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(IsFilledWith(block, 0, size, 0x5A));
        EXPECT_TRUE(IsFilledWith(block, size, 3 * size, 0));
        block = Z_OsReAlloc(block, size / 2 + 1);
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(IsFilledWith(block, 0, std::min(size, size / 2 + 1), 0x5A));
        EXPECT_EQ(Z_OsFree(block), 0);
    }
}

TEST(Allocation, EmptyBlocksCanBeResizedAndFreed) {
    void* block = Z_OsAllocInit(0, 1);
    ASSERT_NE(block, nullptr);
    block = Z_OsReAlloc(block, 100);
    ASSERT_NE(block, nullptr);
    block = Z_OsReAlloc(block, 0);
    ASSERT_NE(block, nullptr);
    Z_OsFree(block);
    EXPECT_EQ(Z_OsFree(nullptr), 0);
}

TEST(Allocation, AResizeToNothingReleasesAWorkingBuffer) {
    const int64_t alive = fault::Live();
    void* buffer = Z_Malloc(8);
    EXPECT_EQ(fault::Live(), alive + 1);
    EXPECT_EQ(Z_Realloc(buffer, 0), nullptr);
    EXPECT_EQ(fault::Live(), alive);
}

} // namespace
