// Painting against the reference: every depth on devices of each depth, in all views, ways of dithering and clips.
#include "display/paint/paint_reference.h"
#include "platform/canvas.h"
#include "support/seeded.h"

#include "zkr13n/allocation.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/dib.h"
#include "zkr13n/display_modes.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/paint.h"
#include "zkr13n/palettes.h"
#include "zkr13n/region_shapes.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

namespace zkr::test {
namespace {

constexpr int Depths[] = {1, 2, 3, 4, 5, 6, 7, 8, 12, 16, 24, 32, 48, 64};
constexpr int Views[] = {0, 1, 2, 3, 4, 5, 7, 8};
constexpr uint32_t Copy = 0x00CC0020, Invert = 0x00660046;

template <typename T, size_t n> T Pick(Seeded& seeded, const T (&values)[n]) {
    return values[static_cast<size_t>(seeded.Below(static_cast<int>(n)))];
}

int ClassOf(HDC context) {
    const int depth = platform::GetDeviceCaps(context, BITSPIXEL) * platform::GetDeviceCaps(context, PLANES);
    return depth < 4 ? 1 : depth < 8 ? 4 : depth < 16 ? 8 : 24;
}

// A bitmap with random pixels and whatever else painting looks at.
class Subject {
  public:
    Subject(Seeded& seeded, int bits, int width, int height, int memory) {
        const int order = bits == 12 ? 2 : bits == 16 ? seeded.Below(3) : seeded.Below(2);
        std::vector<RGBQUAD> palette;
        if (bits <= 8) {
            palette.resize(size_t{1} << bits);
            MakePalette(seeded, palette, bits);
        }
        EXPECT_EQ(Z_CreateBitmap(&bitmap, memory, width, height, bits, order,
                                 palette.empty() ? nullptr : palette.data(), Pick(seeded, Views), nullptr, 0),
                  1);
        picture.Rows.resize(size_t{bitmap.BytesPerLine} * static_cast<size_t>(height));
        const bool smooth = seeded.Below(2) == 0;
        for (size_t i = 0; i < picture.Rows.size(); ++i)
            picture.Rows[i] = smooth ? static_cast<uint8_t>(i * 7 + i / 50) : seeded.Byte();
        for (int y = 0; y < height; ++y)
            Z_PutBitmapRow(&bitmap, Row(y), y, bitmap.BytesPerLine);
        if (bits == 12 || bits == 16) MakeLevels(seeded);
        if (seeded.Below(3) == 0) {
            Z_SetPaintContrast(&bitmap, seeded.Between(-800, 800));
            Z_SetPaintIntensity(&bitmap, seeded.Between(-300, 300));
        }
        if (bits <= 8 && seeded.Below(12) == 0) {
            palette.clear();
            lost_ = bitmap.Palette;
            bitmap.Palette = nullptr;
        }
        picture.Palette = palette;
        picture.Record = bitmap;
    }
    ~Subject() {
        if (bitmap.Palette == nullptr) bitmap.Palette = lost_;
        Z_FreeBitmap(&bitmap);
    }
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    const uint8_t* Row(int y) const {
        return picture.Rows.data() + size_t{bitmap.BytesPerLine} * static_cast<size_t>(y);
    }

    BitmapHandle bitmap;
    Picture picture;

  private:
    static void MakePalette(Seeded& seeded, std::vector<RGBQUAD>& palette, int bits) {
        const int kind = seeded.Below(4);
        const auto entries = static_cast<int>(palette.size());
        for (int i = 0; i < entries; ++i) {
            const auto level = static_cast<uint8_t>(i * 255 / (entries - 1));
            const auto reversed = static_cast<uint8_t>(255 - level);
            RGBQUAD& entry = palette[static_cast<size_t>(i)];
            if (kind == 0)
                entry = {seeded.Byte(), seeded.Byte(), seeded.Byte(), 0};
            else
                entry =
                    kind == 1 ? RGBQUAD{level, level, level, 0} : RGBQUAD{reversed, reversed, reversed, 0};
        }
        if (kind == 3) Z_GetFixedPalette(palette.data(), bits);
    }
    void MakeLevels(Seeded& seeded) {
        bitmap.LowBit = seeded.Below(5);
        bitmap.HighBit = seeded.Between(bitmap.LowBit, bitmap.BitsPerPixel - 1);
        bitmap.LevelLowBit = seeded.Below(3);
        bitmap.LevelHighBit = seeded.Between(6, bitmap.BitsPerPixel - 1);
        if (seeded.Below(2) == 0) bitmap.Flags |= Z_FLAG_LEVEL_LUT_ACTIVE;
        if (seeded.Below(2) == 0) return;
        constexpr int sizes[] = {3, 64, 5000, 65536};
        const int entries = Pick(seeded, sizes);
        bitmap.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(static_cast<size_t>(entries) * 4, 1));
        bitmap.LevelLUTLength = static_cast<uint32_t>(entries);
        const bool gray = seeded.Below(2) == 0;
        for (int i = 0; i < entries; ++i) {
            const uint8_t level = seeded.Byte();
            bitmap.LevelLUT[i] = {level, gray ? level : seeded.Byte(), level, 0};
        }
    }

