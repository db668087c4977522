// Device-independent bitmaps made of bitmaps of every depth, order, view and storage.
#include "display/dib/dib_model.h"
#include "geometry/picture.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/frame.h"
#include "zkr13n/palettes.h"

namespace zkr::test {
namespace {

// A block's fields and parts.
struct ReadBlock {
    explicit ReadBlock(HGLOBAL block) : Block(block) {
        if (block == nullptr) return;
        const auto* data = static_cast<const uint8_t*>(platform::GlobalLock(block));
        All.assign(data, data + platform::GlobalSize(block));
        platform::GlobalUnlock(block);
        std::memcpy(&Header, All.data(), sizeof Header);
    }
    ~ReadBlock() { platform::GlobalFree(Block); }
    ReadBlock(const ReadBlock&) = delete;
    ReadBlock& operator=(const ReadBlock&) = delete;

    const uint8_t* Colours() const { return All.data() + Header.biSize; }
    const uint8_t* Rows() const { return Colours() + Header.biClrUsed * 4; }
    size_t RowBytes() const {
        return static_cast<size_t>((Header.biWidth * Header.biBitCount + 31) / 32) * 4;
    }
    // Upright.
    Picture Pixels() const {
        const int height = Header.biHeight;
        return Picture::Made(Header.biWidth, height, [&](int x, int y) {
            return ReadPixel(Rows() + static_cast<size_t>(height - 1 - y) * RowBytes(), Header.biBitCount, x);
        });
    }

