// The alpha of a bitmap as a gray bitmap of its own, and back.
#include "zkr13n/alpha.h"

#include "core/attachments.h"

#include "core/depth.h"
#include "core/flags.h"
#include "core/predicates.h"
#include "core/record_like.h"
#include "core/row_access.h"
#include "core/row_walk.h"
#include "core/scratch.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/copy.h"
#include "zkr13n/flip.h"
#include "zkr13n/gray.h"
#include "zkr13n/locks.h"
#include "zkr13n/palettes.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>

namespace zkr {

namespace {

// ---- Out of a bitmap

using TakeAlpha = void (*)(const uint8_t* source, uint8_t* alpha, size_t pixels);

// Every so many bytes of the source one byte, from an offset on.
template <size_t pixelBytes, size_t offset>
void TakeByte(const uint8_t* source, uint8_t* alpha, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i)
        alpha[i] = source[i * pixelBytes + offset];
}

void TakeWord(const uint8_t* source, uint8_t* alpha, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i)
        std::memcpy(alpha + i * 2, source + i * 8 + 6, 2);
}

void TakeBit(const uint8_t* source, uint8_t* alpha, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i)
        alpha[i] = (source[i * 2 + 1] & 0x80) != 0 ? 0xFF : 0;
}

// Null for a depth without alpha.
TakeAlpha TakerFor(int32_t bits, int32_t alphaBits) {
    switch (bits) {
    case 16: return TakeBit;
    case 32: return TakeByte<4, 3>;
    case 64: return alphaBits == 16 ? TakeWord : TakeByte<8, 7>;
    default: return nullptr;
    }
}

ReturnCode MakeAlphaRecord(BitmapHandle& alpha, BitmapHandle& source) {
    const bool deep = source.BitsPerPixel == 64 && Z_IsSupportLocked(Z_SUPPORT_EXTGRAY) == 0;
    static_cast<void>(
        InitRecordLike(alpha, source, source.Width, source.Height, deep ? 16 : 8, carry::RegionUnclipped));
    if (deep) alpha.Order = Z_ORDER_GRAY;
    const ReturnCode result = AllocatePlainLike(alpha, source);
    if (result != code::Success) return result;
    alpha.Palette = Z_CreateGrayPalette(8); // at 16 bits too
    if (alpha.Palette == nullptr) return code::OutOfMemory;
    return CopyRegion(alpha, source, 0, 0);
}

// Fresh rows are zero, which is the alpha of depths that have none.
ReturnCode TakeRows(BitmapHandle& source, BitmapHandle& alpha) {
    const TakeAlpha take = TakerFor(source.BitsPerPixel, alpha.BitsPerPixel);
    if (take == nullptr) return code::Success;
    ScratchRow from(source), to(alpha);
    if (!from || !to) return code::OutOfMemory;
    std::memset(to.data(), 0, alpha.BytesPerLine);
    return RowWalk(source).With(alpha).Run(source.Height, [&](int32_t row) {
        const uint8_t* data;
        const ReturnCode fetched = FetchRow(source, row, from.data(), data);
        if (fetched != code::Success) return fetched;
        return StoreRow(alpha, row, to.data(),
                        [&](uint8_t* target) { take(data, target, static_cast<size_t>(source.Width)); });
    });
}

// ---- Into a bitmap

using PutAlpha = void (*)(const uint8_t* alpha, uint8_t* pixels, size_t width);

void PutBytes(const uint8_t* alpha, uint8_t* pixels, size_t width) {
    for (size_t i = 0; i < width; ++i)
        pixels[i * 4 + 3] = alpha[i];
}

// Four bytes are moved for each pixel of eight: alpha reaches the first half of them.
void PutWords(const uint8_t* alpha, uint8_t* pixels, size_t width) {
    for (size_t i = 0; i < width / 2; ++i)
        std::memcpy(pixels + i * 8 + 6, alpha + i * 2, 2);
}

void PutTopBit(uint8_t* pixels, size_t i, bool isSet) {
    uint8_t& high = pixels[i * 2 + 1];
    high = static_cast<uint8_t>((high & 0x7F) | (isSet ? 0x80 : 0));
}
void PutBitsOfBytes(const uint8_t* alpha, uint8_t* pixels, size_t width) {
    for (size_t i = 0; i < width; ++i)
        PutTopBit(pixels, i, alpha[i] >= 128);
}
void PutBitsOfBits(const uint8_t* alpha, uint8_t* pixels, size_t width) {
    for (size_t i = 0; i < width; ++i)
        PutTopBit(pixels, i, (alpha[i / 8] << i % 8 & 0x80) != 0);
}

