// Threads at work on bitmaps of their own, each through all that they share without knowing: handles, blocks, views,
// files, filter modules, the records of threads, the dispatch table, the choice of kernels. Threads come and go, and
// the library is stopped again and again. Each must come to what it comes to alone; ThreadSanitizer tells the rest.
#include "parity/digest.h"
#include "zkr13n.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace zkr::test {

void Digest::AddRecord(const BitmapHandle& bitmap) {
    Add(bitmap.Width);
    Add(bitmap.Height);
    Add(bitmap.BitsPerPixel);
    Add(bitmap.BytesPerLine);
}

namespace {

struct Bitmap : BitmapHandle {
    Bitmap() : BitmapHandle{} {}
    ~Bitmap() { Z_FreeBitmap(this); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
};

void AddPixels(Digest& digest, BitmapHandle& bitmap) {
    digest.AddRecord(bitmap);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    Z_AccessBitmap(&bitmap);
    for (int32_t y = 0; y < bitmap.Height; ++y) {
        digest.Add(Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine));
        const int32_t bits = bitmap.BitsPerPixel;
        digest.Add(row.data(),
                   static_cast<size_t>(bitmap.Width * bits / 8)); // bits behind the pixels are free
    }
    Z_ReleaseBitmap(&bitmap);
}

void MakePicture(Seeded& seeded, Bitmap& bitmap) {
    constexpr int32_t types[] = {MemoryConventional, MemoryDisk, MemoryTiled,
                                 MemoryCompressed | MemoryConventional,
                                 MemorySuperCompressed | MemoryConventional};
    constexpr int32_t depths[] = {1, 4, 8, 16, 24, 32, 48};
    const int32_t bits = depths[seeded.Below(int{std::size(depths)})];
    const int32_t order = bits > 8 ? Z_ORDER_BGR : Z_ORDER_RGB;
    EXPECT_EQ(Z_CreateBitmap(&bitmap, types[seeded.Below(int{std::size(types)})], seeded.Between(1, 150),
                             seeded.Between(1, 60), bits, order, nullptr, VIEW_BOTTOM_LEFT, nullptr, 0),
              Z_SUCCESS);
    std::vector<uint8_t> row(bitmap.BytesPerLine);
    for (int32_t y = 0; y < bitmap.Height; ++y) {
        for (uint8_t& byte : row)
            byte = static_cast<uint8_t>(y * 3 + seeded.Below(40));
        Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
    }
}

ReturnCode Work(Seeded& seeded, Bitmap& bitmap, Bitmap& other) {
    switch (seeded.Below(9)) {
    case 0: return Z_CopyBitmap(&other, &bitmap);
    case 1: return Z_CopyBitmapRect(&other, &bitmap, seeded.Between(-9, 9), 2, seeded.Between(1, 40), 9);
    case 2: return Z_ColorResBitmap(&bitmap, &other, 8, 1u << 16, nullptr, nullptr, 0, nullptr, 0);
    case 3:
        return Z_ColorResBitmap(&bitmap, &bitmap, 24, COLORRES_ORDER_BGR, nullptr, nullptr, 0, nullptr, 0);
    case 4: return Z_GrayScaleBitmap(&bitmap, 8);
    case 5: return Z_FillBitmap(&bitmap, static_cast<uint32_t>(seeded.Next() & 0xFFFFFF));
    case 6: return Z_PutPixelColor(&bitmap, 0, 0, 0x123456);
    case 7: return Z_SetBitmapMemoryInfo(&bitmap, MemoryConventional, 0, 0, 0, 0, 0, Z_MEMORY_INFO_TYPE);
    default: {
        uint32_t colours = 0;
        const ReturnCode counted = Z_GetBitmapColorCountExt(&bitmap, &colours, nullptr);
        return counted == Z_SUCCESS ? static_cast<ReturnCode>(colours) : counted;
    }
    }
}

uint64_t Play(uint64_t seed, int rounds) {
    Seeded seeded(seed);
    Digest digest;
    for (int round = 0; round < rounds; ++round) {
        Bitmap bitmap;
        MakePicture(seeded, bitmap);
        for (int step = 0; step < 3; ++step) {
            Bitmap other;
            digest.Add(Work(seeded, bitmap, other));
            if ((other.Flags & Z_FLAG_ALLOCATED) != 0) AddPixels(digest, other);
        }
        AddPixels(digest, bitmap);
    }
    return digest.Value();
}

TEST(MixedThreads, ComeToWhatEachComesToAlone) {
    constexpr int players = 4, games = 6, rounds = 6;
    uint64_t expected[players];
    for (int player = 0; player < players; ++player)
        std::thread([&, player] { expected[player] = Play(static_cast<uint64_t>(player), rounds); }).join();

    std::atomic<bool> done = false;
    std::thread stopper([&] {
        while (!done) {
            Z_GetDefaultDithering();
            Z_IntShutdown();
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> threads;
    for (int player = 0; player < players; ++player)
        threads.emplace_back([&, player] {
            for (int game = 0; game < games; ++game) // each in a thread that ends with it
                std::thread([&] {
                    EXPECT_EQ(Play(static_cast<uint64_t>(player), rounds), expected[player]);
                }).join();
        });
    for (std::thread& thread : threads)
        thread.join();
    done = true;
    stopper.join();
}

} // namespace
} // namespace zkr::test
