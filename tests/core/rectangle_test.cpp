// Views, rectangles and cuts: the few cases where their arithmetic could wrap or mistake an empty one.
#include "core/rectangle.h"
#include "core/views.h"

#include <gtest/gtest.h>

using namespace zkr;

namespace {

constexpr int32_t Most = INT32_MAX, Least = INT32_MIN;

TEST(Views, SetsFollowWhatAViewIsMadeOf) {
    for (int32_t value = -3; value < 12; ++value) {
        EXPECT_EQ(IsView(value), value >= 0 && value <= 8 && value != 6) << value;
        if (!IsView(value)) {
            EXPECT_FALSE(ExchangesAxes(value) || IsMirroredView(value)) << value;
            continue;
        }
        const ViewParts parts = PartsOf(value);
        EXPECT_EQ(IsMirroredView(value), parts.IsTurned ^ parts.ReversesX ^ parts.ReversesY) << value;
    }
    EXPECT_TRUE(DifferInRowOrderAtMost(2, 0));
    EXPECT_TRUE(DifferInRowOrderAtMost(6, 6));
    EXPECT_FALSE(DifferInRowOrderAtMost(0, 1));
}

TEST(Rectangles, EdgesDoNotWrap) {
    const PixelRect distant = PixelRect::At(Most - 1, 10, Most, 5);
    EXPECT_EQ(distant, (PixelRect{Most - 1, 10, Most, 15}));
    EXPECT_EQ((PixelRect{Least, 0, Most, 1}.Width()), 0xFFFFFFFF);
    EXPECT_TRUE((PixelRect{5, 5, 5, 9}.IsEmpty()));
    EXPECT_EQ(Intersection({0, 0, 5, 5}, {5, 0, 9, 9}), PixelRect{});
    EXPECT_EQ(Intersection({-4, 2, 5, 5}, {0, 0, 9, 4}), (PixelRect{0, 2, 5, 4}));
    EXPECT_EQ(Union({7, 7, 7, 9}, {1, 2, 3, 4}), (PixelRect{1, 2, 3, 4}));
    EXPECT_EQ(Union({0, 0, 1, 1}, {-5, 9, 3, 12}), (PixelRect{-5, 0, 3, 12}));

    PixelRect moved{1, 2, 3, 4};
    EXPECT_FALSE(Move(moved, 0, Most - 3));
    EXPECT_EQ(moved, (PixelRect{1, 2, 3, 4}));
    EXPECT_TRUE(Move(moved, Least, Most - 4));
    EXPECT_EQ(moved, (PixelRect{Least + 1, Most - 2, Least + 3, Most}));
}

TEST(Rectangles, CutsKeepWhatLiesOnTheLine) {
    const struct {
        int32_t Start;
        int64_t Length;
        int32_t Size, From;
        int64_t Count, Offset;
    } cases[] = {{2, 3, 10, 2, 3, 0},
                 {-4, 6, 10, 0, 2, 4},
                 {8, 6, 10, 8, 2, 0},
                 {12, 3, 10, 12, 0, 0},
                 {-4, 3, 10, 0, 0, 4},
                 {3, -2, 10, 3, 0, 0},
                 {Most, Most, 9, Most, 0, 0},
                 {Least, 2ll * Most, 5, 0, 5, 1ll << 31},
                 {1, Most, Most, 1, Most - 1, 0}};
    for (const auto& c : cases) {
        const Cut cut(c.Start, c.Length, c.Size);
        EXPECT_EQ(cut.From, c.From) << c.Start;
        EXPECT_EQ(cut.Count, c.Count) << c.Start;
        EXPECT_EQ(cut.Offset, c.Offset) << c.Start;
    }
}

} // namespace
