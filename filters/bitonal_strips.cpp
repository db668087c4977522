// ZFFAX13S: 1-bit strips without loss. Each row is exclusive-ored with the row above it, which leaves little
// of what goes straight down, and the whole is one zlib stream, whose checksum tells corrupt data apart.
#include "filters/strip.h"

#include <algorithm>
#include <array>

#include <zlib.h>

namespace zkr::filters {

namespace {

constexpr int32_t Depth = 1;
constexpr int Level = 3;

// Feeds the strip to the stream as differences, a fixed buffer at a time.
bool Deflate(z_stream& stream, const uint8_t* pixels, size_t plain, size_t rowBytes) {
    std::array<uint8_t, 4096> differences;
    for (size_t place = 0; place < plain;) {
        const uint8_t* bytes = pixels + place;
        // The first row has none above it.
        const size_t most = place < rowBytes ? rowBytes - place : plain - place;
        const size_t count = std::min(differences.size(), most);
        for (size_t i = 0; i < count; ++i)
            differences[i] = place < rowBytes ? bytes[i] : bytes[i] ^ *(bytes - rowBytes + i);
        place += count;
        stream.next_in = differences.data();
        stream.avail_in = static_cast<uInt>(count);
        const int result = deflate(&stream, place < plain ? Z_NO_FLUSH : Z_FINISH);
        if (result != (place < plain ? Z_OK : Z_STREAM_END) || stream.avail_in != 0) return false;
    }
    return true;
}

void UndoDifferences(uint8_t* pixels, size_t plain, size_t rowBytes) {
    for (uint8_t* row = pixels + rowBytes; row != pixels + plain; row += rowBytes) {
        const uint8_t* above = row - rowBytes;
        for (size_t i = 0; i < rowBytes; ++i)
            row[i] ^= above[i];
    }
}

} // namespace

} // namespace zkr::filters

using namespace zkr::filters;

int32_t Z_CALL fltSaveBuffer(const void* pixels, const BITMAPINFOHEADER* header, void* output,
                             uint32_t* outputBytes, int32_t, int32_t, int32_t, int32_t, int32_t) {
    const size_t plain = StripBytes(header, Depth);
    if (plain == 0 || pixels == nullptr || output == nullptr || outputBytes == nullptr) return Failure;
    z_stream stream = {};
    if (deflateInit(&stream, Level) != Z_OK) return Failure;
    stream.next_out = static_cast<Bytef*>(output);
    stream.avail_out = *outputBytes;
    const bool whole = Deflate(stream, static_cast<const uint8_t*>(pixels), plain,
                               plain / static_cast<size_t>(-header->biHeight));
    const uint32_t written = *outputBytes - stream.avail_out;
    deflateEnd(&stream);
    if (!whole) return Failure;
    *outputBytes = written;
    return Z_FILTER_SUCCESS;
}

int32_t Z_CALL fltLoadBuffer(const void* data, uint32_t bytes, void* pixels, int32_t, int32_t width,
                             int32_t rows, int32_t bitsPerPixel, int32_t, int32_t) {
    const size_t plain = StripBytes(width, rows, bitsPerPixel, Depth);
    if (plain == 0 || data == nullptr || pixels == nullptr) return Failure;
    z_stream stream = {};
    stream.next_in = const_cast<Bytef*>(static_cast<const Bytef*>(data));
    stream.avail_in = bytes;
    if (inflateInit(&stream) != Z_OK) return Failure;
    stream.next_out = static_cast<Bytef*>(pixels);
    stream.avail_out = static_cast<uInt>(plain);
    const bool whole =
        inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_in == 0 && stream.avail_out == 0;
    inflateEnd(&stream);
    if (!whole) return Failure;
    UndoDifferences(static_cast<uint8_t*>(pixels), plain, plain / static_cast<size_t>(rows));
    return Z_FILTER_SUCCESS;
}
