// The arithmetic of views, held against pictures whose pixels are moved one by one.
#include "zkr13n/views.h"

#include "geometry/picture.h"
#include "zkr13n/locks.h"

namespace zkr::test {
namespace {

Picture Numbered(int width, int height) {
    return Picture::Made(width, height, [=](int x, int y) { return static_cast<uint64_t>(y * 100 + x); });
}

// From 1 to 8 the angle is one correction short of its range.
bool IsShort(int32_t from, int32_t to) {
    return from == 1 && to == 8;
}

TEST(Views, ParametersBringEveryViewIntoEveryOther) {
    const Picture stored = Numbered(5, 3);
    for (const int32_t from : AllViews)
        for (const int32_t to : AllViews) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            int32_t flip = 7, angle = 7;
            ASSERT_EQ(Z_GetChangeViewPerspectiveParams(static_cast<uint32_t>(from), static_cast<uint32_t>(to),
                                                       &flip, &angle),
                      1);
            EXPECT_EQ(angle < 0, IsShort(from, to));
            Picture moved = flip != 0 ? stored.Flipped() : stored;
            moved = moved.Turned((angle + 360) / 90 % 4);
            EXPECT_EQ(moved.Seen(to), stored.Seen(from));
        }
}

TEST(Views, ParametersOfChosenPairs) {
    const struct {
        uint32_t From, To;
        int32_t Flip, Angle;
    } cases[] = {{2, 0, 1, 0},   {0, 2, 1, 0},   {1, 0, 1, 180}, {1, 2, 0, 180},
                 {4, 8, 0, 180}, {8, 4, 0, 180}, {7, 7, 0, 0},   {1, 8, 1, -90}};
    for (const auto& c : cases) {
        int32_t flip = 9, angle = 9;
        EXPECT_EQ(Z_GetChangeViewPerspectiveParams(c.From, c.To, &flip, &angle), 1);
        EXPECT_EQ(flip, c.Flip) << c.From << " to " << c.To;
        EXPECT_EQ(angle, c.Angle) << c.From << " to " << c.To;
    }
    for (const uint32_t bad : {6u, 9u, 0xFFFFFFFFu}) {
        int32_t flip = 9, angle = 9;
        EXPECT_EQ(Z_GetChangeViewPerspectiveParams(bad, 0, &flip, &angle), -13);
        EXPECT_EQ(Z_GetChangeViewPerspectiveParams(0, bad, &flip, &angle), -13);
        EXPECT_EQ(flip + angle, 18);
    }
}

struct Moved {
    BitmapHandle Bitmap{};
    explicit Moved(int32_t view) {
        Z_InitBitmap(&Bitmap, 5, 3, 8);
        Bitmap.ViewPerspective = view;
    }
};

TEST(Views, PointsAndRectanglesGoWhereThePixelsGo) {
    const Picture stored = Numbered(5, 3);
    for (const int32_t from : AllViews)
        for (const int32_t to : AllViews) {
            if (IsShort(from, to) || from == to) continue;
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            Moved m(from);
            // What a viewer sees, stored in the other view: three moves back to front.
            Picture target;
            for (int turns = 0; turns < 4; ++turns)
                for (const Picture& candidate : {stored.Turned(turns), stored.Flipped().Turned(turns)})
                    if (candidate.Seen(to) == stored.Seen(from)) target = candidate;
            for (int32_t y = 0; y < 3; ++y)
                for (int32_t x = 0; x < 5; ++x) {
                    int32_t px = x, py = y;
                    ASSERT_EQ(Z_PointFromBitmap(&m.Bitmap, static_cast<uint32_t>(to), &px, &py), 1);
                    EXPECT_EQ(target.At(px, py), stored.At(x, y));
                    RECT r = {x, y, x + 1, y + 1};
                    ASSERT_EQ(Z_RectFromBitmap(&m.Bitmap, static_cast<uint32_t>(to), &r), 1);
                    EXPECT_EQ(r.left, px);
                    EXPECT_EQ(r.top, py);
                    EXPECT_EQ(r.right, px + 1);
                    EXPECT_EQ(r.bottom, py + 1);
                    // The size in views 5 and 7 is taken for that of a plain view.
                    const bool back = to != 5 && to != 7 && !IsShort(to, from);
                    ASSERT_EQ(Z_PointToBitmap(&m.Bitmap, static_cast<uint32_t>(to), &px, &py), 1);
                    if (back) {
                        EXPECT_EQ(px, x);
                        EXPECT_EQ(py, y);
                    }
                    ASSERT_EQ(Z_RectToBitmap(&m.Bitmap, static_cast<uint32_t>(to), &r), 1);
                    EXPECT_EQ(r.left, px);
                    EXPECT_EQ(r.top, py);
                }
        }
}

TEST(Views, TheSizeOfViewsFiveAndSevenIsThatOfAPlainView) {
    // Stored 5 wide, 3 high in view 0; seen in view 5 it is 3 wide, but taken for 5: back by flip and turn.
    Moved m(0);
    int32_t x = 0, y = 0;
    ASSERT_EQ(Z_PointToBitmap(&m.Bitmap, 5, &x, &y), 1);
    EXPECT_EQ(x, 0); // flip in height 3: (0, 2); turn by 90: (3 - 2 - 1, 0)
    EXPECT_EQ(y, 0);
    x = 0, y = 4;
    ASSERT_EQ(Z_PointToBitmap(&m.Bitmap, 7, &x, &y), 1);
    EXPECT_EQ(x, -2); // flip: (0, -2); turn by 270: (-2, 5 - 0 - 1)
    EXPECT_EQ(y, 4);
}

TEST(Views, WrongArgumentsChangeNothing) {
    Moved m(2);
    int32_t x = 1, y = 2;
    RECT r = {1, 2, 3, 4};
    EXPECT_EQ(Z_PointFromBitmap(nullptr, 0, &x, &y), -13);
    EXPECT_EQ(Z_PointFromBitmap(&m.Bitmap, 6, &x, &y), -13);
    EXPECT_EQ(Z_PointToBitmap(&m.Bitmap, 9, &x, &y), -13);
    EXPECT_EQ(Z_RectFromBitmap(&m.Bitmap, 6, &r), -13);
    EXPECT_EQ(Z_RectToBitmap(&m.Bitmap, 6, &r), -13);
    EXPECT_EQ(Z_ChangeRectViewPerspective(6, 5, 3, 0, &r), 1);
    m.Bitmap.ViewPerspective = 6;
    EXPECT_EQ(Z_PointFromBitmap(&m.Bitmap, 6, &x, &y), 1);
    EXPECT_EQ(Z_RectToBitmap(&m.Bitmap, 6, &r), 1);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 2);
    EXPECT_EQ(r.left * 1000 + r.top * 100 + r.right * 10 + r.bottom, 1234);
    EXPECT_EQ(Z_ChangeRectViewPerspective(2, 10, 20, 0, &r), 1);
    EXPECT_EQ(r.left * 10000 + r.top * 100 + r.right * 10 + r.bottom, 1 * 10000 + 16 * 100 + 3 * 10 + 18);
}