    HGLOBAL Block;
    Bytes All;
    BITMAPINFOHEADER Header{};
};

struct Written {
    int32_t Bits, Order; // of the bitmap
    int32_t As;
};
constexpr Written Forms[] = {{1, 0, 1},   {2, 0, 4},   {3, 0, 4},   {4, 0, 4},   {5, 0, 8},   {6, 0, 8},
                             {7, 0, 8},   {8, 0, 8},   {12, 0, 24}, {12, 2, 24}, {16, 0, 16}, {16, 1, 16},
                             {16, 2, 24}, {24, 0, 24}, {24, 1, 24}, {32, 0, 32}, {32, 1, 32}, {48, 0, 24},
                             {48, 1, 24}, {64, 0, 32}, {64, 1, 32}};

constexpr int Width = 37, Height = 11;

void MakeSource(Bitmap& bitmap, const Written& form, int32_t view, const Storage& storage, Bytes& userData) {
    Z_InitBitmap(&bitmap, Width, Height, form.Bits);
    Allocate(bitmap, storage, userData);
    bitmap.Order = form.Order;
    bitmap.ViewPerspective = view;
    bitmap.XResolution = 96;
    bitmap.YResolution = 72;
    Fill(bitmap, static_cast<uint32_t>(form.Bits + view));
    if (form.Bits > 8) return;
    RGBQUAD colours[256];
    for (int i = 0; i < 256; ++i)
        colours[i] = {static_cast<uint8_t>(i * 7), static_cast<uint8_t>(200 - i), static_cast<uint8_t>(i / 2),
                      0};
    Z_CreateBitmapPalette(&bitmap, colours, (1u << form.Bits) - (form.Bits % 4 == 0 ? 1 : 0));
}

// As the resolution of colours would have them, and up to 8 bits the very indices.
Picture ExpectedPixels(BitmapHandle& bitmap, const Written& form) {
    if (form.Bits <= 8 || (form.Bits == form.As && form.Order == 1))
        return Picture::Of(bitmap).Seen(bitmap.ViewPerspective);
    Bitmap held;
    EXPECT_EQ(Z_ColorResBitmap(&bitmap, &held, form.As, COLORRES_ORDER_BGR, nullptr, nullptr, 0, nullptr, 0),
              1);
    return Picture::Of(held).Seen(bitmap.ViewPerspective);
}

void ExpectHead(const ReadBlock& block, const BitmapHandle& bitmap, const Written& form, int32_t dibType) {
    const bool isTurned = bitmap.ViewPerspective >= 4;
    const uint32_t headerBytes = dibType == 1 ? 108 : dibType == 2 ? 124 : 40;
    const uint32_t colours = form.Bits <= 8 ? bitmap.ColorsUsed : 0;
    const size_t image = block.RowBytes() * static_cast<size_t>(block.Header.biHeight);
    const BITMAPINFOHEADER expected = {headerBytes,
                                       isTurned ? Height : Width,
                                       isTurned ? Width : Height,
                                       1,
                                       static_cast<uint16_t>(form.As),
                                       0,
                                       static_cast<uint32_t>(image),
                                       isTurned ? 2835 : 3780,
                                       isTurned ? 3780 : 2835,
                                       colours,
                                       0};
    EXPECT_EQ(std::memcmp(&block.Header, &expected, sizeof expected), 0);
    EXPECT_GE(block.All.size(), headerBytes + colours * 4 + image);
    for (size_t i = 40; i < headerBytes; ++i)
        EXPECT_EQ(block.All[i], dibType == 2 && i >= 56 && i < 60 ? "BGRs"[i - 56] : 0) << i;
    RGBQUAD entries[256];
    const uint32_t count = Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries);
    EXPECT_EQ(std::memcmp(block.Colours(), entries, count * 4), 0);
}

TEST(ToDib, EveryDepthAndView) {
    for (const Written& form : Forms)
        for (const int32_t view : AllViews) {
            SCOPED_TRACE(std::to_string(form.Bits) + " bits, order " + std::to_string(form.Order) +
                         ", view " + std::to_string(view));
            Bitmap bitmap;
            Bytes userData;
            MakeSource(bitmap, form, view, {"conventional", MemoryConventional}, userData);
            const Picture expected = ExpectedPixels(bitmap, form);
            const BitmapHandle before = bitmap;
            const int32_t dibType = form.Bits % 4 == 3 ? 7 : form.Bits % 4;
            const ReadBlock block(Z_ConvertToDIB2(&bitmap, dibType));
            ASSERT_NE(block.Block, nullptr);
            ExpectHead(block, bitmap, form, dibType);
            EXPECT_EQ(block.Pixels(), expected);
            EXPECT_EQ(bitmap.Flags, before.Flags);
            EXPECT_EQ(bitmap.Palette, before.Palette);
            const ReadBlock changed(Z_ChangeToDIB2(&bitmap, dibType));
            EXPECT_EQ(changed.All, block.All);
            EXPECT_EQ(bitmap.Flags & Z_FLAG_ALLOCATED, 0u);
        }
}

TEST(ToDib, EveryStorage) {
    const Thresholds restore;
    for (const Written& form : {Forms[0], Forms[4], Forms[14], Forms[19]})
        for (const int32_t view : {0, 2, 5})
            for (const Storage& storage : GeometryStorages(form.Bits)) {
                SCOPED_TRACE(storage.Name + ", bits " + std::to_string(form.Bits));
                Bitmap bitmap;
                Bytes userData;
                MakeSource(bitmap, form, view, storage, userData);
                const Picture expected = ExpectedPixels(bitmap, form);
                const bool isLocked = (bitmap.Flags & Z_FLAG_LOCKED) != 0;
                EXPECT_EQ(ReadBlock(Z_ConvertToDIB(&bitmap)).Pixels(), expected);
                EXPECT_EQ(Picture::Of(bitmap).Width, Width) << "the source still stands";
                const ReadBlock refused(isLocked ? Z_ChangeToDIB(&bitmap) : nullptr);
                EXPECT_EQ(refused.Block, nullptr);
                EXPECT_NE(bitmap.Flags & Z_FLAG_ALLOCATED, 0u);
                Z_ReleaseBitmap(&bitmap);
                EXPECT_EQ(ReadBlock(Z_ChangeToDIB(&bitmap)).Pixels(), expected);
            }
}

// A palette is made of the levels of gray, and of as many as there are told to be.
TEST(ToDib, WithoutPalette) {
    for (const int32_t bits : {1, 2, 5, 8}) {
        Bitmap bitmap(9, 3, bits);
        ASSERT_EQ(Z_AllocateBitmap(&bitmap, MemoryConventional), 1);
        Fill(bitmap, 1);
        const ReadBlock block(Z_ConvertToDIB(&bitmap));
        const uint32_t entries = 1u << bits;
        ASSERT_EQ(block.Header.biClrUsed, entries);
        for (uint32_t i = 0; i < entries; ++i)
            EXPECT_EQ(block.Colours()[i * 4 + i % 3], i * 255 / (entries - 1));
        EXPECT_EQ(block.Pixels(), Picture::Of(bitmap).Seen(2));
    }
}

ReturnCode Z_CALL Stop(int32_t, intptr_t) {
    return 0;
}

TEST(ToDib, Refuses) {
    EXPECT_EQ(Z_ConvertToDIB(nullptr), nullptr);
    EXPECT_EQ(Z_ChangeToDIB(nullptr), nullptr);
    BitmapHandle empty{};
    EXPECT_EQ(Z_ConvertToDIB(&empty), nullptr);
    EXPECT_EQ(Z_ChangeToDIB2(&empty, 2), nullptr);
    Bitmap user(8, 8, 24);
    Z_AllocateBitmap(&user, MemoryUser);
    EXPECT_EQ(Z_ChangeToDIB(&user), nullptr);
    EXPECT_NE(user.Flags & Z_FLAG_ALLOCATED, 0u);
    Bitmap deep(8, 8, 48);
    Z_AllocateBitmap(&deep, MemoryConventional);
    Z_SetStatusCallBack(Stop, 0);
    EXPECT_EQ(Z_ChangeToDIB(&deep), nullptr);
    Z_SetStatusCallBack(nullptr, 0);
    EXPECT_NE(deep.Flags & Z_FLAG_ALLOCATED, 0u);
}

} // namespace
} // namespace zkr::test