    void* lost_ = nullptr;
};

RECT RandomRect(Seeded& seeded, int width, int height, int over) {
    const int left = seeded.Between(-over, width - 2), top = seeded.Between(-over, height - 2);
    return {left, top, seeded.Between(left + 1, width + over), seeded.Between(top + 1, height + over)};
}

constexpr RECT Everything = {-100000, -100000, 100000, 100000};

struct Ask {
    Shown shown;
    bool hasSource, hasClip, hasDestinationClip;
    uint32_t operation;
};

Ask RandomAsk(Seeded& seeded, const BitmapHandle& bitmap, int width, int height) {
    Ask ask{};
    Shown& s = ask.shown;
    ask.hasSource = seeded.Below(2) == 0;
    s.Source = ask.hasSource ? RandomRect(seeded, bitmap.Width, bitmap.Height, seeded.Below(3) == 0 ? 5 : 0)
                             : RECT{0, 0, bitmap.Width, bitmap.Height};
    if (s.Source.left < 0) s.Source.left = 0; // scaled places before the bitmap are the reference's trouble
    if (s.Source.top < 0) s.Source.top = 0;
    ask.hasClip = seeded.Below(3) == 0;
    s.SourceClip = ask.hasClip ? RandomRect(seeded, bitmap.Width, bitmap.Height, 4) : Everything;
    s.DocumentLocked = seeded.Below(8) == 0;
    const int view = s.DocumentLocked && bitmap.ViewPerspective != 2 ? 0 : bitmap.ViewPerspective;
    const bool turned = view == 4 || view == 5 || view >= 7;
    int across = s.Source.right - s.Source.left, down = s.Source.bottom - s.Source.top;
    if (turned) std::swap(across, down);
    if (seeded.Below(2) == 0) across = seeded.Between(1, width + 20), down = seeded.Between(1, height + 20);
    const int left = seeded.Between(-8, width / 2), top = seeded.Between(-8, height / 2);
    s.Destination = {left, top, left + across, top + down};
    if (seeded.Below(6) == 0) std::swap(s.Destination.top, s.Destination.bottom);
    ask.hasDestinationClip = seeded.Below(3) == 0;
    s.DestinationClip = ask.hasDestinationClip ? RandomRect(seeded, width, height, 3) : Everything;
    ask.operation = seeded.Below(6) == 0 ? Invert : Copy;
    return ask;
}

void ExpectPainted(Canvas& canvas, const std::vector<uint32_t>& before,
                   const std::vector<std::optional<Colour>>& expected, uint32_t operation) {
    const std::vector<uint32_t> after = canvas.Pixels();
    for (size_t i = 0; i < after.size(); ++i) {
        uint32_t value = before[i];
        if (expected[i]) {
            const uint32_t shown =
                canvas.info.Nearest(expected[i]->red << 16 | expected[i]->green << 8 | expected[i]->blue);
            value = operation == Copy ? shown : value ^ shown;
        }
        const uint32_t mask = canvas.info.Bits() > 16 ? 0xFFFFFF : 0xFFFFFFFF;
        ASSERT_EQ(after[i] & mask, value & mask) << "x " << i % static_cast<size_t>(canvas.info.Width())
                                                 << ", y " << i / static_cast<size_t>(canvas.info.Width());
    }
}

// The device's colours are those that dithering takes, so that each of them is met exactly.
DibInfo DeviceOf(int width, int height, int bits, uint32_t mode) {
    DibInfo info(width, height, bits);
    if (bits <= 8) {
        const std::vector<RGBQUAD> palette = DitheredPalette(bits, mode);
        std::copy(palette.begin(), palette.end(), info.colours);
    }
    return info;
}

uint32_t RandomMode(Seeded& seeded) {
    constexpr uint32_t bits[] = {0x1, 0x8, 0x10, 0x20, 0x40, 0x80, 0x100};
    uint32_t mode = 0;
    for (const uint32_t bit : bits)
        mode |= seeded.Below(2) == 0 ? bit : 0;
    return mode | (seeded.Below(3) == 0 ? 0 : 8);
}

struct Run {
    Seeded& seeded;
    Subject& subject;
    Canvas& canvas;
    uint32_t mode;

