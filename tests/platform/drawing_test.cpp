// Drawing calls against pixel by pixel models, on bitmaps of every depth.
#include "canvas.h"
#include "platform/faults.h"
#include "platform/files.h"
#include "platform/memory.h"
#include "region_pixels.h"

#include <cmath>

namespace zkr {
namespace {

using namespace platform;

constexpr uint16_t PatternRows[8] = {0x0F, 0x87, 0xC3, 0xA1, 0xF0, 0x78, 0x3C, 0x1E};

// A brush of the eight rows, and whether it sets a pixel.
HBRUSH MakePattern() {
    HBITMAP bitmap = CreateBitmap(8, 8, 1, 1, PatternRows);
    HBRUSH brush = CreatePatternBrush(bitmap);
    EXPECT_TRUE(DeleteObject(bitmap));
    return brush;
}
bool InPattern(int x, int y) {
    return (PatternRows[y & 7] >> (7 - (x & 7)) & 1) != 0;
}

COLORREF ColorrefOf(uint32_t colour) {
    return (colour & 255) << 16 | (colour & 0xFF00) | colour >> 16;
}

TEST(Drawing, RunsAllRasterOperations) {
    for (const int bits : AllDepths) {
        Canvas target(37, 11, bits, 1), source(41, 13, bits, 2);
        const uint32_t text = target.info.Colour(bits > 8 ? 0x1234 : 1 % (1u << bits));
        const uint32_t background = target.info.Colour(bits > 8 ? 0x6A51 : bits == 1 ? 0 : 11);
        const uint32_t mask = bits < 8 ? (1u << bits) - 1 : bits == 16 ? 0x7FFF : bits == 8 ? 255 : 0xFFFFFF;
        HBRUSH brushes[2] = {CreateSolidBrush(ColorrefOf(text)), MakePattern()};
        HGDIOBJ old = SelectObject(target.context, brushes[0]);
        SetTextColor(target.context, ColorrefOf(text));
        SetBkColor(target.context, ColorrefOf(background));
        SetBrushOrgEx(target.context, 3, -2, nullptr);
        for (uint32_t round = 0; round < 512; ++round) {
            const uint32_t code = round % 256;
            const bool pattern = round >= 256;
#ifdef _WIN32
            // Wine lays patterns of many pixels from another origin where a source plays a part as well.
            if (pattern && ((code >> 2 ^ code) & 0x33) != 0) continue;
#endif
            const int x0 = static_cast<int>(code % 9), width = 1 + static_cast<int>(code * 7 % 28), y0 = 2,
                      height = 7;
            SelectObject(target.context, brushes[pattern]);
            std::vector<uint32_t> wanted = target.Pixels();
            for (int y = y0; y < y0 + height; ++y) {
                for (int x = x0; x < x0 + width; ++x) {
                    uint32_t& d = wanted[target.At(x, y)];
                    const uint32_t s = source.Get(x - x0 + 5, y - y0 + 4);
                    const uint32_t p =
                        target.info.Nearest(pattern && InPattern(x - 3, y + 2) ? background : text);
                    uint32_t result = 0;
                    for (uint32_t bit = 1; bit <= mask; bit <<= 1) {
                        const unsigned index =
                            (p & bit ? 4u : 0u) | (s & bit ? 2u : 0u) | (d & bit ? 1u : 0u);
                        if (code >> index & 1) result |= bit;
                    }
                    d = result;
                }
            }
            ASSERT_TRUE(BitBlt(target.context, x0, y0, width, height, source.context, 5, 4, code << 16));
            ASSERT_EQ(target.Pixels(), wanted)
                << bits << " bits, operation " << std::hex << code << (pattern ? " with a pattern" : "");
        }
        SelectObject(target.context, old);
        for (HBRUSH brush : brushes)
            EXPECT_TRUE(DeleteObject(brush));
    }
}

TEST(Drawing, TurnsMonochromeIntoColoursAndBack) {
    HDC mono = CreateCompatibleDC(nullptr);
    HBITMAP bits = CreateBitmap(8, 8, 1, 1, PatternRows);
    HGDIOBJ old = SelectObject(mono, bits);
    for (const int depth : {4, 8, 16, 24, 32}) {
        Canvas target(8, 8, depth, 3);
        const uint32_t text = depth > 8 ? 0x203040 & target.info.Colour(0x7FFF) : target.info.Colour(3);
        const uint32_t background = target.info.Colour(depth > 8 ? 0x4C21 : 9);
        SetTextColor(target.context, ColorrefOf(text));
        SetBkColor(target.context, ColorrefOf(background));
        ASSERT_TRUE(BitBlt(target.context, 0, 0, 8, 8, mono, 0, 0, SRCCOPY));
        GdiFlush();
        for (int i = 0; i < 64; ++i) {
            const uint32_t wanted = InPattern(i % 8, i / 8) ? background : text;
            ASSERT_EQ(target.Get(i % 8, i / 8), target.info.Nearest(wanted)) << depth;
        }
        // The background colour becomes 1, everything else 0.
        HBITMAP back = CreateBitmap(8, 8, 1, 1, nullptr);
        SelectObject(mono, back);
        ASSERT_TRUE(BitBlt(mono, 0, 0, 8, 8, target.context, 0, 0, SRCCOPY));
        SelectObject(mono, bits);
        DibInfo info(8, -8, 1);
        std::vector<uint8_t> rows(info.Bytes());
        ASSERT_EQ(GetDIBits(mono, back, 0, 8, rows.data(), info.Get(), DIB_RGB_COLORS), 8);
        for (int i = 0; i < 64; ++i)
            ASSERT_EQ(info.Get(rows, i % 8, i / 8), InPattern(i % 8, i / 8) ? 1u : 0u) << depth;
        EXPECT_TRUE(DeleteObject(back));
    }
    SelectObject(mono, old);
    EXPECT_TRUE(DeleteObject(bits));
    EXPECT_TRUE(DeleteDC(mono));
}

TEST(Drawing, StaysWithinTheClip) {
    HRGN region = RegionOf({{2, 1, 9, 4}, {20, 1, 50, 4}, {5, 6, 7, 9}});
    HRGN painted = RegionOf({{4, 0, 30, 3}, {0, 5, 40, 8}});
    for (const int bits : AllDepths) {
        Canvas canvas(33, 10, bits, 4);
        const uint32_t colour = canvas.info.Colour(bits > 8 ? 0x3333 : 1);
        HBRUSH brush = CreateSolidBrush(ColorrefOf(colour));
        std::vector<uint32_t> wanted = canvas.Pixels();
        const auto paint = [&](auto within) {
            for (int y = 0; y < 10; ++y) {
                for (int x = 0; x < 33; ++x) {
                    if (within(x, y)) wanted[canvas.At(x, y)] = canvas.info.Nearest(colour);
                }
            }
        };
        Grid clip = GridOf(region), fill = GridOf(painted);
        HGDIOBJ old = SelectObject(canvas.context, brush);
        EXPECT_EQ(SaveDC(canvas.context), 1);
        EXPECT_NE(SelectObject(canvas.context, region), nullptr);
        RECT box;
        EXPECT_NE(GetClipBox(canvas.context, &box), ERROR);
        EXPECT_EQ(box.right, 33) << "cut at the bitmap";
        EXPECT_TRUE(PaintRgn(canvas.context, painted));
        paint([&](int x, int y) { return clip.At(x, y) && fill.At(x, y); });
        ASSERT_EQ(canvas.Pixels(), wanted) << bits;
        EXPECT_NE(IntersectClipRect(canvas.context, 6, 0, 28, 10), ERROR);
        EXPECT_TRUE(PatBlt(canvas.context, -5, -5, 100, 100, PATCOPY));
        paint([&](int x, int y) { return clip.At(x, y) && x >= 6 && x < 28; });
        ASSERT_EQ(canvas.Pixels(), wanted) << bits;
        EXPECT_TRUE(RestoreDC(canvas.context, -1));
        EXPECT_FALSE(RestoreDC(canvas.context, -1));
        EXPECT_TRUE(PatBlt(canvas.context, 30, 8, 40, 40, PATCOPY));
        paint([&](int x, int y) { return x >= 30 && y >= 8; });
        ASSERT_EQ(canvas.Pixels(), wanted) << bits;
        SelectObject(canvas.context, old);
        EXPECT_TRUE(DeleteObject(brush));
    }
    EXPECT_TRUE(DeleteObject(region));
    EXPECT_TRUE(DeleteObject(painted));
}

TEST(Drawing, CopiesOntoItself) {
    for (const int bits : AllDepths) {
        for (const auto& [dx, dy] : {std::pair{3, 2}, {-3, 2}, {5, 0}, {-5, 0}, {0, -4}, {1, -1}}) {
#ifdef _WIN32
            if (bits == 1) continue; // Wine copies bits onto themselves in the wrong order
#endif
            Canvas canvas(30, 20, bits, 5);
            const std::vector<uint32_t> before = canvas.Pixels();
            std::vector<uint32_t> wanted = before;
            for (int y = 4; y < 16; ++y) {
                for (int x = 5; x < 25; ++x)
                    wanted[canvas.At(x + dx, y + dy)] = before[canvas.At(x, y)];
            }
            ASSERT_TRUE(BitBlt(canvas.context, 5 + dx, 4 + dy, 20, 12, canvas.context, 5, 4, SRCCOPY));
            ASSERT_EQ(canvas.Pixels(), wanted) << bits << " bits by " << dx << ',' << dy;
        }
    }
}

double Distance(uint32_t a, uint32_t b) {
    double sum = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const double difference =
            static_cast<double>(a >> shift & 255) - static_cast<double>(b >> shift & 255);
        sum += difference * difference;
    }
    return std::sqrt(sum);
}

// In a table of 256 colours Wine looks for the nearest one of a colour with its lowest bits left out.
bool NearEnough(const DibInfo& info, uint32_t got, uint32_t nearest, uint32_t asked) {
#ifdef _WIN32
    constexpr double Slack = 28;
#else
    constexpr double Slack = 0;
#endif
    return Distance(info.Colour(got), asked) <= Distance(info.Colour(nearest), asked) + Slack;
}

// Blocks of every depth onto bitmaps of every depth: at the same scale, a part of them, enlarged three times,
// and upside down. Which index stands for a colour is left to the nearest one.
TEST(Drawing, ShowsBlocksOfRows) {
    for (const int sourceBits : AllDepths) {
        for (const int targetBits : AllDepths) {
            for (const int height : {9, -9}) {
                DibInfo block(14, height, sourceBits);
                const std::vector<uint8_t> rows = block.Noise(6);
                struct Way {
                    int x, y, width, height, fromX, fromY, fromWidth, fromHeight;
                };
                for (const Way& way : {Way{3, 2, 14, 9, 0, 0, 14, 9}, Way{-2, -3, 14, 9, 0, 0, 14, 9},
                                       Way{1, 1, 27, 18, 2, 3, 9, 6}, Way{30, 20, 14, 9, 0, 0, 14, 9},
                                       Way{2, 14, 14, -9, 0, 0, 14, 9}}) {
                    Canvas canvas(33, 21, targetBits, 7);
                    std::vector<uint32_t> wanted = canvas.Pixels(), asked(wanted.size());
                    const int scale = way.width / way.fromWidth;
                    const int fromTop = 9 - way.fromY - way.fromHeight; // whichever way the rows stand
                    for (int y = 0; y < std::abs(way.height); ++y) {
                        for (int x = 0; x < way.width; ++x) {
                            const int tx = way.x + x, ty = way.height < 0 ? way.y - y : way.y + y;
                            if (tx < 0 || tx >= 33 || ty < 0 || ty >= 21) continue;
                            const uint32_t value =
                                block.Get(rows, way.fromX + x / scale, fromTop + y / scale);
                            asked[canvas.At(tx, ty)] = block.Colour(value);
                            wanted[canvas.At(tx, ty)] = canvas.info.Nearest(block.Colour(value));
                        }
                    }
                    SetStretchBltMode(canvas.context, COLORONCOLOR);
                    ASSERT_NE(StretchDIBits(canvas.context, way.x, way.y, way.width, way.height, way.fromX,
                                            way.fromY, way.fromWidth, way.fromHeight, rows.data(),
                                            block.Get(), DIB_RGB_COLORS, SRCCOPY),
                              0);
                    const std::vector<uint32_t> got = canvas.Pixels();
                    for (size_t i = 0; i < got.size() && sourceBits > 8 && targetBits == 8; ++i) {
                        if (NearEnough(canvas.info, got[i], wanted[i], asked[i])) wanted[i] = got[i];
                    }
                    ASSERT_EQ(got, wanted)
                        << sourceBits << " to " << targetBits << " bits, height " << height << ", at "
                        << way.x << ',' << way.y << ' ' << way.width << 'x' << way.height;
                }
            }
        }
    }
}

TEST(Drawing, FindsColoursByThePaletteOfTheContext) {
    struct {
        WORD version = 0x300, count = 256;
        PALETTEENTRY entries[256];
    } colours;
    for (unsigned i = 0; i < 256; ++i)
        colours.entries[i] = {static_cast<BYTE>(i), static_cast<BYTE>(i * 3), static_cast<BYTE>(255 - i), 0};
    HPALETTE palette = CreatePalette(reinterpret_cast<LOGPALETTE*>(&colours));
    for (const int bits : {24, 32}) {
        Canvas canvas(16, 16, bits, 8);
        DibInfo block(16, 16, 8);
        const std::vector<uint8_t> rows = block.Noise(9);
        auto* indices = reinterpret_cast<WORD*>(block.colours);
        for (unsigned i = 0; i < 256; ++i)
            indices[i] = static_cast<WORD>(255 - i);
        HPALETTE old = SelectPalette(canvas.context, palette, FALSE);
        EXPECT_NE(old, nullptr);
        RealizePalette(canvas.context);
        ASSERT_NE(StretchDIBits(canvas.context, 0, 0, 16, 16, 0, 0, 16, 16, rows.data(), block.Get(),
                                DIB_PAL_COLORS, SRCCOPY),
                  0);
        GdiFlush();
        for (int i = 0; i < 256; ++i) {
            const PALETTEENTRY& entry = colours.entries[255 - block.Get(rows, i % 16, i / 16)];
            ASSERT_EQ(canvas.Get(i % 16, i / 16),
                      static_cast<uint32_t>(entry.peRed << 16 | entry.peGreen << 8 | entry.peBlue));
        }
        EXPECT_EQ(SelectPalette(canvas.context, old, FALSE), palette);
    }
    EXPECT_TRUE(DeleteObject(palette));
}

TEST(Drawing, ReadsBitmapsAsBlocks) {
    for (const int bits : AllDepths) {
        Canvas canvas(21, 10, bits, 10);
        for (const int asked : {bits, 24, 32}) {
            for (const int height : {10, -10}) {
                for (const auto& [first, count] : {std::pair{0, 10}, {2, 4}, {8, 2}}) {
                    DibInfo info(21, height, asked);
                    std::memset(info.colours, 77, sizeof info.colours);
                    std::vector<uint8_t> rows(info.Bytes(), 0xA5);
                    const int got = std::min(count, 10 - first);
                    ASSERT_EQ(GetDIBits(canvas.context, canvas.bitmap, static_cast<UINT>(first),
                                        static_cast<UINT>(count), rows.data(), info.Get(), DIB_RGB_COLORS),
                              got);
                    for (int row = 0; row < got; ++row) {
                        const int y =
                            height < 0 ? 10 - first - got + row : 9 - first - row; // first from the bottom
                        const int at =
                            height < 0 ? row : 9 - row; // the block begins with the first row asked
                        for (int x = 0; x < 21; ++x) {
                            ASSERT_EQ(info.Colour(info.Get(rows, x, at)),
                                      canvas.info.Colour(canvas.Get(x, y)))
                                << bits << " as " << asked << " height " << height << " row " << first + row;
                        }
                    }
                    const size_t used = static_cast<size_t>(got) * info.RowBytes();
                    EXPECT_TRUE(std::all_of(rows.begin() + static_cast<ptrdiff_t>(used), rows.end(),
                                            [](uint8_t byte) { return byte == 0xA5; }));
                }
            }
        }
    }
}

TEST(Drawing, SharesPixelsWithAMapping) {
    constexpr DWORD Offset = 65536 + 12; // within the second piece of the mapping
    HANDLE mapping =
        CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE | SEC_COMMIT, 0, 1 << 20, nullptr);
    HANDLE section = nullptr;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), mapping, GetCurrentProcess(), &section, 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    EXPECT_NE(section, mapping);
    auto* view = static_cast<uint8_t*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0));
    DibInfo info(10, -8, 24);
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, info.Get(), DIB_RGB_COLORS, &bits, section, Offset);
    ASSERT_NE(bitmap, nullptr);
    HDC context = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(context, bitmap);
    HBRUSH brush = CreateSolidBrush(0x030201);
    HGDIOBJ oldBrush = SelectObject(context, brush);
    EXPECT_TRUE(PatBlt(context, 2, 1, 1, 1, PATCOPY));
    GdiFlush();
    const uint8_t* pixel = view + Offset + info.RowBytes() + 6;
    EXPECT_TRUE(pixel[0] == 3 && pixel[1] == 2 && pixel[2] == 1 && pixel[3] == 0);
    EXPECT_EQ(static_cast<uint8_t*>(bits)[info.RowBytes() + 6], 3);
    DIBSECTION record{};
    EXPECT_EQ(GetObjectA(bitmap, sizeof record, &record), static_cast<int>(sizeof record));
    EXPECT_EQ(record.dshSection, section);
    EXPECT_EQ(record.dsOffset, Offset);
    SelectObject(context, oldBrush);
    SelectObject(context, old);
    EXPECT_TRUE(DeleteDC(context));
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_TRUE(DeleteObject(brush));
    EXPECT_TRUE(CloseHandle(section));
    EXPECT_TRUE(UnmapViewOfFile(view));
    EXPECT_TRUE(CloseHandle(mapping));
}

