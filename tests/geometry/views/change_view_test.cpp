// The physical change of view, and how regions are told of it and of flips and turns.
#include "core/reports.h"
#include "geometry/picture.h"
#include "geometry/slots.h"
#include "zkr13n/flip.h"
#include "zkr13n/locks.h"
#include "zkr13n/rotate.h"

namespace zkr::test {
namespace {

struct Plain : Bitmap {
    Plain(int32_t width, int32_t height, int32_t bits, int32_t view, uint32_t seed = 1)
        : Bitmap(width, height, bits) {
        ViewPerspective = view;
        Z_AllocateBitmap(this, MemoryConventional);
        Fill(*this, seed);
    }
};

TEST(ChangeView, ThePictureStays) {
    uint32_t seed = 0;
    for (const int32_t bits : {1, 3, 24})
        for (const Storage& storage : GeometryStorages(bits))
            for (const int32_t from : AllViews)
                for (const int32_t to : AllViews) {
                    SCOPED_TRACE(testing::Message()
                                 << bits << " bits in " << storage.Name << " from " << from << " to " << to);
                    Bitmap bitmap(21, 5, bits), target;
                    Bytes data;
                    Allocate(bitmap, storage, data);
                    Fill(bitmap, ++seed);
                    bitmap.ViewPerspective = from;
                    const Picture stored = Picture::Of(bitmap), seen = stored.Seen(from);
                    ASSERT_EQ(Z_ChangeBitmapViewPerspective(&target, &bitmap, to), 1);
                    ASSERT_EQ(Picture::Of(target).Seen(to), seen);
                    EXPECT_EQ(target.ViewPerspective, to);
                    ASSERT_EQ(Picture::Of(bitmap), stored);
                    ASSERT_EQ(Z_ChangeBitmapViewPerspective(&bitmap, &bitmap, to), 1);
                    ASSERT_EQ(Picture::Of(bitmap).Seen(to), seen);
                    EXPECT_EQ(bitmap.ViewPerspective, to);
                }
}

TEST(ChangeView, WrongArguments) {
    Plain bitmap(4, 3, 8, 2);
    Bitmap target, empty(4, 3, 8);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(&target, nullptr, 0), -13);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(&target, &empty, 0), -13);
    EXPECT_EQ(Z_IntChangeBitmapViewPerspective(&target, nullptr, 0, 7), -13);
    EXPECT_EQ(Z_IntChangeBitmapViewPerspective(nullptr, &empty, 0, 0), -2);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(&target, &bitmap, 6), -13);
    EXPECT_EQ(target.Flags & flag::Allocated, 0u);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &bitmap, 9), -13);
    EXPECT_EQ(Z_IntChangeBitmapViewPerspective(&target, &bitmap, 0, 6), -2);
    EXPECT_EQ(bitmap.ViewPerspective, 2);
    bitmap.ViewPerspective = 6;
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &bitmap, 6), 1);
    Z_SetSupportLocks(1u << Z_SUPPORT_DOCUMENT);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &bitmap, 4), -143);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &empty, 4), -13);
    bitmap.ViewPerspective = 2;
    EXPECT_EQ(Z_IntChangeBitmapViewPerspective(nullptr, &bitmap, 4, 0), 1);
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &bitmap, 1), 1);
    Z_SetSupportLocks(0);
}

TEST(ChangeView, OnlyTheCopyReports) {
    Plain bitmap(4, 30, 8, 2);
    Bitmap target;
    const Reports status(Z_SetStatusCallBack);
    intptr_t userData = 0;
    const StatusCallback callback = Z_GetStatusCallBack(&userData);
    {
        const Reports copied(Z_SetCopyStatusCallBack);
        ASSERT_EQ(Z_ChangeBitmapViewPerspective(&target, &bitmap, 7), 1);
        EXPECT_EQ(copied.Seen.back(), 100);
    }
    const Reports stopped(Z_SetCopyStatusCallBack, 3);
    Bitmap other;
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(&other, &bitmap, 7), Reports::Stopped);
    EXPECT_EQ(other.Flags & flag::Allocated, 0u);
    EXPECT_TRUE(status.Seen.empty());
    intptr_t kept = 0;
    EXPECT_EQ(Z_GetStatusCallBack(&kept), callback);
    EXPECT_EQ(kept, userData);
}

