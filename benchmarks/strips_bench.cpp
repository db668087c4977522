// Rows of compressed strips, one after the other, against the codecs alone on the same strips. Rows that are
// put into strips that there are cost a restored and a compressed strip.
#include "pictures.h"
#include "work.h"

#include <cstdlib>
#include <vector>

#define QOI_NO_STDIO
#define QOI_IMPLEMENTATION
#include <qoi.h>
#include <zlib.h>

namespace bench {

namespace {

constexpr int32_t StripRows = 16;
constexpr int DeflateLevel = 3;

using Bytes = std::vector<uint8_t>;

// The strips of a picture as its codec is given them.
std::vector<Bytes> ColourStrips() {
    const size_t bytes = size_t{PhotographWidth} * 3 * StripRows;
    std::vector<Bytes> strips;
    for (size_t place = 0; place < PhotographPixels * 3; place += bytes)
        strips.emplace_back(Photograph().data() + place, Photograph().data() + place + bytes);
    return strips;
}
std::vector<Bytes> BitonalStrips() {
    std::vector<Bytes> strips;
    const size_t rowBytes = PageBitmap()->BytesPerLine;
    for (int32_t row = 0; row < PageHeight; row += StripRows) {
        const uint8_t* data = Data(PageBitmap()) + static_cast<size_t>(row) * rowBytes;
        Bytes strip(data, data + rowBytes * StripRows);
        for (size_t i = strip.size(); i-- > rowBytes;)
            strip[i] ^= strip[i - rowBytes];
        strips.push_back(strip);
    }
    return strips;
}

Bytes EncodeColour(const Bytes& strip) {
    const qoi_desc form = {PhotographWidth, StripRows, 3, QOI_SRGB};
    int bytes = 0;
    auto* data = static_cast<uint8_t*>(qoi_encode(strip.data(), &form, &bytes));
    const Bytes result(data, data + bytes);
    std::free(data);
    return result;
}
void DecodeColour(const Bytes& data, Bytes&) {
    qoi_desc form;
    void* pixels = qoi_decode(data.data(), static_cast<int>(data.size()), &form, 3);
    Touch(pixels);
    std::free(pixels);
}
Bytes EncodeBitonal(const Bytes& strip) {
    uLongf bytes = compressBound(static_cast<uLong>(strip.size()));
    Bytes data(bytes);
    compress2(data.data(), &bytes, strip.data(), static_cast<uLong>(strip.size()), DeflateLevel);
    data.resize(bytes);
    return data;
}
void DecodeBitonal(const Bytes& data, Bytes& strip) {
    uLongf bytes = static_cast<uLongf>(strip.size());
    uncompress(strip.data(), &bytes, data.data(), static_cast<uLong>(data.size()));
    Touch(strip.data());
}

// A picture in a bitmap of strips, and what its codec makes of them.
struct Picture {
    Picture(int32_t width, int32_t height, int32_t bits, const uint8_t* pixels, std::vector<Bytes> strips,
            Bytes (*encode)(const Bytes&), void (*decode)(const Bytes&, Bytes&))
        : Strips(std::move(strips)), Encode(encode), Decode(decode) {
        if (Z_CreateBitmap(&Bitmap, MemorySuperCompressed, width, height, bits, Z_ORDER_BGR, nullptr, 2,
                           nullptr, 0) != Z_SUCCESS)
            std::abort();
        PutRows(pixels);
        for (const Bytes& strip : Strips)
            Compressed.push_back(Encode(strip));
        Row.resize(Bitmap.BytesPerLine);
    }
    void GetRows() {
        for (int32_t y = 0; y < Bitmap.Height; ++y)
            Z_GetBitmapRow(&Bitmap, Row.data(), y, Bitmap.BytesPerLine);
        Touch(Row.data());
    }
    void PutRows(const uint8_t* pixels) {
        for (int32_t y = 0; y < Bitmap.Height; ++y)
            Z_PutBitmapRow(&Bitmap, pixels + static_cast<size_t>(y) * Bitmap.BytesPerLine, y,
                           Bitmap.BytesPerLine);
    }
    void DecodeAll() {
        for (const Bytes& data : Compressed)
            Decode(data, Strip);
    }
    void EncodeAll() {
        for (const Bytes& strip : Strips)
            Touch(Encode(strip).data());
    }

    BitmapHandle Bitmap;
    std::vector<Bytes> Strips, Compressed;
    Bytes (*Encode)(const Bytes&);
    void (*Decode)(const Bytes&, Bytes&);
    Bytes Row, Strip = Bytes(Strips.front().size());
};

Picture& Colour() {
    static Picture picture(PhotographWidth, PhotographHeight, 24, Photograph().data(), ColourStrips(),
                           EncodeColour, DecodeColour);
    return picture;
}
Picture& Bitonal() {
    static Picture picture(PageWidth, PageHeight, 1, Data(PageBitmap()), BitonalStrips(), EncodeBitonal,
                           DecodeBitonal);
    return picture;
}

void AddStrips(WorkNumber get, WorkNumber put, const std::string& name, const char* codec, size_t pixels,
               size_t bytes, Picture& (*picture)(), const uint8_t* (*data)()) {
    AddWork(get, {"get rows, " + name, pixels, bytes, [=] { picture().GetRows(); }});
    AddPeer(get, {codec, 0.9, [=] { picture().DecodeAll(); }});
    AddWork(put, {"put rows, " + name, pixels, 2 * bytes, [=] { picture().PutRows(data()); }});
    AddPeer(put, {codec, 0.9, [=] {
                      picture().DecodeAll();
                      picture().EncodeAll();
                  }});
}

const Adds adds([] {
    AddStrips(GetColourStrips, PutColourStrips, "colour strips", "QOI alone", PhotographPixels,
              PhotographPixels * 3, Colour, [] { return Photograph().data(); });
    AddStrips(GetBitonalStrips, PutBitonalStrips, "1-bit strips", "zlib alone", PagePixels, PagePixels / 8,
              Bitonal, []() -> const uint8_t* { return Data(PageBitmap()); });
});

} // namespace

} // namespace bench