// Every call that may fail fails once; what was made is there to be released, and nothing else.
TEST(Drawing, LeavesNothingBehindWhereTheSystemFails) {
    const int64_t before = fault::Live();
    const RECT rect{1, 2, 9, 12};
    const POINT points[4] = {{0, 0}, {9, 0}, {9, 9}, {0, 9}};
    for (uint32_t nth = 1; nth < 100; ++nth) {
        fault::Arm(fault::Region | fault::Device | fault::Drawing, nth);
        HDC context = CreateCompatibleDC(nullptr);
        HBITMAP bitmap = CreateBitmap(8, 8, 1, 1, PatternRows),
                second = CreateCompatibleBitmap(context, 4, 4);
        HBRUSH brush = CreatePatternBrush(bitmap), solid = CreateSolidBrush(7);
        HRGN regions[] = {CreateEllipticRgnIndirect(&rect),       CreateRectRgnIndirect(&rect),
                          CreatePolygonRgn(points, 4, WINDING),   CreateRectRgn(0, 0, 4, 4),
                          CreateRoundRectRgn(0, 0, 20, 20, 5, 5), nullptr};
        CombineRgn(regions[0], regions[1], regions[2], RGN_XOR);
        GetRegionData(regions[0], 0, nullptr);
        BeginPath(context);
        PolyBezier(context, points, 4);
        EndPath(context);
        regions[5] = PathToRegion(context);
        HGDIOBJ old = SelectObject(context, bitmap);
        if (SaveDC(context) != 0) RestoreDC(context, -1);
        PatBlt(context, 0, 0, 8, 8, PATCOPY);
        PaintRgn(context, regions[0]);
        BitBlt(context, 0, 0, 4, 4, context, 4, 4, SRCCOPY);
        if (old != nullptr) SelectObject(context, old);
        const bool done = !fault::Fired();
        fault::Disarm();
        for (HRGN region : regions)
            DeleteObject(region);
        for (HGDIOBJ object : {HGDIOBJ{bitmap}, HGDIOBJ{second}, HGDIOBJ{brush}, HGDIOBJ{solid}})
            DeleteObject(object);
        DeleteDC(context);
        ASSERT_EQ(fault::Live(), before) << nth;
        if (done) return;
    }
    FAIL() << "it never came to an end";
}

