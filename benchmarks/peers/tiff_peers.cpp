// libtiff's runs: the page of text as CCITT Group 3 codes of one dimension, in a file in memory.
#include "../pictures.h"
#include "../work.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace bench {

namespace {

struct MemoryFile {
    std::vector<uint8_t> Bytes;
    size_t Place = 0;
};

MemoryFile& FileOf(thandle_t handle) {
    return *static_cast<MemoryFile*>(handle);
}

tmsize_t Read(thandle_t handle, void* to, tmsize_t wanted) {
    MemoryFile& file = FileOf(handle);
    const size_t count = std::min(static_cast<size_t>(wanted), file.Bytes.size() - file.Place);
    std::memcpy(to, file.Bytes.data() + file.Place, count);
    file.Place += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t Write(thandle_t handle, void* from, tmsize_t count) {
    MemoryFile& file = FileOf(handle);
    const size_t end = file.Place + static_cast<size_t>(count);
    if (end > file.Bytes.size()) file.Bytes.resize(end);
    std::memcpy(file.Bytes.data() + file.Place, from, static_cast<size_t>(count));
    file.Place = end;
    return count;
}

toff_t Seek(thandle_t handle, toff_t offset, int origin) {
    MemoryFile& file = FileOf(handle);
    const size_t base = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? file.Place : file.Bytes.size();
    return file.Place = base + offset;
}

TIFF* Open(MemoryFile& file, const char* mode) {
    return TIFFClientOpen(
        "page", mode, &file, Read, Write, Seek, [](thandle_t) { return 0; },
        [](thandle_t handle) -> toff_t { return FileOf(handle).Bytes.size(); }, nullptr, nullptr);
}

void Encode(MemoryFile& file) {
    file.Place = 0;
    TIFF* tiff = Open(file, "wm");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, PageWidth);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, PageHeight);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, PageHeight);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFWriteEncodedStrip(tiff, 0, Data(PageBitmap()), static_cast<tmsize_t>(PageBitmap()->Size));
    TIFFClose(tiff);
}

const Adds adds([] {
    AddPeer(PageToRuns, {"libtiff, Group 3", 1.5, [] {
                             static MemoryFile file;
                             Encode(file);
                             Touch(file.Bytes.data());
                         }});
    AddPeer(RunsToPage, {"libtiff, Group 3", 2, [] {
                             static MemoryFile file;
                             if (file.Bytes.empty()) Encode(file);
                             static std::vector<uint8_t> page(PageBitmap()->Size);
                             file.Place = 0;
                             TIFF* tiff = Open(file, "rm");
                             TIFFReadEncodedStrip(tiff, 0, page.data(), static_cast<tmsize_t>(page.size()));
                             TIFFClose(tiff);
                             Touch(page.data());
                         }});
});

} // namespace

} // namespace bench
