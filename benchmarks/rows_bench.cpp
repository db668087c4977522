// Rows in and out of a bitmap, against memcpy of the same bytes.
#include "pictures.h"
#include "work.h"

#include <cstring>
#include <vector>

namespace bench {

namespace {

std::vector<uint8_t>& RowBuffer() {
    static std::vector<uint8_t> row(size_t{PhotographWidth} * 3, 1);
    return row;
}

void PutAll(BitmapHandle* bitmap) {
    for (int32_t y = 0; y < bitmap->Height; ++y)
        Z_PutBitmapRow(bitmap, RowBuffer().data(), y, bitmap->BytesPerLine);
    Touch(RowBuffer().data());
}

void GetAll(BitmapHandle* bitmap) {
    for (int32_t y = 0; y < bitmap->Height; ++y)
        Z_GetBitmapRow(bitmap, RowBuffer().data(), y, bitmap->BytesPerLine);
    Touch(RowBuffer().data());
}

// The peer works on the same rows in plain memory.
std::vector<uint8_t>& PlainMemory() {
    static std::vector<uint8_t> memory(PhotographPixels * 3, 1);
    return memory;
}

void CopyIn(int32_t rows) {
    const size_t bytes = size_t{PhotographWidth} * 3;
    for (int32_t y = 0; y < rows; ++y)
        std::memcpy(&PlainMemory()[static_cast<size_t>(y) * bytes], RowBuffer().data(), bytes);
    Touch(PlainMemory().data());
}

void CopyOut(int32_t rows) {
    const size_t bytes = size_t{PhotographWidth} * 3;
    for (int32_t y = 0; y < rows; ++y) {
        std::memcpy(RowBuffer().data(), &PlainMemory()[static_cast<size_t>(y) * bytes], bytes);
        Touch(RowBuffer().data());
    }
}

BitmapHandle* UserBitmap() {
    static BitmapHandle bitmap;
    static std::vector<uint8_t> memory(PhotographPixels * 3, 1);
    if ((bitmap.Flags & Z_FLAG_ALLOCATED) == 0)
        Z_CreateBitmap(&bitmap, MemoryUser, PhotographWidth, PhotographHeight, 24, Z_ORDER_BGR, nullptr, 2,
                       memory.data(), memory.size());
    return &bitmap;
}

// Tiles of 1 MiB, all of them in mapped memory.
BitmapHandle* TiledBitmap() {
    static BitmapHandle bitmap;
    if ((bitmap.Flags & Z_FLAG_ALLOCATED) == 0) {
        int32_t tileSize = 0;
        Z_GetMemoryThresholds(nullptr, nullptr, &tileSize, nullptr, nullptr);
        Z_SetMemoryThresholds(0, 0, 1 << 20, 0, 0, Z_THRESHOLD_TILE_SIZE);
        Z_CreateBitmap(&bitmap, MemoryTiled, PhotographWidth, PhotographHeight, 24, Z_ORDER_BGR, nullptr, 2,
                       nullptr, 0);
        Z_SetMemoryThresholds(0, 0, tileSize, 0, 0, Z_THRESHOLD_TILE_SIZE);
        PutAll(&bitmap);
    }
    return &bitmap;
}

constexpr int32_t SmallHeight = 32; // 384 KB: stays in the cache

void AddRows(WorkNumber put, WorkNumber get, const char* what, double ratio, BitmapHandle* (*bitmap)(),
             int32_t rows) {
    const size_t pixels = size_t{PhotographWidth} * static_cast<size_t>(rows);
    AddWork(put, {std::string("put rows, ") + what, pixels, pixels * 6, [=] { PutAll(bitmap()); }});
    AddPeer(put, {"memcpy", ratio, [=] { CopyIn(rows); }});
    AddWork(get, {std::string("get rows, ") + what, pixels, pixels * 6, [=] { GetAll(bitmap()); }});
    AddPeer(get, {"memcpy", ratio, [=] { CopyOut(rows); }});
}

const Adds adds([] {
    AddRows(
        PutRow, GetRow, "conventional", 0.9,
        [] { return EmptyBitmap(PhotographWidth, PhotographHeight, 24, Z_ORDER_BGR); }, PhotographHeight);
    AddRows(
        PutRowSmall, GetRowSmall, "conventional, in cache", 0.9,
        [] { return EmptyBitmap(PhotographWidth, SmallHeight, 24, Z_ORDER_BGR); }, SmallHeight);
    AddRows(PutRowUser, GetRowUser, "user", 0.9, UserBitmap, PhotographHeight);
    AddRows(PutRowTile, GetRowTile, "mapped tiles", 0.8, TiledBitmap, PhotographHeight);
});

} // namespace

} // namespace bench