    RECT* Or(RECT& rect, bool given) const { return given ? &rect : nullptr; }

    ReturnCode Paint(Ask& ask, int firstRow = 0, int rows = 0) {
        Shown& s = ask.shown;
        Z_SetSupportLocks(s.DocumentLocked ? 1u << Z_SUPPORT_DOCUMENT : 0);
        RECT *source = Or(s.Source, ask.hasSource), *clip = Or(s.SourceClip, ask.hasClip);
        RECT* destinationClip = Or(s.DestinationClip, ask.hasDestinationClip);
        const ReturnCode result = rows == 0 ? Z_PaintDC(canvas.context, &subject.bitmap, source, clip,
                                                        &s.Destination, destinationClip, ask.operation)
                                            : Z_PaintDCBuffer(canvas.context, &subject.bitmap, source, clip,
                                                              &s.Destination, destinationClip, ask.operation,
                                                              subject.Row(firstRow), firstRow, rows);
        Z_SetSupportLocks(0);
        return result;
    }

    // Whether the system has no say in the colours.
    bool IsExact(Method method, const Ask& ask) const {
        if (canvas.info.Bits() > 8) return true;
        return method == Method::Dithered && ask.operation == Copy;
    }
};

// With a divisor the whole bitmap is shown at that part of its size, in levels of gray.
void PaintAndCompare(uint64_t seed, int bits, int deviceBits, int size, int divisor = 0) {
    Seeded seeded(seed);
    const int width = size + seeded.Below(9), height = size * 3 / 4 + seeded.Below(5);
    const uint32_t mode = divisor != 0 ? 0x10 : RandomMode(seeded);
    const int across = divisor != 0 ? size / 8 * 8 : seeded.Between(3, size);
    Subject subject(seeded, bits, across, divisor != 0 ? across - 8 : seeded.Between(3, size),
                    seeded.Below(3) == 0 ? MemoryDisk : MemoryConventional);
    Canvas canvas(DeviceOf(width, height, deviceBits, mode), 3);
    Run run{seeded, subject, canvas, mode};
    Z_SetDisplayMode(0xFFFFFFFF, mode);
    Ask ask = RandomAsk(seeded, subject.bitmap, width, height);
    if (divisor != 0) {
        const bool turned = subject.bitmap.ViewPerspective >= 4 && !ask.shown.DocumentLocked;
        const int shown[2] = {across / divisor, (across - 8) / divisor};
        constexpr int left = 2, top = 3;
        ask.hasSource = false;
        ask.shown.Source = {0, 0, across, across - 8};
        ask.shown.Destination = {left, top, left + shown[turned], top + shown[!turned]};
    }
    const int deviceClass = ClassOf(canvas.context);
    Method method = MethodOf(subject.picture, deviceClass, mode);
    const std::vector<uint32_t> before = canvas.Pixels();
    // Rows from a buffer come in two parts; diffusion would begin anew in the second.
    const bool diffuses = method == Method::Dithered && (mode & 1) == 0;
    const bool fromBuffer = seeded.Below(3) == 0 && !diffuses && ask.operation == Copy;
    if (fromBuffer) {
        if (method > Method::Dithered) method = Method::AsStored;
        const int split = seeded.Between(1, subject.bitmap.Height - 1);
        ASSERT_EQ(run.Paint(ask, 0, split), 1);
        ASSERT_EQ(run.Paint(ask, split, subject.bitmap.Height - split), 1);
    } else {
        ASSERT_EQ(run.Paint(ask), 1);
    }
    if (!run.IsExact(method, ask)) return;
    const Shown& s = ask.shown;
    const BitmapHandle& b = subject.bitmap;
    SCOPED_TRACE(::testing::Message()
                 << "mode " << std::hex << mode << std::dec << ", method " << static_cast<int>(method)
                 << ", view " << b.ViewPerspective << (s.DocumentLocked ? " locked" : "") << ", order "
                 << b.Order << ", " << b.Width << " x " << b.Height << ", table " << (b.Flags >> 13 & 1)
                 << ", levels " << b.LevelLUTLength << (fromBuffer ? ", buffer" : "") << ", from "
                 << s.Source.left << ' ' << s.Source.top << ' ' << s.Source.right << ' ' << s.Source.bottom
                 << " to " << s.Destination.left << ' ' << s.Destination.top << ' ' << s.Destination.right
                 << ' ' << s.Destination.bottom);
    ExpectPainted(canvas, before,
                  Painted(subject.picture, ask.shown, method, deviceClass, mode, width, height),
                  ask.operation);
}

class Paint : public ::testing::Test {
  protected:
    ~Paint() override { Z_SetDisplayMode(0xFFFFFFFF, 12); }
};

TEST_F(Paint, LeavesWhatTheReferenceTells) {
    uint64_t seed = 0;
    for (int round = 0; round < 60; ++round) {
        for (const int bits : Depths) {
            for (const int deviceBits : {1, 4, 8, 24, 32}) {
                PaintAndCompare(++seed, bits, deviceBits, 50);
                if (HasFatalFailure()) FAIL() << "seed " << seed << ", " << bits << " bits on " << deviceBits;
            }
        }
    }
}

// Large enough for several bands.
TEST_F(Paint, InBandsIsTheSame) {
    uint64_t seed = 1000000;
    for (const int bits : Depths) {
        for (const int deviceBits : {8, 24}) {
            for (int round = 0; round < (bits == 24 ? 16 : 3); ++round) {
                PaintAndCompare(++seed, bits, deviceBits, 700);
                if (HasFatalFailure()) FAIL() << "seed " << seed << ", " << bits << " bits on " << deviceBits;
            }
        }
    }
}

TEST_F(Paint, AtWholeDivisorsIsTheSame) {
    for (uint64_t seed = 2000000; seed < 2000120; ++seed) {
        PaintAndCompare(seed, 1, 24, 400, seed % 2 == 0 ? 4 : 8);
        if (HasFatalFailure()) FAIL() << "seed " << seed;
    }
}

// A plain bitmap of some depth on a canvas of 32 bits.
class PaintCases : public Paint {
  protected:
    PaintCases() : canvas_(20, 16, 32, 9), before_(canvas_.Pixels()) { Z_SetDisplayMode(0xFFFFFFFF, 8); }
    ~PaintCases() override { Z_FreeBitmap(&bitmap_); }

