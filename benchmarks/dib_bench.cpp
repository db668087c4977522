// Device-independent bitmaps made into bitmaps and back, of the photograph and of a picture of a screen.
#include "dib_work.h"

#include "pictures.h"
#include "support/global_blocks.h"
#include "work.h"

#include <algorithm>
#include <cstring>

namespace bench {

namespace {

constexpr int32_t Width = PhotographWidth, Height = PhotographHeight;

constexpr uint32_t Code(const char (&name)[5]) {
    return static_cast<uint32_t>(name[0] | name[1] << 8 | name[2] << 16 | name[3] << 24);
}

BITMAPINFOHEADER HeaderOf(int bits, uint32_t compression, size_t imageBytes) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = Width;
    header.biHeight = Height;
    header.biPlanes = 1;
    header.biBitCount = static_cast<uint16_t>(bits);
    header.biCompression = compression;
    header.biSizeImage = static_cast<uint32_t>(imageBytes);
    header.biXPelsPerMeter = header.biYPelsPerMeter = 3780;
    return header;
}

void Convert(const void* header, const void* bits) {
    BitmapHandle bitmap;
    Z_ConvertFromDIB(&bitmap, header, bits);
    Touch(bitmap.Addr);
    Z_FreeBitmap(&bitmap);
}

void ConvertYuv(const std::vector<uint8_t>& bits, int bitCount, uint32_t code) {
    const BITMAPINFOHEADER header = HeaderOf(bitCount, code, bits.size());
    Convert(&header, bits.data());
}

// Windows with title bars and text, of a few colours.
std::vector<uint8_t> ScreenRow(int32_t y) {
    std::vector<uint8_t> row(Width);
    const uint8_t* ink =
        Data(PageBitmap()) + static_cast<size_t>(y + 1500) * PageBitmap()->BytesPerLine + 150;
    for (int32_t x = 0; x < Width; ++x) {
        const bool isTitle = y % 600 < 40, isEdge = x % 1000 < 3 || y % 600 < 3;
        const bool isInk = (ink[x / 8] >> (7 - x % 8) & 1) != 0;
        row[static_cast<size_t>(x)] = isEdge ? 7 : isTitle ? 12 : isInk ? 0 : 15;
    }
    return row;
}

// Runs of three pixels and more, the others one by one.
void AddRuns(std::vector<uint8_t>& data, const std::vector<uint8_t>& row) {
    const auto runAt = [&](size_t x) {
        size_t end = x + 1;
        while (end < row.size() && end < x + 255 && row[end] == row[x])
            ++end;
        return end - x;
    };
    for (size_t x = 0; x < row.size();) {
        size_t single = 0;
        while (x + single < row.size() && single < 254 && runAt(x + single) < 3)
            single += runAt(x + single);
        single = std::min<size_t>(single, 254);
        if (single >= 3) {
            data.insert(data.end(), {0, static_cast<uint8_t>(single)});
            data.insert(data.end(), row.begin() + static_cast<ptrdiff_t>(x),
                        row.begin() + static_cast<ptrdiff_t>(x + single));
            if (single % 2 != 0) data.push_back(0);
            x += single;
        } else {
            const size_t run = runAt(x);
            data.insert(data.end(), {static_cast<uint8_t>(run), row[x]});
            x += run;
        }
    }
    data.insert(data.end(), {0, 0});
}

void DecodeScreen() {
    static const std::vector<uint8_t> block = [] {
        std::vector<uint8_t> data;
        for (int32_t y = 0; y < Height; ++y)
            AddRuns(data, ScreenRow(y));
        data.insert(data.end(), {0, 1});
        const BITMAPINFOHEADER header = HeaderOf(8, 1, data.size());
        constexpr size_t headBytes = sizeof header + 256 * sizeof(RGBQUAD);
        std::vector<uint8_t> all(headBytes + data.size());
        std::memcpy(all.data(), &header, sizeof header);
        std::memcpy(all.data() + headBytes, data.data(), data.size());
        return all;
    }();
    Convert(block.data(), block.data() + sizeof(BITMAPINFOHEADER) + 256 * sizeof(RGBQUAD));
}

HGLOBAL PhotographBlock() {
    static HGLOBAL block = Z_ConvertToDIB(PhotographBitmap(24, 1));
    return block;
}

void Adopt() {
    BitmapHandle bitmap;
    Z_MirrorFromDIB(&bitmap, PhotographBlock());
    Touch(&bitmap);
    Z_FreeBitmap(&bitmap);
}

void CopyFrom() {
    const uint8_t* data = zkr::test::LockGlobal(PhotographBlock());
    Convert(data, data + sizeof(BITMAPINFOHEADER));
    zkr::test::UnlockGlobal(PhotographBlock());
}

void CopyTo() {
    HGLOBAL block = Z_ConvertToDIB(PhotographBitmap(24, 1));
    Touch(block);
    zkr::test::FreeGlobal(block);
}

void CopyPhotograph() {
    static std::vector<uint8_t> target(PhotographPixels * 3);
    std::memcpy(target.data(), Photograph().data(), target.size());
    Touch(target.data());
}

// Five, six and five bits, which become five each.
void Unmask() {
    static HGLOBAL block = [] {
        BITMAPINFOHEADER header = HeaderOf(16, 3, PhotographPixels * 2);
        const uint32_t masks[3] = {0xF800, 0x7E0, 0x1F};
        std::vector<uint8_t> all(sizeof header + sizeof masks + PhotographPixels * 2);
        std::memcpy(all.data(), &header, sizeof header);
        std::memcpy(all.data() + sizeof header, masks, sizeof masks);
        std::memcpy(all.data() + sizeof header + sizeof masks, Photograph().data(), PhotographPixels * 2);
        return zkr::test::GlobalOf(all.data(), all.size());
    }();
    BitmapHandle bitmap;
    Z_MirrorFromDIB(&bitmap, block);
    Touch(&bitmap);
    Z_FreeBitmap(&bitmap);
}

const Adds adds([] {
    AddWork(FromPacked422, {"dib: packed 4:2:2 to 24", PhotographPixels, PhotographPixels * 5,
                            [] { ConvertYuv(PackedPhotograph(), 16, Code("YUY2")); }});
    AddWork(FromPlanar420, {"dib: planar 4:2:0 to 24", PhotographPixels, PhotographPixels * 9 / 2,
                            [] { ConvertYuv(PlanarPhotograph(), 12, Code("I420")); }});
    AddWork(FromRuns8, {"dib: runs of a screen to 8", PhotographPixels, PhotographPixels, DecodeScreen});
    AddWork(AdoptBlock, {"dib: block of 24 adopted", PhotographPixels, 0, Adopt});
    AddPeer(AdoptBlock, {"memcpy of its pixels", 100, CopyPhotograph});
    AddWork(CopyFromBlock, {"dib: block of 24 copied", PhotographPixels, PhotographPixels * 6, CopyFrom});
    AddWork(ToBlock24, {"dib: block of 24 made", PhotographPixels, PhotographPixels * 6, CopyTo});
    AddWork(UnmaskBlock, {"dib: masks of 5, 6, 5 bits", PhotographPixels, PhotographPixels * 4, Unmask});
});

} // namespace

const std::vector<uint8_t>& PackedPhotograph() {
    static const std::vector<uint8_t> packed = [] {
        std::vector<uint8_t> bytes(PhotographPixels * 2);
        for (size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = Photograph()[i];
        return bytes;
    }();
    return packed;
}

const std::vector<uint8_t>& PlanarPhotograph() {
    static const std::vector<uint8_t> planes(
        Photograph().begin(), Photograph().begin() + static_cast<ptrdiff_t>(PhotographPixels * 3 / 2));
    return planes;
}

} // namespace bench
