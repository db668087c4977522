// The raster object as programs outside the component model see it.
#include "zkr13n/allocation.h"
#include "zkr13n/raster_object.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Sink final : ZRasterEvents {
    void Change(int32_t change, int32_t reserved1, int32_t reserved2) override {
        Told.insert(Told.end(), {change, reserved1, reserved2});
        EXPECT_TRUE(Leaves == nullptr || Leaves->UnadviseSink(Cookie) == 0);
        if (Releases != nullptr) std::exchange(Releases, nullptr)->Release();
    }
    void RgnChange() override { Told.push_back(-1); }

    std::vector<int32_t> Told;
    uint32_t Cookie = 0;
    IZIRCRaster* Leaves = nullptr;
    IZIRCRaster* Releases = nullptr;
};

TEST(NativeRaster, CountsReferencesAndReportsFailures) {
    EXPECT_EQ(Z_CreateRasterObject(nullptr), Z_ERROR_ARGUMENT);
    IZIRCRaster *raster = nullptr, *again = nullptr;
    ASSERT_EQ(Z_CreateRasterObject(&raster), Z_SUCCESS);
    EXPECT_STREQ(raster->LastErrorText(), "");
    EXPECT_EQ(raster->GetInterfacePointer(&again), 0);
    EXPECT_EQ(again, raster);
    EXPECT_EQ(static_cast<uint32_t>(raster->GetInterfacePointer(nullptr)), 0x800A4E2Du);
    EXPECT_EQ(static_cast<uint32_t>(raster->get_PixelData(0, 0, nullptr)), 0x800A4E2Du);
    EXPECT_STREQ(raster->LastErrorText(), "ZIRC Error: Invalid parmameter passed");
    EXPECT_EQ(raster->AddRef(), 3u);
    EXPECT_EQ(raster->Release(), 2u);
    EXPECT_EQ(raster->Release(), 1u);
    EXPECT_EQ(raster->Release(), 0u);
}