    void Make(int width, int height, int bits) {
        ASSERT_EQ(
            Z_CreateBitmap(&bitmap_, MemoryConventional, width, height, bits, 1, nullptr, 0, nullptr, 0), 1);
        Seeded seeded(5);
        rows_.resize(bitmap_.Size);
        for (uint8_t& byte : rows_)
            byte = seeded.Byte();
        std::memcpy(bitmap_.Addr, rows_.data(), rows_.size());
    }
    ReturnCode PaintAt(const RECT* destination, const RECT* source = nullptr, const RECT* clip = nullptr) {
        return Z_PaintDC(canvas_.context, &bitmap_, source, clip, destination, nullptr, Copy);
    }
    bool IsUntouched() { return canvas_.Pixels() == before_; }

    Canvas canvas_;
    std::vector<uint32_t> before_;
    BitmapHandle bitmap_{};
    std::vector<uint8_t> rows_;
};

TEST_F(PaintCases, RefuseWhatCannotBePainted) {
    const RECT to = {0, 0, 4, 4};
    const HDC context = canvas_.context;
    EXPECT_EQ(Z_PaintDC(nullptr, &bitmap_, nullptr, nullptr, nullptr, nullptr, Copy), -2) << "not allocated";
    EXPECT_EQ(Z_PaintRgnDC(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, Copy), -2);
    for (const RECT* destination : {static_cast<const RECT*>(nullptr), &to})
        EXPECT_EQ(Z_PaintRgnDC(context, &bitmap_, nullptr, nullptr, destination, nullptr, Copy), -2);
    Make(4, 4, 24);
    const auto buffer = [&](HDC to1, const RECT* to2, const void* rows, int count) {
        return Z_PaintDCBuffer(to1, &bitmap_, nullptr, nullptr, to2, nullptr, Copy, rows, 0, count);
    };
    EXPECT_EQ(Z_PaintDC(nullptr, &bitmap_, nullptr, nullptr, &to, nullptr, Copy), -13);
    EXPECT_EQ(Z_PaintDC(context, &bitmap_, nullptr, nullptr, nullptr, nullptr, Copy), -13);
    EXPECT_EQ(Z_PaintRgnDC(context, &bitmap_, nullptr, nullptr, nullptr, nullptr, Copy), -13);
    EXPECT_EQ(buffer(nullptr, nullptr, nullptr, 4), -2);
    EXPECT_EQ(buffer(nullptr, &to, rows_.data(), 4), -13);
    EXPECT_EQ(buffer(context, &to, rows_.data(), -4), -13) << "compressed rows of 24 bits";
    const RECT pixel = {0, 0, 1, 1}, wide = {0, 0, 1 << 30, 4};
    EXPECT_EQ(PaintAt(&wide, &pixel), -13) << "a bitmap of four times that width";
    const HDC dead = platform::CreateCompatibleDC(nullptr);
    platform::DeleteDC(dead);
    EXPECT_EQ(Z_PaintDC(dead, &bitmap_, nullptr, nullptr, &to, nullptr, Copy), -1);
    EXPECT_EQ(Z_PaintRgnDC(dead, &bitmap_, nullptr, nullptr, &to, nullptr, Copy), -1);
    EXPECT_TRUE(IsUntouched());
}

TEST_F(PaintCases, LeaveTheDeviceWhereThereIsNothingToShow) {
    Make(4, 4, 24);
    const RECT to = {0, 0, 4, 4}, beside = {4, 0, 9, 4}, thin = {3, 3, 3, 9}, flat = {3, 3, 9, 3},
               mirrored = {9, 3, 3, 9}, outside = {100, 100, 104, 104},
               farOff = {INT32_MIN, 0, INT32_MIN + 4, 4}, empty = {2, 2, 2, 2},
               all = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
    for (const RECT& destination : {thin, flat, mirrored, outside, farOff})
        EXPECT_EQ(PaintAt(&destination), 1);
    EXPECT_EQ(PaintAt(&to, nullptr, &beside), 1);
    EXPECT_EQ(PaintAt(&to, &beside), 1);
    EXPECT_EQ(PaintAt(&to, &empty), 1);
    EXPECT_EQ(PaintAt(&to, &all), 1) << "four pixels are none of sixteen";
    for (const int firstRow : {-4, 4, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(Z_PaintDCBuffer(canvas_.context, &bitmap_, nullptr, nullptr, &to, nullptr, Copy,
                                  rows_.data(), firstRow, 4),
                  1);
    }
    EXPECT_EQ(
        Z_PaintDCBuffer(canvas_.context, &bitmap_, nullptr, nullptr, &to, nullptr, Copy, rows_.data(), 0, 0),
        1);
}

// Compressed rows, and rows that reach over the bitmap's edges, show what the bitmap would.
TEST_F(PaintCases, BuffersAreCutToTheBitmap) {
    Make(19, 12, 1);
    const RECT to = {1, 2, 20, 14};
    ASSERT_EQ(PaintAt(&to), 1);
    const std::vector<uint32_t> whole = canvas_.Pixels();
    std::vector<uint8_t> framed(bitmap_.Size + 5 * size_t{bitmap_.BytesPerLine});
    std::memcpy(framed.data() + 2 * bitmap_.BytesPerLine, rows_.data(), rows_.size());
    std::vector<uint16_t> compressed(1000);
    Z_CompressRows(compressed.data(), framed.data(), 19, 17);
    for (const bool isCompressed : {false, true}) {
        Canvas other(20, 16, 32, 9);
        const void* rows = isCompressed ? static_cast<const void*>(compressed.data()) : framed.data();
        ASSERT_EQ(Z_PaintDCBuffer(other.context, &bitmap_, nullptr, nullptr, &to, nullptr, Copy, rows, -2,
                                  isCompressed ? -17 : 17),
                  1);
        EXPECT_EQ(other.Pixels(), whole) << isCompressed;
    }
}

TEST_F(PaintCases, IndicesMeanTheSelectedPalette) {
    Make(16, 16, 8);
    RGBQUAD colours[256];
    for (unsigned i = 0; i < 256; ++i)
        colours[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), static_cast<uint8_t>(i * 7), 0};
    const HPALETTE palette = Z_CreatePalette(colours, 256);
    const HPALETTE standing = platform::SelectPalette(canvas_.context, palette, 0);
    platform::RealizePalette(canvas_.context);
    Z_SetDisplayMode(0xFFFFFFFF, 12);
    const RECT to = {0, 0, 16, 16};
    ASSERT_EQ(PaintAt(&to), 1);
    const std::vector<uint32_t> shown = canvas_.Pixels();
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            const RGBQUAD& c = colours[rows_[static_cast<size_t>(y * 16 + x)]];
            ASSERT_EQ(shown[canvas_.At(x, y)] & 0xFFFFFF,
                      static_cast<uint32_t>(c.rgbRed << 16 | c.rgbGreen << 8 | c.rgbBlue));
        }
    }
    platform::SelectPalette(canvas_.context, standing, 0);
    platform::DeleteObject(palette);
}