TEST(Drawing, TellsOfBitmaps) {
    Canvas canvas(21, 10, 24, 11);
    DIBSECTION record{};
    EXPECT_EQ(GetObjectA(canvas.bitmap, sizeof record, &record), static_cast<int>(sizeof record));
    EXPECT_EQ(record.dsBm.bmBits, canvas.Bits());
    EXPECT_EQ(record.dsBm.bmWidthBytes, 64);
    EXPECT_EQ(record.dsBmih.biBitCount, 24);
    EXPECT_EQ(record.dshSection, nullptr);
    HBITMAP bitmap = CreateBitmap(17, 3, 1, 1, nullptr);
    EXPECT_EQ(GetObjectA(bitmap, sizeof record, &record), static_cast<int>(sizeof(BITMAP)));
    EXPECT_EQ(record.dsBm.bmWidthBytes, 4);
    EXPECT_EQ(record.dsBm.bmBits, nullptr);
    EXPECT_EQ(GetObjectA(bitmap, 0, nullptr), static_cast<int>(sizeof(BITMAP)));
    HBITMAP compatible = CreateCompatibleBitmap(canvas.context, 5, 6);
    EXPECT_EQ(GetObjectA(compatible, sizeof(BITMAP), &record), static_cast<int>(sizeof(BITMAP)));
    EXPECT_EQ(record.dsBm.bmBitsPixel, 24);
    EXPECT_TRUE(DeleteObject(compatible));
    EXPECT_TRUE(DeleteObject(bitmap));
    EXPECT_EQ(GetObjectA(bitmap, sizeof record, &record), 0);
}

} // namespace
} // namespace zkr
