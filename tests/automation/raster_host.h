// Raster objects for tests: behind the face that clients see here, with the members of the logic, so that one test tells
// the same of all faces; and bare, for what no client reaches. What they tell is written down, and what the whole
// process holds is counted.
#pragma once

#include "automation/faced_object.h"
#include "automation/raster_object.h"
#include "platform/faults.h"
#include "platform/graphics.h"
#include "zkr13n/pixels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zkr::test {

constexpr int NewBitmap = 0x10F;
constexpr int RegionChange = -1; // among the changes

inline int32_t Failure(ReturnCode code) {
    return static_cast<int32_t>(0x800A0000u | static_cast<uint32_t>(20000 - code));
}

class BareObject final : private automation::Face, public automation::RasterObject {
  public:
    BareObject() : automation::RasterObject(static_cast<Face&>(*this)) { EXPECT_EQ(Make(), Z_SUCCESS); }
    virtual ~BareObject() = default;

    std::string LastText() { return text_; }
    std::vector<int> Told;
    std::function<void(int)> OnChange;

  private:
    void Keep() override {}
    void Drop() override {}
    void ReportFailure(const char* text) override { text_ = text; }
    void FireChange(int32_t change, int32_t, int32_t) override { Told.push_back(change); }
    void FireRegionChange() override { Told.push_back(RegionChange); }
    bool TranslateColour(uint32_t colour, uint32_t* plain) override { return *plain = colour, true; }

    std::string text_;
};

template <typename Object> struct RasterOf {
    RasterOf() = default;
    RasterOf(int32_t width, int32_t height, int16_t bits) {
        EXPECT_EQ(object.CreateBitmap(float(width), float(height), bits, &result), 0);
        object.Told.clear();
    }

    // What was told since the last call.
    std::vector<int> Changes() { return std::exchange(object.Told, {}); }

    // Properties, as a script reads them.
    template <typename T, typename Class> T Get(int32_t (Class::*member)(T*)) {
        T value{};
        status = (object.*member)(&value);
        return value;
    }
    uint32_t Pixel(float x, float y) {
        uint32_t colour = 0;
        status = object.GetPixel(x, y, &colour);
        return colour;
    }
    intptr_t Bitmap() { return Get(&Object::GetBitmap); }
    BitmapList List() { return reinterpret_cast<BitmapList>(Get(&Object::GetBitmapList)); }
    int32_t Count() { return Get(&Object::GetBitmapListCount); }
    int16_t Index() { return Get(&Object::GetBitmapListIndex); }
    float Width() { return Get(&Object::GetBitmapWidth); }
    BitmapHandle& Record() {
        const automation::LockedToken token(Bitmap());
        return *token->Record;
    }
    // Appends copies of bitmaps of these widths, 1 row of 8 bits.
    void Append(std::initializer_list<int> widths) {
        for (const int width : widths) {
            RasterOf other(width, 1, 8);
            EXPECT_EQ(object.InsertBitmapListItem(-1, other.Bitmap(), &result), 0);
        }
        object.Told.clear();
    }
    // The widths of the items, and that the working record is its item's.
    std::vector<int> Items() {
        std::vector<int> widths;
        BitmapHandle item;
        for (uint32_t index = 0; Z_GetBitmapListItem(List(), index, &item) == Z_SUCCESS; ++index) {
            widths.push_back(item.Width);
            const bool shown = int(index) == Index() && Bitmap() != 0;
            if (!shown) continue;
            item.CurrentRow = Record().CurrentRow;
            item.CurrentRowOffset = Record().CurrentRowOffset;
            EXPECT_EQ(std::memcmp(&item, &Record(), sizeof item), 0);
        }
        return widths;
    }

    int16_t result = 0;
    int32_t status = 0;
    Object object;
};

using Raster = RasterOf<RasterObject>;
using BareRaster = RasterOf<BareObject>;

// Nothing that a test makes may be left behind.
class RasterTest : public testing::Test {
  protected:
    void SetUp() override {
        // What is kept for the process is made.
        {
            Raster warm(3, 3, 4), other;
            intptr_t picture = 0;
            EXPECT_EQ(warm.object.PutPixel(0, 0, 0xFF), 0);
            EXPECT_EQ(warm.object.GetMinMaxVal(nullptr), 0);
            EXPECT_EQ(warm.object.GetDDB(0, &picture), 0);
            EXPECT_EQ(other.object.SetDDB(0, picture, 0, nullptr), 0);
            platform::DeleteObject(reinterpret_cast<HBITMAP>(picture));
        }
        live_ = platform::fault::Live();
    }
    void TearDown() override {
        platform::fault::Disarm();
        EXPECT_EQ(platform::fault::Live(), live_);
    }

    // What has been handed to the system is no longer the library's to free.
    void CountAnew() { live_ = platform::fault::Live(); }

  private:
    int64_t live_ = 0;
};

} // namespace zkr::test