TEST(Regions, AreToldOfEveryMove) {
    const NotedSlots slots;
    Plain bitmap(4, 3, 8, 0), row(4, 1, 8, 0);
    const auto calls = [] { return std::exchange(NotedSlots::Calls, ""); };
    EXPECT_EQ(Z_FlipBitmap(&bitmap), 1);
    EXPECT_EQ(calls(), "flip in 4 x 3; ");
    EXPECT_EQ(Z_ReverseBitmap(&bitmap), 1);
    EXPECT_EQ(calls(), "reverse in 4 x 3; ");
    EXPECT_EQ(Z_FlipBitmap(&row), 1);
    EXPECT_EQ(calls(), "flip in 4 x 1; ");
    EXPECT_EQ(Z_RotateBitmap(&bitmap, -18000, 0, 0), 1);
    EXPECT_EQ(calls(), "turn by 18000 of 4 x 3 in 4 x 3; ");
    EXPECT_EQ(Z_RotateBitmap(&bitmap, 9000, ROTATE_RESIZE, 0), 1);
    EXPECT_EQ(calls(), "turn by 9000 of 4 x 3 in 3 x 4; ");
    bitmap.ViewPerspective = 2;
    EXPECT_EQ(Z_RotateBitmap90(&bitmap, 0, 0, 100), 1);
    EXPECT_EQ(calls(), "turn by -9000 of 3 x 4 in 4 x 3; ");
    EXPECT_EQ(Z_RotateBitmap(&bitmap, -36450, 0, 0), 1);
    EXPECT_EQ(calls(), "turn by -36450 of 4 x 3 in 4 x 3; ");
    EXPECT_EQ(Z_RotateBitmap(&bitmap, 36000, 0, 0), 1);
    EXPECT_EQ(calls(), "");
    EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &bitmap, 5), 1);
    EXPECT_EQ(calls(), "turn by 9000 of 4 x 3 in 3 x 4; ");
}

TEST(Regions, FailuresAreResults) {
    const NotedSlots slots;
    Plain bitmap(4, 3, 8, 0);
    const Picture before = Picture::Of(bitmap);
    NotedSlots::Result = -1;
    EXPECT_EQ(Z_FlipBitmap(&bitmap), -1);
    EXPECT_EQ(Picture::Of(bitmap), before.Flipped());
    NotedSlots::Result = 1;
    EXPECT_EQ(Z_FlipBitmap(&bitmap), 1);
    NotedSlots::Result = -1;
    EXPECT_EQ(Z_RotateBitmap90(&bitmap, 0, 0, 100), -1);
    EXPECT_EQ(Z_RotateBitmap(&bitmap, 100, 0, 0), -1);
    EXPECT_EQ(Picture::Of(bitmap), before);
    for (const int32_t view : {2, 3, 4, 5, 8}) { // by a flip, by turns, by both
        EXPECT_EQ(Z_ChangeBitmapViewPerspective(nullptr, &bitmap, view), -1);
        EXPECT_EQ(Picture::Of(bitmap), before) << view;
        EXPECT_EQ(bitmap.ViewPerspective, 0);
    }
    NotedSlots::Result = 1;
    NotedSlots::Calls.clear();
    int region = 0;
    bitmap.Region = &region;
    Bitmap target;
    EXPECT_EQ(Z_IntChangeBitmapViewPerspective(&target, &bitmap, 2, Z_DUP_DATA | Z_DUP_PALETTE), 1);
    EXPECT_EQ(NotedSlots::Calls, "flip in 4 x 3; ") << "a region that is only shared does not move";
    EXPECT_EQ(target.Region, &region);
    target.Region = bitmap.Region = nullptr;
}

} // namespace
} // namespace zkr::test