TEST_F(PaintCases, IndicesIntoThePaintPaletteShowWhatColoursShow) {
    Make(20, 16, 24);
    const RECT to = {0, 0, 20, 16};
    for (const int bits : {1, 4, 8}) {
        SCOPED_TRACE(bits);
        Canvas canvas(20, 16, bits, 3);
        const auto painted = [&](uint32_t mode) {
            Z_SetDisplayMode(0xFFFFFFFF, mode);
            EXPECT_EQ(Z_PaintDC(canvas.context, &bitmap_, nullptr, nullptr, &to, nullptr, Copy), 1);
            return canvas.Pixels();
        };
        const std::vector<uint32_t> shown = painted(DISPLAY_DITHERED);
        const HPALETTE palette = Z_CreatePaintPalette(canvas.context, &bitmap_);
        const HPALETTE standing = platform::SelectPalette(canvas.context, palette, 0);
        platform::RealizePalette(canvas.context);
        EXPECT_EQ(painted(DISPLAY_DITHERED | DISPLAY_INDEXED), shown);
        platform::SelectPalette(canvas.context, standing, 0);
        platform::DeleteObject(palette);
    }
}

TEST_F(PaintCases, RegionsAreClips) {
    Make(10, 8, 24);
    const RECT part = {2, 1, 7, 6}, to = {3, 2, 13, 10};
    ASSERT_EQ(Z_SetBitmapRgnRect(&bitmap_, nullptr, &part, Z_RGN_SET), 1);
    RECT box;
    platform::GetClipBox(canvas_.context, &box);
    ASSERT_EQ(Z_PaintRgnDC(canvas_.context, &bitmap_, nullptr, nullptr, &to, nullptr, Copy), 1);
    ASSERT_EQ(Z_PaintRgnDCBuffer(canvas_.context, &bitmap_, nullptr, nullptr, &to, nullptr, Invert,
                                 rows_.data() + 4 * bitmap_.BytesPerLine, 4, 4),
              1);
    const std::vector<uint32_t> shown = canvas_.Pixels();
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool inside = x >= 5 && x < 10 && y >= 3 && y < 8;
            uint32_t expected = before_[canvas_.At(x, y)];
            if (inside) {
                const uint8_t* pixel =
                    rows_.data() + static_cast<size_t>(y - 2) * bitmap_.BytesPerLine + (x - 3) * 3;
                expected = y < 6 ? static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]) : 0;
            }
            ASSERT_EQ(shown[canvas_.At(x, y)] & 0xFFFFFF, expected & 0xFFFFFF) << x << ", " << y;
        }
    }
    RECT after;
    platform::GetClipBox(canvas_.context, &after);
    EXPECT_EQ(std::memcmp(&after, &box, sizeof box), 0);
}

} // namespace
} // namespace zkr::test
