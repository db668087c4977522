// The page of text as runs: encoded, decoded, flipped and mirrored in buffers. The bytes of each work are
// those that it reads and writes, so that its ratio to memcpy is one of memory traffic, not of pixels.
#include "pictures.h"
#include "work.h"

#include <cstring>
#include <vector>

namespace bench {

namespace {

constexpr size_t MostBytes = PageHeight * (4 + 2 * (size_t{PageWidth} + 1));

size_t BytesOf(const std::vector<uint16_t>& rows) {
    size_t place = 0;
    for (int32_t row = 0; row < PageHeight; ++row) {
        uint32_t count;
        std::memcpy(&count, &rows[place], sizeof count);
        place += 2 + count;
    }
    return place * sizeof(uint16_t);
}

const std::vector<uint16_t>& PageRuns() {
    static const std::vector<uint16_t> rows = [] {
        std::vector<uint16_t> made(MostBytes / sizeof(uint16_t));
        Z_CompressRows(made.data(), Data(PageBitmap()), PageWidth, PageHeight);
        made.resize(BytesOf(made) / sizeof(uint16_t));
        return made;
    }();
    return rows;
}

std::vector<uint16_t>& Target() {
    // A mirrored row may be a word longer.
    static std::vector<uint16_t> rows(PageRuns().size() + PageHeight);
    return rows;
}

const Adds adds([] {
    const size_t packed = PageBitmap()->Size;
    const size_t runs = PageRuns().size() * sizeof(uint16_t);
    AddWork(PageToRuns, {"page to runs", PagePixels, packed + runs, [] {
                             Z_CompressRows(Target().data(), Data(PageBitmap()), PageWidth, PageHeight);
                             Touch(Target().data());
                         }});
    AddWork(RunsToPage, {"runs to page", PagePixels, packed + runs, [] {
                             static std::vector<uint8_t> page(PageBitmap()->Size);
                             Z_ExpandRows(PageRuns().data(), page.data(), PageWidth, PageHeight);
                             Touch(page.data());
                         }});
    AddWork(FlipRuns, {"flip a page of runs", PagePixels, 2 * runs, [] {
                           Z_FlipCompressedBuffer(PageRuns().data(), Target().data(), PageHeight);
                           Touch(Target().data());
                       }});
    AddWork(MirrorRuns, {"mirror a page of runs", PagePixels, 2 * runs, [] {
                             Z_MirrorCompressedBuffer(PageRuns().data(), Target().data(), PageHeight);
                             Touch(Target().data());
                         }});
});

} // namespace

} // namespace bench
