// ZFCMP13S: 24-bit strips without loss, by QOI. A strip is taken for one row of groups of three bytes,
// padding included, so that nothing of it needs a copy; up to two bytes may be left behind the last group.
// Compressed:
//
//   the QOI stream of the groups, the bytes left over, a checksum of all bytes before it (8 bytes)
//
// The decoder of QOI stays inside its buffers whatever it is given; the checksum tells corrupt data apart.
#include "filters/checksum.h"
#include "filters/strip.h"

#include <climits>
#include <cstring>

namespace zkr::filters {

namespace {
void* Provide(const void* description, int bytes);
}

} // namespace zkr::filters

// The codec asks for its output where its argument desc is in scope: desc is the head of an Area, which knows
// the room for it.
#define QOI_MALLOC(bytes) zkr::filters::Provide(desc, bytes)
#define QOI_FREE(pointer) static_cast<void>(pointer)
#define QOI_NO_STDIO
#define QOI_IMPLEMENTATION
#include <qoi.h>

namespace zkr::filters {

namespace {

constexpr int32_t Depth = 24;
constexpr uint8_t Channels = 3;

struct Area {
    qoi_desc Description;
    void* Memory;
    uint64_t Room;
};

void* Provide(const void* description, int bytes) {
    const auto* area = static_cast<const Area*>(description);
    return bytes > 0 && static_cast<uint64_t>(bytes) <= area->Room ? area->Memory : nullptr;
}

} // namespace

} // namespace zkr::filters

using namespace zkr::filters;

int32_t Z_CALL fltSaveBuffer(const void* pixels, const BITMAPINFOHEADER* header, void* output,
                             uint32_t* outputBytes, int32_t, int32_t, int32_t, int32_t, int32_t) {
    const size_t plain = StripBytes(header, Depth);
    const size_t left = plain % Channels, tail = left + sizeof(uint64_t);
    if (plain == 0 || pixels == nullptr || output == nullptr || outputBytes == nullptr || *outputBytes < tail)
        return Failure;
    const Area area = {.Description = {.width = static_cast<unsigned int>(plain / Channels),
                                       .height = 1,
                                       .channels = Channels,
                                       .colorspace = QOI_SRGB},
                       .Memory = output,
                       .Room = *outputBytes - tail};
    int bytes = 0;
    if (qoi_encode(pixels, &area.Description, &bytes) == nullptr) return Failure;
    auto* end = static_cast<uint8_t*>(output) + bytes;
    std::memcpy(end, static_cast<const uint8_t*>(pixels) + plain - left, left);
    const auto summed = static_cast<size_t>(bytes) + left;
    const uint64_t sum = Checksum(static_cast<const uint8_t*>(output), summed);
    std::memcpy(end + left, &sum, sizeof sum);
    *outputBytes = static_cast<uint32_t>(summed + sizeof sum);
    return Z_FILTER_SUCCESS;
}

int32_t Z_CALL fltLoadBuffer(const void* data, uint32_t bytes, void* pixels, int32_t, int32_t width,
                             int32_t rows, int32_t bitsPerPixel, int32_t, int32_t) {
    const size_t plain = StripBytes(width, rows, bitsPerPixel, Depth);
    const size_t left = plain % Channels, tail = left + sizeof(uint64_t);
    if (plain == 0 || data == nullptr || pixels == nullptr || bytes < tail || bytes > INT_MAX) return Failure;
    const auto* source = static_cast<const uint8_t*>(data);
    uint64_t sum;
    std::memcpy(&sum, source + bytes - sizeof sum, sizeof sum);
    if (Checksum(source, bytes - sizeof sum) != sum) return Failure;

    Area area = {.Description = {}, .Memory = pixels, .Room = plain - left};
    if (qoi_decode(source, static_cast<int>(bytes - tail), &area.Description, Channels) == nullptr ||
        area.Description.width != plain / Channels || area.Description.height != 1)
        return Failure;
    std::memcpy(static_cast<uint8_t*>(pixels) + plain - left, source + bytes - tail, left);
    return Z_FILTER_SUCCESS;
}
