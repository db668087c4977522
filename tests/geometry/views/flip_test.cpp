// Flips and reverses of stored pixels at every depth, in every view and storage class.
#include "zkr13n/flip.h"

#include "core/reports.h"
#include "geometry/picture.h"

#include <algorithm>

namespace zkr::test {
namespace {

struct Move {
    ReturnCode(Z_CALL* Call)(BitmapHandle*);
    Picture (Picture::*Model)() const;
};
constexpr Move Moves[] = {{Z_FlipBitmap, &Picture::Flipped}, {Z_ReverseBitmap, &Picture::Reversed}};

TEST(Flip, EveryDepthAndStorage) {
    uint32_t seed = 0;
    for (const int32_t bits : AllDepths)
        for (const Storage& storage : GeometryStorages(bits))
            for (const int32_t height : {1, 7, 38}) {
                const int32_t width = 1 + static_cast<int32_t>(seed * 7 % 45);
                SCOPED_TRACE(testing::Message()
                             << bits << " bits in " << storage.Name << ", " << width << " x " << height);
                Bitmap bitmap(width, height, bits);
                Bytes data;
                Allocate(bitmap, storage, data);
                Fill(bitmap, ++seed);
                const size_t size = bitmap.Size;
                for (const int32_t view : {2, 7})
                    for (const Move& move : Moves) {
                        const Picture before = Picture::Of(bitmap).Seen(view);
                        bitmap.ViewPerspective = view;
                        ASSERT_EQ(move.Call(&bitmap), 1);
                        ASSERT_EQ(Picture::Of(bitmap).Seen(view), (before.*move.Model)());
                    }
                if (storage.Type == (MemoryCompressed | MemoryConventional)) {
                    EXPECT_EQ(bitmap.Size, size);
                }
            }
}

TEST(Flip, PaddingGoesWithItsRow) {
    Bitmap bitmap(3, 4, 24);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    Bytes rows = Fill(bitmap, 5);
    ASSERT_EQ(Z_FlipBitmap(&bitmap), 1);
    for (size_t row = 0; row < 2; ++row)
        std::swap_ranges(rows.begin() + static_cast<ptrdiff_t>(row * 12),
                         rows.begin() + static_cast<ptrdiff_t>(row * 12 + 12),
                         rows.begin() + static_cast<ptrdiff_t>((3 - row) * 12));
    EXPECT_EQ(Rows(bitmap), rows);
}

// The pixels of a flip or reverse of which so many reports were heard: rows or pairs up to there are done.
TEST(Flip, StopsWhereTheCallbackSays) {
    constexpr int32_t height = 40;
    for (const Storage& storage : GeometryStorages(24))
        for (const bool reverses : {false, true})
            for (const size_t stopAt : {0u, 1u, 3u, 17u}) {
                SCOPED_TRACE(testing::Message() << storage.Name << " stopped at " << stopAt);
                Bitmap bitmap(9, height, 24);
                Bytes data;
                Allocate(bitmap, storage, data);
                Fill(bitmap, 3);
                const Picture before = Picture::Of(bitmap);
                const Picture whole = reverses ? before.Reversed() : before.Flipped();
                const Reports reports(Z_SetStatusCallBack, stopAt);
                ASSERT_EQ((reverses ? Z_ReverseBitmap : Z_FlipBitmap)(&bitmap), Reports::Stopped);
                const auto done = static_cast<int>(stopAt);
                const Picture expected = Picture::Made(9, height, [&](int x, int y) {
                    const int place = reverses ? y : std::min(y, height - 1 - y);
                    return (place < done ? whole : before).At(x, y);
                });
                EXPECT_EQ(Picture::Of(bitmap), expected);
                EXPECT_EQ(reports.Seen.size(), stopAt + 1);
                EXPECT_EQ(reports.Seen[0], 0);
                EXPECT_EQ(reports.Seen.back(),
                          done * (reverses ? 100 / height : 200 / height) + done / 2 * reverses);
            }
}

TEST(Flip, ReportsEndAtHundred) {
    Bitmap bitmap(4, 7, 8);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    {
        const Reports reports(Z_SetStatusCallBack);
        ASSERT_EQ(Z_FlipBitmap(&bitmap), 1);
        EXPECT_EQ(reports.Seen, (std::vector<int32_t>{0, 33, 66, 100}));
    }
    Bitmap row(4, 1, 8);
    ASSERT_EQ(Z_AllocateBitmap(&row, MemoryConventional), 1);
    const Reports reports(Z_SetStatusCallBack);
    ASSERT_EQ(Z_FlipBitmap(&row), 1);
    EXPECT_EQ(reports.Seen, std::vector<int32_t>{});
}

TEST(Flip, LooksAtTheViewBeforeTheStorage) {
    Bitmap bitmap(4, 7, 8);
    EXPECT_EQ(Z_FlipBitmap(nullptr), -2);
    EXPECT_EQ(Z_ReverseBitmap(nullptr), -2);
    EXPECT_EQ(Z_FlipBitmap(&bitmap), -2);
    EXPECT_EQ(Z_ReverseBitmap(&bitmap), -2);
    bitmap.ViewPerspective = 6;
    EXPECT_EQ(Z_FlipBitmap(&bitmap), -13);
    ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
    Fill(bitmap, 1);
    const Picture before = Picture::Of(bitmap);
    EXPECT_EQ(Z_FlipBitmap(&bitmap), -13);
    EXPECT_EQ(Z_ReverseBitmap(&bitmap), 1);
    EXPECT_EQ(Picture::Of(bitmap), before.Reversed());
}

} // namespace
} // namespace zkr::test
