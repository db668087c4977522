// Bitmap lists: order against a plain vector, all refusals, copies and moves with their cuts.
#include "zkr13n/lists.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr uint32_t ToEnd = UINT32_MAX;

// A record without storage; its width tells it from others.
BitmapHandle Named(int32_t name) {
    BitmapHandle record{};
    record.Width = name;
    return record;
}

std::vector<int32_t> NamesIn(BitmapList list) {
    std::vector<int32_t> names;
    uint32_t count = 0;
    EXPECT_EQ(Z_GetBitmapListCount(list, &count), Z_SUCCESS);
    for (uint32_t index = 0; index < count; ++index) {
        BitmapHandle record;
        EXPECT_EQ(Z_GetBitmapListItem(list, index, &record), Z_SUCCESS);
        names.push_back(record.Width);
    }
    return names;
}

BitmapList ListOf(const std::vector<int32_t>& names) {
    BitmapList list = nullptr;
    EXPECT_EQ(Z_CreateBitmapList(&list), Z_SUCCESS);
    for (int32_t name : names) {
        const BitmapHandle record = Named(name);
        EXPECT_EQ(Z_InsertBitmapListItem(list, ToEnd, &record), Z_SUCCESS);
    }
    return list;
}

TEST(Lists, RefuseBadArguments) {
    BitmapHandle record = Named(7);
    BitmapList out = nullptr, three = ListOf({1, 2, 3}), empty = ListOf({});
    const ReturnCode refused[] = {
        Z_CreateBitmapList(nullptr),
        Z_DestroyBitmapList(nullptr),
        Z_GetBitmapListCount(three, nullptr),
        Z_GetBitmapListItem(three, 0, nullptr),
        Z_GetBitmapListItem(empty, 0, &record),
        Z_InsertBitmapListItem(nullptr, 0, &record),
        Z_RemoveBitmapListItem(three, ToEnd, nullptr),
        Z_DeleteBitmapListItems(three, 3, 1),
        Z_DeleteBitmapListItems(three, 0, 0),
        Z_DeleteBitmapListItems(empty, 0, ToEnd),
        Z_CopyBitmapListItems(&out, three, 3, 1),
        Z_CopyBitmapListItems(&out, three, 0, 0),
        Z_CopyBitmapListItems(nullptr, three, 0, 1),
        Z_CopyBitmapListItems(&out, three, 0, 1), // a record without storage cannot be copied
        Z_MoveBitmapListItems(&out, three, 3, 0),
        Z_MoveBitmapListItems(nullptr, three, 0, 1),
    };
    for (size_t index = 0; index < std::size(refused); ++index)
        EXPECT_EQ(refused[index], Z_ERROR_ARGUMENT) << "call " << index;
    EXPECT_EQ(record.Width, 7);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(NamesIn(three), (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(Z_DestroyBitmapList(three), Z_SUCCESS);
    EXPECT_EQ(Z_DestroyBitmapList(empty), Z_SUCCESS);
}

// Random operations on a list and on a vector.
TEST(Lists, BehaveLikeAVector) {
    std::mt19937 random(1);
    const auto below = [&](size_t limit) { return static_cast<uint32_t>(random() % limit); };
    std::vector<int32_t> model;
    BitmapList list = ListOf({});
    for (int32_t name = 1; name <= 4000; ++name) {
        const BitmapHandle record = Named(name);
        const bool cleared = below(8) == 0; // what a null stands for
        const BitmapHandle* given = cleared ? nullptr : &record;
        const uint32_t index = below(model.size() + 3);
        const auto valid = index < model.size();
        const auto place = model.begin() + std::min<ptrdiff_t>(index, std::ssize(model));
        const uint32_t count = below(6) == 0 ? ToEnd : 1 + below(5);
        const auto end = place + static_cast<ptrdiff_t>(std::min<int64_t>(count, model.end() - place));
        switch (below(9)) {
        case 0:
            if (Z_DeleteBitmapListItems(list, index, count) == Z_SUCCESS) model.erase(place, end);
            break;
        case 1: {
            BitmapHandle removed = Named(-1);
            ASSERT_EQ(Z_RemoveBitmapListItem(list, index, &removed) == Z_SUCCESS, valid);
            ASSERT_EQ(removed.Width, valid ? *place : -1);
            if (valid) model.erase(place);
            break;
        }
        case 2:
            ASSERT_EQ(Z_SetBitmapListItem(list, index, given) == Z_SUCCESS, valid);
            if (valid) *place = cleared ? 0 : name;
            break;
        case 3: {
            BitmapList moved = nullptr;
            const bool possible = index <= model.size();
            ASSERT_EQ(Z_MoveBitmapListItems(&moved, list, index, count) == Z_SUCCESS, possible);
            if (!possible) break;
            ASSERT_EQ(NamesIn(moved), std::vector<int32_t>(place, end));
            model.erase(place, end);
            ASSERT_EQ(Z_DestroyBitmapList(moved), Z_SUCCESS);
            break;
        }
        default:
            ASSERT_EQ(Z_InsertBitmapListItem(list, index, given), Z_SUCCESS);
            model.insert(place, cleared ? 0 : name);
        }
        ASSERT_EQ(NamesIn(list), model) << "after step " << name;
    }
    Z_DestroyBitmapList(list);
}

// Five bitmaps of four pixels, each pixel the bitmap's number.
class ListsWithPixels : public ::testing::Test {
  protected:
    void SetUp() override {
        for (uint8_t pixel = 0; pixel < 5; ++pixel) {
            BitmapHandle bitmap;
            ASSERT_EQ(Z_CreateBitmap(&bitmap, MemoryConventional, 4, 1, 8, 0, nullptr, 2, nullptr, 0),
                      Z_SUCCESS);
            std::memset(bitmap.Addr, pixel, 4);
            ASSERT_EQ(Z_InsertBitmapListItem(list_, ToEnd, &bitmap), Z_SUCCESS);
        }
    }
    void TearDown() override { Z_DestroyBitmapList(list_); }

    static int PixelIn(const BitmapHandle& bitmap) { return static_cast<const uint8_t*>(bitmap.Addr)[3]; }
    static std::vector<int> PixelsIn(BitmapList list) {
        std::vector<int> pixels;
        for (uint32_t index = 0; index < NamesIn(list).size(); ++index) {
            BitmapHandle bitmap;
            Z_GetBitmapListItem(list, index, &bitmap);
            pixels.push_back(PixelIn(bitmap));
        }
        return pixels;
    }

    BitmapList list_ = ListOf({});
};

TEST_F(ListsWithPixels, CopiesAreDeepAndWholeOrNone) {
    BitmapList copies = nullptr;
    ASSERT_EQ(Z_CopyBitmapListItems(&copies, list_, 3, 100), Z_SUCCESS);
    BitmapHandle original, copy;
    Z_GetBitmapListItem(list_, 3, &original);
    Z_GetBitmapListItem(copies, 0, &copy);
    EXPECT_NE(original.Palette, copy.Palette);
    std::memset(original.Addr, 77, 4);
    EXPECT_EQ(PixelsIn(copies), (std::vector<int>{3, 4}));
    EXPECT_EQ(Z_DestroyBitmapList(copies), Z_SUCCESS);
    EXPECT_EQ(PixelsIn(list_), (std::vector<int>{0, 1, 2, 77, 4}));

    ASSERT_EQ(Z_InsertBitmapListItem(list_, 2, nullptr), Z_SUCCESS);
    copies = list_;
    EXPECT_EQ(Z_CopyBitmapListItems(&copies, list_, 0, ToEnd), Z_ERROR_ARGUMENT);
    EXPECT_EQ(copies, list_) << "written on success only";
}

TEST_F(ListsWithPixels, RemovedAndMovedItemsOutliveTheList) {
    BitmapHandle removed;
    BitmapList moved = nullptr;
    ASSERT_EQ(Z_RemoveBitmapListItem(list_, 1, &removed), Z_SUCCESS);
    ASSERT_EQ(Z_MoveBitmapListItems(&moved, list_, 2, ToEnd), Z_SUCCESS);
    EXPECT_EQ(Z_DestroyBitmapList(list_), Z_SUCCESS);
    EXPECT_EQ(PixelsIn(moved), (std::vector<int>{3, 4}));
    EXPECT_EQ(PixelIn(removed), 1);
    Z_FreeBitmap(&removed);
    list_ = moved;
}

} // namespace
