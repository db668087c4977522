// What one frame of an animation hands on to another.
#include "zkr13n.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr uint32_t Waits = Z_FLAG_PLAYBACK_WAIT_INPUT;
constexpr uint32_t Transparent = Z_FLAG_PLAYBACK_TRANSPARENCY;

TEST(PlaybackParms, AreCopiedWithoutTouchingTheRest) {
    for (uint32_t given : {0u, Waits, Transparent, Waits | Transparent}) {
        BitmapHandle source, destination;
        Z_InitBitmap(&source, 10, 20, 24);
        Z_InitBitmap(&destination, 30, 40, 24);
        source.Flags = given | Z_FLAG_SIGNED;
        destination.Flags = (~given & (Waits | Transparent)) | Z_FLAG_REGION_UNCLIPPED;
        BitmapHandle expected = destination;
        expected.Flags = given | Z_FLAG_REGION_UNCLIPPED;
        for (BitmapHandle* record : {&source, &expected}) {
            record->PlaybackLeft = -3, record->PlaybackTop = 4, record->PlaybackDelay = 100;
            record->DisposalMethod = 2;
            record->PlaybackBackColor = 0x00112233, record->TransparentColor = 0x00445566;
        }
        EXPECT_EQ(Z_CopyPlaybackParms(&destination, &source), Z_SUCCESS);
        EXPECT_EQ(std::memcmp(&destination, &expected, sizeof expected), 0) << std::hex << given;
    }
}

TEST(PlaybackParms, ColoursAreTranslated) {
    const RGBQUAD palette[4] = {{1, 2, 3, 0}, {0x30, 0x20, 0x10, 0}, {7, 8, 9, 0}, {90, 91, 92, 0}};
    BitmapHandle source, destination;
    ASSERT_EQ(Z_CreateBitmap(&source, MemoryConventional, 4, 4, 2, Z_ORDER_RGB, palette, 2, nullptr, 0),
              Z_SUCCESS);
    Z_InitBitmap(&destination, 4, 4, 24);
    source.PlaybackBackColor = 0x01000001;
    source.TransparentColor = 0x01000003;
    EXPECT_EQ(Z_CopyPlaybackParms(&destination, &source), Z_SUCCESS);
    EXPECT_EQ(destination.PlaybackBackColor, 0x00302010u);
    EXPECT_EQ(destination.TransparentColor, 0x005A5B5Cu);
    Z_FreeBitmap(&source);
}

} // namespace
