// One operation on any picture, with arguments of which most make sense: what it does to any depth, order, storage class,
// view, palette and level table. What comes of it must not depend on where the pixels are stored. What it is, is not
// known here; parity holds the results of two platforms together.
#include "input.h"

#include "support/global_blocks.h"
#include "support/memory_device.h"

#include <utility>
#include <vector>

using namespace fuzz;

namespace {

struct Colours : std::array<RGBQUAD, 256> {
    Colours() : array{} {}
    // Now and then of a few colours only, so that distances tie.
    explicit Colours(Input& in) {
        in.Fill(data(), sizeof *this);
        const uint8_t mask = in.Below(3) == 0 ? 0xC0 : 0xFF;
        for (RGBQUAD& entry : *this)
            entry = {static_cast<uint8_t>(entry.rgbBlue & mask), static_cast<uint8_t>(entry.rgbGreen & mask),
                     static_cast<uint8_t>(entry.rgbRed & mask), entry.rgbReserved};
    }
    void Note() const { fuzz::Note(data(), sizeof *this); }
};

// A record that owns nothing but a palette object gives it back.
void Release(HPALETTE palette) {
    BitmapHandle holder{};
    holder.Palette = palette;
    Z_FreeBitmap(&holder);
}

void NotePalette(HPALETTE palette) {
    Colours entries;
    NoteEach({palette != nullptr, Z_GetPaletteSize(palette),
              Z_GetPaletteEntries(palette, 0, 256, entries.data())});
    entries.Note();
}

thread_local bool isCompared = false; // with the same picture in memory, so that storage does not count

void NotePicture(BitmapHandle& bitmap) {
    Colours entries;
    if (!isCompared) NoteRecord(bitmap);
    Note(Z_GetBitmapPaletteEntries(&bitmap, 0, 256, entries.data()));
    entries.Note();
    NotePixels(bitmap);
}

// ---- records, pixels, rectangles

void Records(Input& in, BitmapHandle& picture) {
    BitmapHandle bitmap;
    std::memset(&bitmap, 0xAA, sizeof bitmap);
    const auto [wide, high, bits, width, height, flags] = in.Each(3000, 3000, 68, 50, 50, 8);
    Note(Z_InitBitmap(&bitmap, wide, high, bits - 1));
    NoteRecord(bitmap);
    if (isCompared) return; // a duplicate is of its source's class, which has depths of its own
    const ReturnCode code =
        Z_DupBitmapNewDim(&bitmap, &picture, width, height, in.Depth(), static_cast<uint32_t>(flags));
    if (Note(code) != Z_SUCCESS) return;
    NotePicture(bitmap);
    Note(Z_FreeDuplicateBitmap(&bitmap, static_cast<uint32_t>(flags)));
    NotePicture(bitmap);
}

void Pixels(Input& in, BitmapHandle& picture) {
    for (int i = 0; i < 40; ++i) {
        const auto [x, y, size, form] = in.Each(picture.Width + 2, picture.Height + 2, 8, 7);
        constexpr uint32_t forms[] = {0, 0, 1, 2, 4, 5, 255};
        const uint32_t colour = in.Word();
        Note(Z_GetPixelColor(&picture, y - 1, x - 1));
        Note(Z_PutPixelColor(&picture, y - 1, x - 1, forms[form] << 24 | (colour & 0xFFFFFF)));
        if (x == 0 || y == 0 || x > picture.Width || y > picture.Height) continue;
        uint8_t data[8] = {};
        Note(Z_GetPixelData(&picture, data, y - 1, x - 1, static_cast<uint32_t>(size + 1)));
        Note(data, sizeof data);
        if (in.Flip()) Note(Z_PutPixelData(&picture, &colour, y - 1, x - 1, 4));
    }
}

void Rectangles(Input& in, BitmapHandle& picture) {
    for (int i = 0; i < 6; ++i) {
        const int32_t left = in.Below(picture.Width + 22) - 20, top = in.Below(picture.Height + 10) - 8;
        const auto [width, height, operation] = in.Each(picture.Width + 31, picture.Height + 10, 8);
        BitmapHandle copy{};
        if (operation == 0) Note(Z_TrimBitmap(&picture, left, top, width, height));
        if (operation == 1) Note(Z_CopyBitmapRect(nullptr, &picture, left, top, width, height));
        if (operation == 2 || operation == 3)
            Note(Z_CopyBitmapRect(&copy, &picture, left, top, width, height));
        if (operation > 3 && operation < 7)
            Note(Z_CopyBitmapRect2(&copy, &picture, left, top, width, height,
                                   operation == 5 ? +MemoryDisk : +MemoryTiled));
        if (operation == 7) Note(Z_CopyBitmap2(&copy, &picture, MemoryConventional));
        if (!isCompared) Note(copy.Flags);
        NotePixels(copy);
        NotePixels(picture);
        Z_FreeBitmap(&copy);
    }
}

// Which index a colour is nearest to is the platform's business, so that indices are given as such.
void Fills(Input& in, BitmapHandle& picture) {
    const uint32_t colour = in.Word();
    Note(Z_FillBitmap(&picture, picture.BitsPerPixel <= 8 ? 0x01000000 | (colour & 0xFFFF) : colour));
    NotePixels(picture);
    Note(Z_ClearBitmap(&picture));
}

// ---- palettes and colours

// On one platform the system's own, on the other the library's.
void PaletteObjects(Input& in, BitmapHandle&) {
    const Colours entries(in);
    const auto [kind, bits, count] = in.Each(6, 9, 256);
    HPALETTE palette = kind == 0   ? Z_CreateGrayPalette(bits)
                       : kind == 1 ? Z_CreateFixedPalette(bits)
                                   : Z_CreatePalette(entries.data(), static_cast<uint32_t>(count + 1));
    NotePalette(palette);
    for (int i = 0; i < 8; ++i) {
        const auto start = static_cast<uint32_t>(in.Below(256));
        const auto wanted = static_cast<uint32_t>(1 + in.Below(256 - static_cast<int32_t>(start)));
        Colours got;
        if (in.Flip())
            Note(Z_SetPaletteEntries(palette, start, wanted, entries.data()));
        else
            Note(Z_GetPaletteEntries(palette, start, wanted, got.data()));
        got.Note();
        HPALETTE copy = Z_DupPalette(palette);
        NotePalette(copy);
        Release(copy);
    }
    Release(palette);
}

void BitmapPalettes(Input& in, BitmapHandle& picture) {
    const Colours entries(in);
    for (int i = 0; i < 12; ++i) {
        const auto [start, count, operation] = in.Each(picture.ColorsUsed + 1, 40, 7);
        Colours other(in);
        BitmapHandle copy{};
        HPALETTE palette = nullptr;
        switch (operation) {
        case 0: Note(Z_PutBitmapColors(&picture, start, count, other.data())); break;
        case 1: Note(Z_GetBitmapColors(&picture, start, count, other.data())); break;
        case 2: Note(Z_SetPaletteType(&picture, in.Below(2))); break;
        case 3:
            palette = Z_CreatePalette(other.data(), static_cast<uint32_t>(1 + in.Below(256)));
            Note(Z_SetBitmapPalette(&picture, palette));
            break;
        case 4: Note(Z_CompareBitmapToPalette(&picture, entries.data(), picture.ColorsUsed)); break;
        case 5: palette = Z_DupBitmapPalette(&picture); break;
        default: Note(Z_CopyBitmapPalette(&copy, &picture)); NotePicture(copy);
        }
        other.Note();
        NotePalette(palette);
        Release(palette);
        Z_FreeBitmap(&copy);
        NotePicture(picture);
    }
}

// A run of rows of noise on a ramp, through a palette of any kind.
void Dithering(Input& in, BitmapHandle& picture) {
    const Colours to(in);
    const auto [method, bits, colors, given] = in.Each(9, 8, 256, 2);
    picture.DitheringMethod = method;
    Note(Z_StartDitheringExt(&picture, given != 0 ? to.data() : nullptr, static_cast<uint32_t>(colors + 1),
                             bits + 1, nullptr));
    std::vector<uint8_t> source(200 * 8), target(200);
    in.Fill(source.data(), source.size());
    for (int y = 0; y < 10; ++y) {
        for (size_t i = 0; i < source.size(); ++i)
            source[i] = static_cast<uint8_t>(i / 3 + (source[i] * 13u + 7u) % 64);
        Note(Z_DitherLine(&picture, source.data(), target.data()));
        Note(target.data(), target.size());
    }
    Note(Z_StopDithering(&picture));
}

// Into a target or in place, or in a list.
void ColourResolution(Input& in, BitmapHandle& picture) {
    constexpr uint32_t choices[] = {0, 2, 1, 0x40, 0x10, 0x30, 0x200, 0x400, 0x80, 4, 0x100, 0x120};
    Colours palette(in);
    const auto [choice, method, colors, kind, given, entries] =
        in.Each(std::size(choices), 10, 300, 3, 4, 256);
    const uint32_t flags = choices[choice] | static_cast<uint32_t>(method) << 16;
    const int32_t bits = in.Depth();
    HPALETTE handle =
        given == 1 ? Z_CreatePalette(palette.data(), static_cast<uint32_t>(entries + 1)) : nullptr;
    RGBQUAD* const wanted = given > 1 ? palette.data() : nullptr;
    if (kind == 0) {
        BitmapList list = nullptr;
        BitmapHandle item{};
        Z_CreateBitmapList(&list);
        for (int i = in.Below(4); i >= 0; --i) {
            Z_CopyBitmap(&item, &picture);
            Z_InsertBitmapListItem(list, 9, &item);
            Z_ReverseBitmap(&picture);
        }
        Note(Z_ColorResBitmapList(list, bits, flags, wanted, handle, static_cast<uint32_t>(colors)));
        for (uint32_t i = 0; Z_GetBitmapListItem(list, i, &item) == Z_SUCCESS; ++i)
            NotePicture(item);
        Z_DestroyBitmapList(list);
    } else {
        BitmapHandle target{};
        Note(Z_ColorResBitmap(&picture, kind == 1 ? &picture : &target, bits, flags, wanted, handle,
                              static_cast<uint32_t>(colors), nullptr, 0));
        NotePicture(target);
        Z_FreeBitmap(&target);
    }
    palette.Note();
    Release(handle);
}

void Gray(Input& in, BitmapHandle& picture) {
    std::vector<RGBQUAD> colours(300);
    constexpr int32_t bits[] = {8, 12, 16, 10, 24};
    const auto [most, some, kind, sign] = in.Each(300, 2, std::size(bits), 3);
    auto count = static_cast<uint32_t>(most);
    Note(Z_GetBitmapColorCountExt(&picture, &count, some != 0 ? colours.data() : nullptr));
    Note(count);
    Note(colours.data(), colours.size() * sizeof(RGBQUAD));
    Note(Z_IsGrayScaleBitmap(&picture));
    if (sign == 0) {
        picture.Flags |= Z_FLAG_SIGNED;
        Note(Z_ClearNegativePixels(&picture));
        NotePixels(picture);
    }
    Note(Z_GrayScaleBitmap(&picture, bits[kind]));
}

void Levels(Input& in, BitmapHandle& picture) {
    Colours table;
    const auto [low, high, use, length, a, b, bit, highBit, least, most, inside] =
        in.Each(18, 18, 3, 257, 620, 620, 4, 8, 70, 460, 2);
    const uint32_t first = in.Word() & 0xFFFFFF, last = in.Word() & 0xFFFFFF;
    Note(Z_WindowLevel(&picture, low, high, table.data(), 256, use));
    Note(Z_WindowLevelFillLUT(table.data(), static_cast<uint32_t>(length), first, last, a - 20, b - 20, bit,
                              highBit, least - 20, most + 40, inside));
    table.Note();
}

void Spaces(Input& in, BitmapHandle&) {
    std::vector<uint8_t> source(600 * 8), target(600 * 8);
    in.Fill(source.data(), source.size());
    const int32_t deep = in.Flip() ? 16 : 1;
    for (int32_t from = 0; from < 7; ++from) {
        const auto [width, to] = in.Each(600, 7);
        Note(Z_ConvertColorSpace(source.data(), target.data(), width + 1, deep * (from + (deep == 16)),
                                 deep * (to + (deep == 16))));
        Note(target.data(), target.size());
    }
    const uint32_t colour = in.Word();
    NoteEach({Z_RGBtoHSV(colour), Z_HSVtoRGB(colour)});
}

void Alpha(Input& in, BitmapHandle& picture) {
    AnyBitmap other(in);
    BitmapHandle plane{};
    Note(Z_GetBitmapAlpha(&picture, &plane));
    NotePixels(plane);
    Note(Z_SetBitmapAlpha(&picture, in.Below(4) == 0 ? &plane : &other));
    Z_FreeBitmap(&plane);
}

// ---- geometry

void Views(Input& in, BitmapHandle& picture) {
    auto [view, x, y, left, top, right, bottom, flips] = in.Each(10, 240, 80, 240, 80, 50, 50, 2);
    RECT rectangle = {left - 20, top - 20, left - 20 + right, top - 20 + bottom};
    Note(Z_PointFromBitmap(&picture, static_cast<uint32_t>(view), &x, &y));
    Note(Z_RectToBitmap(&picture, static_cast<uint32_t>(view), &rectangle));
    NoteEach({x, y, rectangle.left, rectangle.top, rectangle.right, rectangle.bottom});
    Note(flips != 0 ? Z_FlipBitmap(&picture) : Z_ReverseBitmap(&picture));
    NotePixels(picture);
    Note(Z_ChangeBitmapViewPerspective(nullptr, &picture, view));
}

void Turns(Input& in, BitmapHandle& picture) {
    const auto [exact, quarters, flags, across, down] = in.Each(3, 9, 8, 604, 604);
    const int32_t angle = exact == 0 ? (quarters - 4) * 9000 : static_cast<int32_t>(in.Word());
    picture.XResolution = across - 3, picture.YResolution = down - 3;
    Note(Z_RotateBitmap(&picture, angle, static_cast<uint32_t>(flags), in.Word() & 0x05FFFFFF));
}

void Shears(Input& in, BitmapHandle& picture) {
    const int32_t angle = in.Below(4) == 0 ? static_cast<int32_t>(in.Word()) : in.Below(17999) - 8999;
    const int32_t horizontal = in.Below(2);
    Note(Z_ShearBitmap(&picture, angle, horizontal, in.Word() & 0x05FFFFFF));
}

void BufferTurns(Input& in, BitmapHandle&) {
    const auto bits = static_cast<uint32_t>(in.Depth());
    const auto [width, height, kind] = in.Each(200, 150, 3);
    const auto w = static_cast<uint32_t>(width + 1), h = static_cast<uint32_t>(height + 1);
    std::vector<uint8_t> source(200 * 160 * 8), target(200 * 160 * 8);
    in.Fill(source.data(), source.size());
    Note(kind == 2 ? Z_RotateBuffer180(source.data(), target.data(), w, h, bits)
                   : Z_RotateBuffer90(source.data(), target.data(), kind, w, h, bits));
    Note(target.data(), target.size());
}

int32_t NewSize(Input& in, int32_t size) {
    const auto [kind, smaller, times] = in.Each(8, size, 5);
    return kind == 0 ? size : kind < 4 ? smaller + 1 : size * (times + 1);
}

void FedRows(Input& in, BitmapHandle& picture) {
    ResizeLineState* state = nullptr;
    const int32_t width = NewSize(in, picture.Width), height = NewSize(in, picture.Height);
    Note(Z_StartResize(picture.Width, picture.Height, width, height, &state));
    for (int i = 0; i < 20; ++i) {
        const Exact row(static_cast<size_t>(picture.Width) * 5 * 8, in);
        int32_t newWidth = 0, repeat = 0;
        Note(Z_Resize(row.Get(), static_cast<uint32_t>(in.Below(picture.Height)), picture.BitsPerPixel,
                      &newWidth, &repeat, state));
        NoteEach({newWidth, repeat});
        Note(row.Get(), static_cast<size_t>(newWidth) * static_cast<size_t>(picture.BitsPerPixel) / 8);
    }
    Z_StopResize(state);
}

void Sizes(Input& in, BitmapHandle& picture) {
    picture.Flags &= ~uint32_t{Z_FLAG_LEVEL_LUT_ACTIVE};
    const int32_t width = NewSize(in, picture.Width), height = NewSize(in, picture.Height);
    const auto [flags, again] = in.Each(8, 8);
    Note(Z_SizeBitmap(&picture, width, height, static_cast<uint32_t>(flags)));
    AnyBitmap target(in);
    Note(Z_ResizeBitmapExt(&picture, &target, static_cast<uint32_t>(again)));
    NotePixels(target);
}

void Underlays(Input& in, BitmapHandle& picture) {
    AnyBitmap texture(in);
    const auto [left, top, width, height, flags] = in.Each(100, 20, 100, 20, 2);
    const RECT part = {left, top, left + width, top + height};
    if (in.Below(3) == 0) Z_SetBitmapRgnRect(&picture, nullptr, &part, Z_RGN_SET);
    Note(Z_UnderlayBitmap(&picture, &texture, static_cast<uint32_t>(flags)));
}

// What is selected shows in what is filled.
void Selections(Input& in, BitmapHandle& picture) {
    for (int i = 0; i < 3; ++i) {
        const auto [kind, x, y, threshold, mode] = in.Each(4, picture.Width, picture.Height, 128, 8);
        const uint32_t a = in.Word(), b = in.Word(), how = static_cast<uint32_t>(mode);
        if (kind == 0) Note(Z_SetBitmapRgnColor(&picture, a & 0x01FFFFFF, how));
        if (kind == 1) Note(Z_SetBitmapRgnColorRGBRange(&picture, a & b & 0xFFFFFF, a | b, how));
        if (kind == 2)
            Note(Z_SetBitmapRgnColorHSVRange(&picture, (a & b & 0xFFFF00) | (a & 0xFF), a | b, how));
        if (kind == 3) Note(Z_SetBitmapRgnMagicWand(&picture, x, y, static_cast<uint32_t>(threshold), how));
    }
    Note(Z_FillBitmap(&picture, in.Word() & 0x01FFFF));
}

// ---- display

void Dibs(Input& in, BitmapHandle& picture) {
    const auto [type, across, down] = in.Each(5, 604, 604);
    picture.XResolution = across - 3, picture.YResolution = down - 3;
    HGLOBAL block = Z_ConvertToDIB2(&picture, type - 1);
    Note(block != nullptr);
    if (block == nullptr) return;
    const uint8_t* const bytes = zkr::test::LockGlobal(block);
    uint32_t headerBytes, colours;
    std::memcpy(&headerBytes, bytes, 4);
    std::memcpy(&colours, bytes + 32, 4);
    Note(bytes, headerBytes + colours * 4);
    zkr::test::UnlockGlobal(block);
    BitmapHandle again{};
    Note(Z_ChangeFromDIB(&again, block));
    NotePicture(again);
    Z_FreeBitmap(&again);
}

void PaintTables(Input& in, BitmapHandle& picture) {
    const auto [contrast, intensity, gamma] = in.Each(2001, 2001, 1000);
    Note(Z_SetPaintContrast(&picture, contrast - 1000));
    Note(Z_SetPaintIntensity(&picture, intensity - 1000));
    Note(picture.PaintLUT, 256);
    Note(Z_SetPaintGamma(&picture, static_cast<uint32_t>(gamma + 1)));
    Note(picture.PaintLUT, 256);
}

RECT Rectangle(Input& in, int32_t width, int32_t height) {
    const auto [left, top, wide, high] = in.Each(width + 6, height + 6, width + 5, height + 5);
    return {left - 5, top - 5, left - 5 + wide, top - 5 + high};
}

// What contexts of 32 bits get, which no system has a say in.
void Paints(Input& in, BitmapHandle& picture) {
    const zkr::test::MemoryDevice device(90, 70, 0x3C);
    const auto [contrast, mode, part, cut, clipped, sized, upsideDown] = in.Each(4001, 512, 3, 3, 3, 2, 8);
    if (contrast <= 2000) Z_SetPaintContrast(&picture, contrast - 1000);
    const uint32_t before =
        Z_SetDisplayMode(0xFFFFFFFF, static_cast<uint32_t>(mode) & ~uint32_t{DISPLAY_INDEXED});
    const RECT source = Rectangle(in, picture.Width, picture.Height),
               clip = Rectangle(in, picture.Width, picture.Height);
    const RECT deviceClip = Rectangle(in, 90, 70);
    RECT to = Rectangle(in, 90, 70);
    if (sized == 0) to.right = to.left + picture.Width, to.bottom = to.top + picture.Height;
    if (upsideDown == 0) std::swap(to.top, to.bottom);
    Note(Z_PaintDC(device.Context, &picture, part == 0 ? &source : nullptr, cut == 0 ? &clip : nullptr, &to,
                   clipped == 0 ? &deviceClip : nullptr, 0x00CC0020));
    Z_SetDisplayMode(0xFFFFFFFF, before);
    const std::vector<uint32_t> pixels = device.Pixels();
    Note(pixels.data(), pixels.size() * sizeof(uint32_t));
}

constexpr void (*operations[])(Input&, BitmapHandle&) = {
    Records, Pixels, Rectangles, Fills,      PaletteObjects, BitmapPalettes, Dithering,   ColourResolution,
    Gray,    Levels, Spaces,     Alpha,      Views,          Turns,          BufferTurns, Shears,
    FedRows, Sizes,  Underlays,  Selections, Dibs,           PaintTables,    Paints};

thread_local uint64_t heard;

// A digest of all that an operation notes (FNV-1a; Fowler, Noll and Vo, 1991).
uint64_t Heard(size_t operation, Input input, BitmapHandle& picture) {
    const auto listener = std::exchange(Listener, [](const void* bytes, size_t count) {
        for (size_t i = 0; i < count; ++i)
            heard = (heard ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001B3u;
    });
    heard = 0xCBF29CE484222325u;
    isCompared = true;
    operations[operation](input, picture);
    NotePicture(picture);
    isCompared = false;
    Listener = listener;
    return heard;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const size_t operation = input.Byte() % std::size(operations);
    Note(static_cast<int64_t>(operation));
    AnyBitmap picture(input);
    BitmapHandle plain;
    FUZZ_EXPECT(Z_CopyBitmap2(&plain, &picture, MemoryConventional) == Z_SUCCESS);
    FUZZ_EXPECT(Z_CopyGrayParams(&plain, &picture) == Z_SUCCESS);
    const Input same = input;
    const uint64_t before = Heard(operation, same, plain);
    FUZZ_EXPECT(Heard(operation, input, picture) == before);
    Z_FreeBitmap(&plain);
    operations[operation](input, picture);
    NotePicture(picture);
    return 0;
}
