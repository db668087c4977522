// Parity cases of device-independent bitmaps: made of bitmaps, and bitmaps of them on all roads.
#include "parity/subject.h"
#include "support/global_blocks.h"

#include "zkr13n/dib.h"

#include <algorithm>
#include <vector>

namespace zkr::test {
namespace {

void ToDibCase(Seeded& seeded, Digest& digest) {
    Subject picture(seeded);
    picture.XResolution = seeded.Between(-3, 600), picture.YResolution = static_cast<int>(seeded.Next());
    const int dibType = seeded.Between(-1, 3);
    HGLOBAL block = seeded.Below(2) ? Z_ConvertToDIB2(&picture, dibType) : Z_ChangeToDIB2(&picture, dibType);
    digest.Add(block != nullptr);
    if (block == nullptr) return;
    const uint8_t* bytes = LockGlobal(block);
    uint32_t headerBytes, colours;
    std::memcpy(&headerBytes, bytes, 4);
    std::memcpy(&colours, bytes + 32, 4);
    digest.Add(bytes, headerBytes + colours * 4);
    UnlockGlobal(block);
    BitmapHandle again{};
    digest.Add(Z_ChangeFromDIB(&again, block));
    Z_AccessBitmap(&again);
    AddPixels(digest, again);
    digest.Add(again.XResolution);
    Z_FreeBitmap(&again);
}

struct Form {
    int Bits;
    uint32_t Compression;
};
constexpr uint32_t Code(char a, char b, char c, char d) {
    return static_cast<uint32_t>(a | b << 8 | c << 16 | d << 24);
}
constexpr Form Forms[] = {{1, 0},
                          {4, 0},
                          {8, 0},
                          {16, 0},
                          {24, 0},
                          {32, 0},
                          {8, 1},
                          {4, 2},
                          {16, 3},
                          {32, 3},
                          {9, Code('Y', 'V', 'U', '9')},
                          {12, Code('I', '4', '2', '0')},
                          {24, Code('Y', 'V', '1', '2')},
                          {16, Code('U', 'Y', 'V', 'Y')},
                          {16, Code('Y', 'U', 'Y', '2')},
                          {24, Code('Y', 'V', 'Y', 'U')},
                          {16, Code('Y', '4', '1', 'P')}};

void FromDibCase(Seeded& seeded, Digest& digest) {
    constexpr int HeaderSizes[] = {12, 40, 40, 40, 52, 108, 124, 30};
    const Form form = Pick(seeded, Forms);
    const int headerBytes = Pick(seeded, HeaderSizes);
    const bool isYuv = form.Compression > 3;
    int width = seeded.Between(isYuv ? 1 : 0, 150), height = seeded.Between(-40, 40);
    if (isYuv) width = width / 8 * 16 + (seeded.Below(9) == 0);
    std::vector<uint8_t> block(2000 + 160 * 8 * 41);
    FillRandom(seeded, block.data(), block.size());
    const auto put = [&](size_t offset, auto value) { std::memcpy(&block[offset], &value, sizeof value); };
    put(0, headerBytes);
    put(4, width);
    put(8, height);
    put(14, static_cast<uint16_t>(form.Bits));
    put(16, form.Compression);
    put(20, seeded.Between(1, 3000)); // runs that need not end are read no further
    put(24, seeded.Between(1, 5000));
    put(28, seeded.Between(1, 5000));
    put(32, seeded.Below(3) ? 0 : seeded.Below(300));
    if (headerBytes == 12) {
        put(4, static_cast<uint16_t>(width));
        put(6, static_cast<uint16_t>(std::max(height, 0)));
        put(10, static_cast<uint16_t>(form.Bits));
    }
    const int road = seeded.Below(3);
    HGLOBAL handle = GlobalOf(block.data(), block.size());
    BitmapHandle bitmap{};
    const ReturnCode result = road == 0   ? Z_ConvertFromDIB(&bitmap, block.data(), block.data() + 1500)
                              : road == 1 ? Z_ChangeFromDIB(&bitmap, handle)
                                          : Z_MirrorFromDIB(&bitmap, handle);
    digest.Add(result);
    Z_AccessBitmap(&bitmap);
    AddPixels(digest, bitmap);
    Z_FreeBitmap(&bitmap);
    if (road != 1 || result != Z_SUCCESS) FreeGlobal(handle);
}

constexpr Family Families[] = {{"to-dib", 1500, ToDibCase}, {"from-dib", 3000, FromDibCase}};

} // namespace

std::span<const Family> DibFamilies() {
    return Families;
}

} // namespace zkr::test