TEST(Views, FieldMovesAreThoseOfThePicture) {
    const Picture stored = Numbered(5, 3);
    for (const int32_t from : AllViews) {
        Moved m(from);
        EXPECT_EQ(Z_FlipBitmapViewPerspective(&m.Bitmap), 1);
        EXPECT_EQ(stored.Seen(m.Bitmap.ViewPerspective), stored.Seen(from).Flipped()) << from;
        m.Bitmap.ViewPerspective = from;
        EXPECT_EQ(Z_ReverseBitmapViewPerspective(&m.Bitmap), 1);
        EXPECT_EQ(stored.Seen(m.Bitmap.ViewPerspective), stored.Seen(from).Reversed()) << from;
        for (const int32_t degrees : {0, 90, 180, 270, -90, 720 + 90, INT32_MIN / 90 * 90}) {
            m.Bitmap.ViewPerspective = from;
            EXPECT_EQ(Z_RotateBitmapViewPerspective(&m.Bitmap, degrees), 1);
            EXPECT_EQ(stored.Seen(m.Bitmap.ViewPerspective),
                      stored.Seen(from).Turned((degrees / 90 % 4 + 4) % 4))
                << from << " by " << degrees;
        }
    }
}

TEST(Views, FieldMovesOfWhatIsNoView) {
    for (const int32_t bad : {6, 9, -1}) {
        Moved m(bad);
        EXPECT_EQ(Z_IntFlipBitmapViewPerspective(&m.Bitmap), 1);
        EXPECT_EQ(Z_IntReverseBitmapViewPerspective(&m.Bitmap), 1);
        EXPECT_EQ(Z_RotateBitmapViewPerspective(&m.Bitmap, 45), -13);
        EXPECT_EQ(Z_RotateBitmapViewPerspective(&m.Bitmap, 0), 1);
        EXPECT_EQ(m.Bitmap.ViewPerspective, bad);
        EXPECT_EQ(Z_RotateBitmapViewPerspective(&m.Bitmap, 180), 1);
        EXPECT_EQ(m.Bitmap.ViewPerspective, -13);
    }
    EXPECT_EQ(Z_FlipBitmapViewPerspective(nullptr), -2);
    EXPECT_EQ(Z_ReverseBitmapViewPerspective(nullptr), -2);
    EXPECT_EQ(Z_RotateBitmapViewPerspective(nullptr, 45), -2);
    Z_SetSupportLocks(1u << Z_SUPPORT_DOCUMENT);
    Moved m(0);
    EXPECT_EQ(Z_FlipBitmapViewPerspective(nullptr), -143);
    EXPECT_EQ(Z_ReverseBitmapViewPerspective(nullptr), -143);
    EXPECT_EQ(Z_RotateBitmapViewPerspective(&m.Bitmap, 90), -143);
    EXPECT_EQ(Z_IntRotateBitmapViewPerspective(&m.Bitmap, 90), 1);
    EXPECT_EQ(m.Bitmap.ViewPerspective, 4);
    Z_SetSupportLocks(0);
}

} // namespace
} // namespace zkr::test
