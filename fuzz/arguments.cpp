// Every function that checks its arguments, called with what nobody should pass, on records in every state:
// no crash, no wrap, no leak. What a manual says is not checked stays in range.
#include "input.h"

#include <algorithm>
#include <array>
#include <cstddef>

using namespace fuzz;

namespace {

constexpr size_t MostBytes = 1 << 16; // of a bitmap that is kept

class Host {
  public:
    explicit Host(Input& input) : in_(input) {
        Z_InitBitmap(&records_[1], 5, 7, 8);
        Z_CreateBitmap(&records_[2], MemoryConventional, 9, 5, 4, 0, nullptr, 1, nullptr, 0);
        Z_SetMemoryThresholds(0, 0, 8, 2, 1, 28);
        Z_CreateBitmap(&records_[3], MemoryTiled, 5, 9, 8, 0, nullptr, 1, nullptr, 0);
        Z_CreateBitmap(&records_[4], MemoryDisk, 5, 4, 12, 2, nullptr, 1, nullptr, 0);
        Z_CreateBitmap(&records_[5], MemoryUser, 5, 4, 8, 0, nullptr, 1, nullptr, 0);
        records_[4].LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(400, 1));
        records_[4].LevelLUTLength = 100;
        Z_SetPaletteType(&records_[3], 1);
        Z_CreateBitmapList(&list_);
        Z_CreateBitmapList(&stale_);
        Z_DestroyBitmapList(stale_);
        palette_ = Z_CreateGrayPalette(3);
        deadPalette_ = Z_CreateGrayPalette(2);
        records_[0].Palette = deadPalette_;
        Z_FreeBitmap(&records_[0]);
    }
    ~Host() {
        for (BitmapHandle& record : records_)
            Z_FreeBitmap(&record);
        BitmapHandle holder = {};
        holder.Palette = palette_;
        Z_FreeBitmap(&holder);
        Z_DestroyBitmapList(list_);
        Z_SetSupportLocks(0);
        Z_SetMemoryThresholds(0, INT32_MAX, 0, -100, 1, 31);
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    void Step() {
        switch (in_.Byte() % 10) {
        case 0: Life(); break;
        case 1: Duplicates(); break;
        case 2: Storage(); break;
        case 3: Lists(); break;
        case 4: Palettes(); break;
        case 5: BitmapPalettes(); break;
        case 6: Colours(); break;
        case 7: Pixels(); break;
        case 8: Gray(); break;
        default: Frame(); break;
        }
        for (BitmapHandle& record : records_)
            if (record.Size > MostBytes) Z_FreeBitmap(&record);
    }

  private:
    BitmapHandle* Any() {
        const size_t choice = in_.Byte() % (records_.size() + 1);
        return choice < records_.size() ? &records_[choice] : nullptr;
    }
    // A record that owns nothing and may be overwritten.
    BitmapHandle* Free() {
        BitmapHandle* record = &records_[in_.Byte() % records_.size()];
        Z_FreeBitmap(record);
        return record;
    }
    BitmapHandle* Allocated() {
        BitmapHandle* record = Any();
        return record != nullptr && (record->Flags & Z_FLAG_ALLOCATED) != 0 ? record : nullptr;
    }
    int32_t Type() {
        constexpr int32_t types[] = {1, 2, 4, 8, 9, 128, 256, 512, 768, 1024, 1025, 513, 130};
        return in_.Byte() < 220 ? types[in_.Byte() % std::size(types)] : in_.Hostile();
    }
    // Huge bitmaps only where that takes neither time nor room.
    int32_t TypeFor(int32_t width, int32_t height) { return width > 99 || height > 99 ? MemoryUser : Type(); }

    void Life() {
        const int32_t width = in_.Near(60), height = in_.Near(60);
        const int32_t bits = in_.Flip() ? in_.Depth() : in_.Near(66);
        RGBQUAD colours[256] = {};
        BitmapHandle* record = Any();
        switch (in_.Byte() % 7) {
        case 0:
            record = Free();
            Z_InitBitmap(record, width, height, bits);
            FUZZ_EXPECT(record->BytesPerLine % 4 == 0);
            if (Z_AllocateBitmap(record, TypeFor(width, height)) != 1)
                FUZZ_EXPECT(record->PaintLUT == nullptr);
            break;
        case 1:
            Z_CreateBitmap(Free(), TypeFor(width, height), width, height, bits, in_.Hostile(),
                           in_.Flip() ? colours : nullptr, in_.Hostile(), nullptr, 0);
            break;
        case 2: Z_FreeBitmap(record); break;
        case 3: Z_FreeImage(record, 1); break;
        case 4: {
            const bool exact = record != nullptr && in_.Flip();
            const size_t size = exact ? record->Size : static_cast<size_t>(in_.Hostile());
            if (size <= sizeof user_ || record == nullptr || size != record->Size)
                Z_SetBitmapDataPointer(record, in_.Flip() ? user_ : nullptr, size);
            break;
        }
        case 5: {
            const bool tiled = record != nullptr && (record->Flags & Z_FLAG_TILED) != 0;
            Z_ChangeBitmapHeight(record, tiled ? std::min(height, 300) : height);
            break;
        }
        default: Z_UpdateBitmapSize(record);
        }
    }

    void Duplicates() {
        BitmapHandle* source = Any();
        BitmapHandle made = {};
        switch (in_.Byte() % 4) {
        case 0: {
            const auto flags = static_cast<uint32_t>(in_.Near(8));
            const int32_t width = in_.Near(40), height = in_.Near(40);
            if ((flags & 1) != 0 && (width > 99 || height > 99)) return;
            if (Z_DupBitmapNewDim(&made, source, width, height, in_.Depth(), flags) == 1)
                Z_FreeDuplicateBitmap(&made, flags);
            break;
        }
        case 1:
            if (Z_CopyBitmap(&made, source) == 1) Z_FreeBitmap(&made);
            break;
        case 2: Z_CopyBitmapData(Any(), source); break;
        default:
            Z_DupBitmapNewDim(nullptr, source, 1, 1, 1, 0);
            Z_CopyBitmapHandle(nullptr, source);
            Z_CopyPlaybackParms(Any(), source);
            Z_FreeDuplicateBitmap(nullptr, 7);
        }
    }

    void Storage() {
        int32_t values[6] = {};
        BitmapHandle* record = Any();
        switch (in_.Byte() % 5) {
        case 0: {
            // The most tiles that this can ask for are those of a bitmap that is kept.
            Z_SetBitmapMemoryInfo(record, Type(), in_.Near(99), in_.Hostile(), in_.Near(9), in_.Near(9),
                                  in_.Near(9), static_cast<uint32_t>(in_.Near(64)));
            break;
        }
        case 1:
            Z_GetBitmapMemoryInfo(record, in_.Flip() ? &values[0] : nullptr,
                                  in_.Flip() ? &values[1] : nullptr, nullptr, &values[3], nullptr,
                                  in_.Flip() ? &values[5] : nullptr);
            break;
        case 2:
            Z_SetMemoryThresholds(in_.Near(9), in_.Near(999), in_.Near(99), in_.Near(9, -5), in_.Near(9, -5),
                                  static_cast<uint32_t>(in_.Near(32)));
            Z_GetMemoryThresholds(&values[0], &values[1], &values[2], &values[3], &values[4]);
            FUZZ_EXPECT(values[2] >= 0 && *std::min_element(values, values + 5) >= -100);
            break;
        case 3:
            Z_UnlockBitmap(record, Z_LockBitmap(record));
            Z_AccessBitmap(record);
            Z_ReleaseBitmap(record);
            break;
        default:
            Z_SetDefaultMemoryType(in_.Hostile());
            char path[261] = "";
            Z_GetTempDirectory(path, static_cast<uint32_t>(in_.Below(261)));
        }
    }

    void Pixels() {
        BitmapHandle* record = Any();
        const int32_t left = in_.Near(70, -9), top = in_.Near(70, -9);
        const int32_t width = in_.Near(60), height = in_.Near(60);
        const auto colour = static_cast<uint32_t>(in_.Hostile()) ^ in_.Word();
        BitmapHandle made = {};
        BitmapHandle* const target = in_.Flip() ? &made : in_.Flip() ? nullptr : record;
        const bool small = width <= 99 && height <= 99;
        switch (in_.Byte() % 9) {
        case 0: Z_GetPixelColor(record, top, left); break;
        case 1: Z_PutPixelColor(record, top, left, colour); break;
        case 2:
            if (record == nullptr) break;
            record->LowBit = in_.Hostile();
            record->HighBit = in_.Hostile();
            record->Order = in_.Byte() % 3;
            record->Flags ^= Z_FLAG_LEVEL_LUT_ACTIVE;
            break;
        case 3: Z_FillBitmap(record, colour); break;
        case 4: Z_ClearBitmap(record); break;
        case 5: Z_TrimBitmap(record, left, top, width, height); break;
        case 6:
            if (small) Z_CopyBitmapRect(target, record, left, top, width, height);
            break;
        case 7:
            if (small) Z_CopyBitmapRect2(target, record, left, top, width, height, Type());
            break;
        default: Z_CopyBitmap2(target, record, Type());
        }
        Z_FreeBitmap(&made);
    }

    BitmapList AnyList() {
        auto* palette = reinterpret_cast<BitmapList>(palette_);
        auto* number = reinterpret_cast<BitmapList>(static_cast<intptr_t>(in_.Hostile()));
        const BitmapList lists[] = {list_, list_, list_, nullptr, stale_, palette, number};
        return lists[in_.Byte() % std::size(lists)];
    }

    void Lists() {
        BitmapList list = AnyList();
        const auto index = static_cast<uint32_t>(in_.Near(5)), count = static_cast<uint32_t>(in_.Near(5));
        BitmapList made = nullptr;
        BitmapHandle item = {};
        switch (in_.Byte() % 8) {
        case 0:
            if (Z_CopyBitmap(&item, Any()) == 1 && Z_InsertBitmapListItem(list, index, &item) != 1)
                Z_FreeBitmap(&item);
            break;
        case 1:
            if (Z_RemoveBitmapListItem(list, index, &item) == 1) Z_FreeBitmap(&item);
            break;
        case 2:
            if (Z_GetBitmapListItem(list, index, &item) == 1 &&
                Z_SetBitmapListItem(list, index, nullptr) == 1)
                Z_FreeBitmap(&item);
            break;
        case 3: Z_DeleteBitmapListItems(list, index, count); break;
        case 4:
            if (Z_CopyBitmapListItems(in_.Flip() ? &made : nullptr, list, index, count) == 1)
                Z_DestroyBitmapList(made);
            break;
        case 5:
            if (Z_MoveBitmapListItems(in_.Flip() ? &made : nullptr, list, index, count) == 1)
                Z_DestroyBitmapList(made);
            break;
        case 6: {
            uint32_t items = 0;
            Z_GetBitmapListCount(list, in_.Flip() ? &items : nullptr);
            Z_GetBitmapListItem(list, index, nullptr);
            if (items < 20) Z_InsertBitmapListItem(list, index, nullptr);
            break;
        }
        default:
            if (list != list_) FUZZ_EXPECT(Z_DestroyBitmapList(list) == Z_ERROR_ARGUMENT);
        }
    }

    HPALETTE AnyPalette() {
        auto* list = reinterpret_cast<HPALETTE>(list_);
        auto* number = reinterpret_cast<HPALETTE>(static_cast<intptr_t>(in_.Hostile()));
        const HPALETTE palettes[] = {palette_, palette_, nullptr, deadPalette_, list, number};
        return palettes[in_.Byte() % std::size(palettes)];
    }
    // A palette that was made is put where it is freed.
    void Keep(HPALETTE made) {
        if (made == nullptr) return;
        BitmapHandle holder = {};
        holder.Palette = palette_;
        Z_FreeBitmap(&holder);
        palette_ = made;
    }

    void Palettes() {
        const int32_t entries = in_.Near(301);
        const Exact colours(entries > 0 && entries <= 300 ? static_cast<size_t>(entries) * 4 : 0, in_);
        const auto start = static_cast<uint32_t>(in_.Near(9));
        const auto count = static_cast<uint32_t>(colours.Count / 4);
        const int32_t signedCount = entries < 0 ? entries : static_cast<int32_t>(count);
        HPALETTE palette = AnyPalette();
        RGBQUAD all[256];
        switch (in_.Byte() % 8) {
        case 0: Keep(Z_CreatePalette(colours.Colours(), static_cast<uint32_t>(entries))); break;
        case 1: FUZZ_EXPECT(Z_GetPaletteEntries(palette, start, count, colours.Colours()) <= count); break;
        case 2: FUZZ_EXPECT(Z_SetPaletteEntries(palette, start, count, colours.Colours()) <= count); break;
        case 3:
            Z_GetPaletteSize(palette);
            Keep(Z_DupPalette(palette));
            break;
        case 4:
            Keep(in_.Flip() ? Z_CreateGrayPalette(in_.Near(9)) : Z_CreateFixedPalette(in_.Near(9)));
            break;
        case 5:
            Z_GetFixedPalette(in_.Flip() ? all : nullptr, in_.Near(9));
            Z_IntGetFixedPalette(in_.Hostile());
            Keep(Z_CreateSystemPalette());
            break;
        case 6:
            if (entries < 20 || entries == 300)
                Z_FreeUserMatchTable(Z_CreateUserMatchTable(colours.Colours(), signedCount));
            break;
        default: {
            const int32_t found = Z_FindPaletteIndex(colours.Colours(), signedCount, in_.Hostile(),
                                                     in_.Hostile(), in_.Hostile());
            FUZZ_EXPECT(found >= -1 && found < std::max<int32_t>(static_cast<int32_t>(count), 1));
        }
        }
    }

    void BitmapPalettes() {
        BitmapHandle* bitmap = Any();
        const BitmapHandle* other = Any();
        RGBQUAD colours[256] = {};
        const bool bare = bitmap == nullptr || bitmap->Palette == nullptr; // an old palette would be lost
        switch (in_.Byte() % 11) {
        case 0: Z_GetBitmapColors(bitmap, in_.Near(9), in_.Near(256), colours); break;
        case 1: Z_PutBitmapColors(bitmap, in_.Near(9), in_.Near(256), in_.Flip() ? colours : nullptr); break;
        case 2: Z_SetBitmapPalette(bitmap, AnyPalette()); break;
        case 3: Z_SetPaletteType(bitmap, in_.Hostile()); break;
        case 4:
            Z_GetBitmapPaletteEntries(bitmap, static_cast<uint32_t>(in_.Near(9)),
                                      static_cast<uint32_t>(in_.Near(256)), colours);
            break;
        case 5: Keep(Z_DupBitmapPalette(bitmap)); break;
        case 6: Z_CompareBitmapToPalette(bitmap, colours, static_cast<uint32_t>(in_.Near(256))); break;
        case 7: Z_GetNearestPaletteIndex(bitmap, in_.Word()); break;
        case 8:
            if (bare) Z_CopyBitmapPalette(bitmap, other);
            break;
        case 9:
            if (bare) Z_CreateBitmapPalette(bitmap, colours, static_cast<uint32_t>(in_.Near(257)));
            break;
        default:
            if (bare) in_.Flip() ? Z_CreateBitmapGrayPalette(bitmap) : Z_CreateBitmapFixedPalette(bitmap);
        }
    }

    void Colours() {
        BitmapHandle* bitmap = Any();
        int32_t bits, shift;
        uint32_t mask;
        switch (in_.Byte() % 7) {
        case 0: Z_TranslateBitmapColor(bitmap, Any(), in_.Word() & 0x07FFFFFF); break;
        case 1:
            Z_GetGrayParams(in_.Hostile(), in_.Hostile(), in_.Hostile(), in_.Hostile(), &bits, &mask, &shift);
            break;
        case 2: Z_InitGrayParams(bitmap); break;
        case 3:
            if (bitmap == nullptr || bitmap->LevelLUT == nullptr) Z_CopyGrayParams(bitmap, Allocated());
            if (bitmap != nullptr && (bitmap->Flags & Z_FLAG_ALLOCATED) == 0) Z_FreeGrayParams(bitmap);
            break;
        case 4:
            if (bitmap != nullptr) bitmap->Flags ^= Z_FLAG_LEVEL_LUT_ACTIVE;
            break;
        case 5: Z_CalcConvertSize(in_.Hostile(), in_.Hostile(), in_.Hostile(), in_.Hostile()); break;
        default:
            FUZZ_EXPECT(Z_ConvertBuffer(in_.Flip() ? nullptr : colour_, -in_.Below(9), 8, 8, 0, 0, nullptr,
                                        nullptr) == Z_ERROR_ARGUMENT);
            FUZZ_EXPECT(Z_MirrorLine(colour_, in_.Hostile(), 0) == 1);
        }
    }

    void Gray() {
        BitmapHandle* bitmap = Any();
        BitmapHandle* other = Any();
        RGBQUAD colours[64] = {};
        uint8_t pixels[8 * 8] = {};
        auto count = static_cast<uint32_t>(in_.Below(65));
        switch (in_.Byte() % 8) {
        case 0: Z_GrayScaleBitmap(bitmap, in_.Flip() ? 8 + 4 * in_.Below(3) : in_.Hostile()); break;
        case 1: Z_GetBitmapColorCountExt(bitmap, &count, in_.Flip() ? colours : nullptr); break;
        case 2:
            if (bitmap != nullptr) bitmap->Flags |= Z_FLAG_SIGNED;
            Z_ClearNegativePixels(bitmap);
            break;
        case 3:
            // A record without storage has nobody who frees its table.
            bitmap = Allocated();
            Z_WindowLevel(bitmap, in_.Hostile(), in_.Hostile(), colours, count % 64, in_.Byte() % 3);
            break;
        case 4:
            Z_WindowLevelFillLUT(colours, count % 64, in_.Word(), in_.Word(), in_.Hostile(), in_.Hostile(),
                                 in_.Hostile(), in_.Hostile(), in_.Hostile(), in_.Hostile(), in_.Byte() % 2);
            FUZZ_EXPECT(Z_IsGrayScalePalette(colours + count % 64, 0) <= GRAY_NOTORDERED);
            break;
        case 5: Z_ConvertColorSpace(pixels, pixels, in_.Below(9), in_.Near(0x80), in_.Near(0x80)); break;
        case 6: {
            BitmapHandle alpha = {};
            if (Z_GetBitmapAlpha(bitmap, &alpha) == 1) Z_FreeBitmap(&alpha);
            break;
        }
        default:
            if (other != nullptr && in_.Flip()) other->ViewPerspective = in_.Near(9);
            Z_SetBitmapAlpha(bitmap, other);
        }
        Z_IsGrayScaleBitmap(bitmap);
    }

    void Frame() {
        const auto handle =
            in_.Flip() ? reinterpret_cast<intptr_t>(list_) : reinterpret_cast<intptr_t>(palette_);
        const intptr_t bad = in_.Flip() ? handle : static_cast<intptr_t>(in_.Hostile());
        char byte = 0;
        switch (in_.Byte() % 4) {
        case 0:
            FUZZ_EXPECT(Z_OsRead(bad, &byte, 1, 0) == -1);
            FUZZ_EXPECT(Z_OsWrite(bad, &byte, 1, 0) == -1);
            FUZZ_EXPECT(Z_OsSeek(bad, in_.Hostile(), in_.Hostile(), 0) == -1);
            FUZZ_EXPECT(Z_OsClose(bad, 0) == -1);
            FUZZ_EXPECT(Z_OsOpen(in_.Flip() ? nullptr : "", in_.Hostile(), in_.Hostile(), 0) == -1);
            break;
        case 1:
            FUZZ_EXPECT(Z_OsReAlloc(&byte, 9) == nullptr);
            Z_OsFree(&byte);
            Z_GetErrorText(in_.Hostile());
            break;
        case 2:
            Z_SetSupportLocks(in_.Flip() ? in_.Word() : 0);
            Z_IsSupportLocked(static_cast<uint32_t>(in_.Hostile()));
            Z_UnlockSupport(static_cast<uint32_t>(in_.Hostile()), in_.Flip() ? nullptr : "");
            break;
        default: {
            SurfaceDescription description = {sizeof description, in_.Near(3),   in_.Near(3), in_.Near(33),
                                              in_.Near(9),        in_.Hostile(), colour_,     nullptr,
                                              in_.Near(2),        in_.Near(2)};
            HDC context = nullptr;
            if (int64_t{description.Pitch} * description.Height > int64_t{sizeof colour_})
                description.Bits = nullptr;
            if (Z_CreateSurface(&description, &context) == 1) Z_DeleteSurface(context);
            FUZZ_EXPECT(Z_DeleteSurface(context) == Z_ERROR_ARGUMENT);
            FUZZ_EXPECT(Z_SetScreenSurface(reinterpret_cast<HDC>(bad)) == Z_ERROR_ARGUMENT || bad == 0);
        }
        }
    }

    Input& in_;
    std::array<BitmapHandle, 8> records_{};
    BitmapList list_ = nullptr, stale_ = nullptr;
    HPALETTE palette_, deadPalette_;
    uint8_t user_[MostBytes] = {};
    uint8_t colour_[64] = {};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Host host(input);
    for (int step = 0; step < 100 && !input.IsEmpty(); ++step)
        host.Step();
    return 0;
}