// What is moved for a width of one pixel, and how it is merged.
struct Merge {
    Merge(int32_t alphaBits, int32_t bits)
        : PixelBytes(bits == 16 ? 2 : 4), HasBits(alphaBits == 1), Put(bits == 64       ? PutWords
                                                                       : bits == 32     ? PutBytes
                                                                       : alphaBits == 1 ? PutBitsOfBits
                                                                                        : PutBitsOfBytes) {}
    uint32_t PixelBytes;
    bool HasBits; // of alpha, else bytes
    PutAlpha Put;
};

ReturnCode RaiseToAlpha(BitmapHandle& bitmap) {
    const int32_t bits = bitmap.BitsPerPixel;
    if (DepthOf(bits).AlphaBits > 0) return code::Success;
    const bool isRgb = bits >= 16 && IsRedFirst(bitmap.Order);
    return Z_ColorResBitmap(&bitmap, &bitmap, bits == 48 ? 64 : 32, isRgb ? 0 : COLORRES_ORDER_BGR, nullptr,
                            nullptr, 0, nullptr, 0);
}

bool CanBeUsedDirectly(const BitmapHandle& alpha, const BitmapHandle& bitmap) {
    const int32_t a = alpha.BitsPerPixel, b = bitmap.BitsPerPixel;
    const bool fits = b == 16 ? a == 1 || a == 8 : b == 32 ? a == 8 : a == 16;
    return fits && Z_IsGrayScaleBitmap(&alpha) == GRAY_ORDEREDNORMAL &&
           alpha.ViewPerspective == bitmap.ViewPerspective;
}

// A gray copy of an alpha bitmap in a view, freed at the end of the scope.
class GrayCopy {
  public:
    GrayCopy() = default;
    ~GrayCopy() { Z_FreeBitmap(&record_); }
    GrayCopy(const GrayCopy&) = delete;
    GrayCopy& operator=(const GrayCopy&) = delete;

    ReturnCode Make(BitmapHandle& source, int32_t bits, int32_t viewPerspective) {
        ReturnCode result = Z_CopyBitmap(&record_, &source);
        if (result == code::Success) result = Z_GrayScaleBitmap(&record_, bits);
        if (result != code::Success) return result;
        return Z_IntChangeBitmapViewPerspective(nullptr, &record_, viewPerspective, 0);
    }
    BitmapHandle& Record() { return record_; }

  private:
    BitmapHandle record_{};
};

ReturnCode MergeRows(BitmapHandle& bitmap, BitmapHandle& alpha) {
    const auto width = static_cast<uint32_t>(std::min(alpha.Width, bitmap.Width));
    const int32_t height = std::min(alpha.Height, bitmap.Height);
    const Merge merge(alpha.BitsPerPixel, bitmap.BitsPerPixel);
    const uint32_t alphaBytes = merge.HasBits ? (width + 7) / 8 : width;
    const uint32_t bytes = width * merge.PixelBytes;

    ScratchBuffer<uint8_t> alphaRow(std::max(alpha.BytesPerLine, alphaBytes));
    ScratchRow pixels(bitmap);
    if (!alphaRow || !pixels) return code::OutOfMemory;
    return RowWalk(bitmap).With(alpha).Run(height, [&](int32_t row) {
        ReturnCode result = ReadExactly(alpha, alphaRow.data(), row, 0, alphaBytes);
        if (result == code::Success) result = ReadExactly(bitmap, pixels.data(), row, 0, bytes);
        if (result != code::Success) return result;
        merge.Put(alphaRow.data(), pixels.data(), width);
        return WriteExactly(bitmap, pixels.data(), row, 0, bytes);
    });
}

} // namespace

} // namespace zkr

using namespace zkr;

ReturnCode Z_CALL Z_GetBitmapAlpha(BitmapHandle* bitmap, BitmapHandle* alpha) {
    if (!IsAllocated(bitmap) || alpha == nullptr || alpha == bitmap) return code::InvalidArgument;
    ReturnCode result = MakeAlphaRecord(*alpha, *bitmap);
    if (result == code::Success) result = TakeRows(*bitmap, *alpha);
    if (result != code::Success) Z_FreeBitmap(alpha);
    return result;
}

ReturnCode Z_CALL Z_SetBitmapAlpha(BitmapHandle* bitmap, BitmapHandle* alpha) {
    if (!IsAllocated(bitmap) || !IsAllocated(alpha)) return code::InvalidArgument;
    const ReturnCode raised = RaiseToAlpha(*bitmap);
    if (raised != code::Success) return raised;
    if (CanBeUsedDirectly(*alpha, *bitmap)) return MergeRows(*bitmap, *alpha);
    GrayCopy copy;
    const ReturnCode made = copy.Make(*alpha, bitmap->BitsPerPixel == 64 ? 16 : 8, bitmap->ViewPerspective);
    return made == code::Success ? MergeRows(*bitmap, copy.Record()) : made;
}