TEST(NativeRaster, PassesArraysAndColours) {
    IZIRCRaster* raster = nullptr;
    ASSERT_EQ(Z_CreateRasterObject(&raster), Z_SUCCESS);
    uint8_t bytes[12] = {1, 2, 3, 4, 5, 6};
    ZVariant data{Z_VARIANT_BYTES | Z_VARIANT_BY_REFERENCE, 12, bytes}, back{};
    int16_t result = 9;
    ASSERT_EQ(raster->CreateUserBitmap(3, 1, 24, data, 0, &result), 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(raster->get_PixelData(1, 0, &back), 0);
    EXPECT_EQ(back.Type, Z_VARIANT_BYTES);
    ASSERT_EQ(back.Count, 3);
    EXPECT_EQ(std::string(static_cast<char*>(back.Data), 3), "\x04\x05\x06");
    data = {Z_VARIANT_SIGNED_BYTES, 2, bytes};
    EXPECT_EQ(static_cast<uint32_t>(raster->put_PixelData(0, 0, data)), 0x800A4E2Du);
    EXPECT_EQ(raster->put_Pixel(0, 0, 0x80000005u), 0); // the window's white
    EXPECT_EQ(bytes[0], 255);
    EXPECT_EQ(static_cast<uint32_t>(raster->put_Pixel(0, 0, 0x80000099u)), 0x800A4E2Du);
    EXPECT_EQ(raster->GetBitmapClipSegments(0, &back), 0);
    EXPECT_EQ(back.Type, Z_VARIANT_FLOATS);
    ASSERT_EQ(back.Count, 2);
    EXPECT_EQ(static_cast<float*>(back.Data)[1], 3);
    // There are no picture objects here.
    intptr_t picture = 7;
    EXPECT_EQ(static_cast<uint32_t>(raster->GetPicture(0, &picture)), 0x800A4E30u);
    EXPECT_EQ(picture, 0);
    EXPECT_EQ(static_cast<uint32_t>(raster->SetPicture(reinterpret_cast<intptr_t>(&back), &result)),
              0x800A4E30u);
    EXPECT_EQ(result, 20016);
    EXPECT_EQ(raster->get_Bitmap(&picture), 0);
    EXPECT_NE(picture, 0);
    int16_t locked = 0;
    EXPECT_EQ(raster->IsSupportLocked(32, &locked), 0);
    EXPECT_EQ(locked, -1);
    raster->Release();
}

TEST(NativeRaster, RefusesStrangeVariants) {
    IZIRCRaster* raster = nullptr;
    ASSERT_EQ(Z_CreateRasterObject(&raster), Z_SUCCESS);
    uint8_t bytes[4] = {1, 2, 3, 4};
    ASSERT_EQ(raster->CreateUserBitmap(4, 1, 8, {Z_VARIANT_BYTES, 4, bytes}, 0, nullptr), 0);
    const ZVariant strange[] = {{Z_VARIANT_FLOATS, 4, bytes},
                                {Z_VARIANT_BYTES, -1, bytes},
                                {Z_VARIANT_BYTES, 4, nullptr},
                                {0x2012, 4, bytes},
                                {0x11, 4, bytes},
                                {-1, 4, bytes},
                                {Z_VARIANT_BYTES | 0x8000, 4, bytes},
                                {Z_VARIANT_SIGNED_BYTES, INT32_MIN, bytes}};
    for (const ZVariant& variant : strange) {
        int16_t result = 0;
        EXPECT_EQ(static_cast<uint32_t>(raster->CreateUserBitmap(4, 1, 8, variant, 0, &result)), 0x800A4E2Du);
        EXPECT_EQ(result, 20013);
        EXPECT_EQ(static_cast<uint32_t>(raster->SetBitmapDataPointer(variant, 0, &result)), 0x800A4E2Du);
        EXPECT_EQ(static_cast<uint32_t>(raster->put_PixelData(0, 0, variant)), 0x800A4E2Du);
    }
    for (const int32_t size : {-1, 5, INT32_MAX, INT32_MIN})
        EXPECT_NE(raster->SetBitmapDataPointer({Z_VARIANT_BYTES, 4, bytes}, size, nullptr), 0);
    ZVariant back{};
    EXPECT_EQ(raster->get_PixelData(2, 0, &back), 0);
    EXPECT_EQ(*static_cast<uint8_t*>(back.Data), 3);
    raster->Release();
}

TEST(NativeRaster, TellsSinksThatComeAndGo) {
    IZIRCRaster* raster = nullptr;
    ASSERT_EQ(Z_CreateRasterObject(&raster), Z_SUCCESS);
    Sink first, second, third;
    EXPECT_NE(raster->AdviseSink(nullptr, &first.Cookie), 0);
    for (Sink* sink : {&first, &second, &third})
        EXPECT_EQ(raster->AdviseSink(sink, &sink->Cookie), 0);
    first.Leaves = raster;
    int16_t result;
    EXPECT_EQ(raster->CreateBitmap(4, 4, 8, &result), 0);
    EXPECT_EQ(raster->UnadviseSink(first.Cookie), static_cast<int32_t>(0x800A4E2Du));
    EXPECT_EQ(raster->SetRgnRect(0, 0, 2, 2, 1, &result), 0);
    EXPECT_EQ(raster->NotifyChange(3, 9, 10, 11), 0);
    EXPECT_EQ(first.Told, (std::vector<int32_t>{0x10F, 0, 0}));
    EXPECT_EQ(second.Told, (std::vector<int32_t>{0x10F, 0, 0, -1, 9, 10, 11}));
    // The last reference goes inside a call, which ends well.
    second.Releases = raster;
    EXPECT_EQ(raster->put_BitmapXRes(7), 0);
    EXPECT_EQ(third.Told.size(), 10u);
}

} // namespace
