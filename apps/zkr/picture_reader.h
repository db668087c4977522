// Reading of picture files: PNG, JPEG, BMP, PBM, PGM and PPM (P4, P5, P6), and JBIG through the program jbgtopbm. A picture
// comes row by row in the depth that the file has; ReadPicture() puts it into a bitmap of that depth.
#pragma once

#include "bitmap.h"

#include <cstdio>
#include <memory>
#include <string>

namespace zkr::app {

struct PictureInfo {
    std::string kind; // "PNG", "JPEG", ...
    int width = 0;
    int height = 0;
    PixelFormat format;
    int colours = 0;              // entries of the palette that the file has
    int32_t view = VIEW_TOP_LEFT; // VIEW_...
    int passes = 1; // how often all rows are read; each pass refines what the ones before have left
};

class PictureReader {
  public:
    virtual ~PictureReader() = default;

    const PictureInfo& Info() const { return info_; }

    // Bytes that a buffer for ReadRow() must hold; no less than a row of the bitmap.
    virtual size_t BufferBytes() const;
    virtual void Start() {}
    // In a later pass `row` comes with what the earlier passes have made of the row.
    virtual void ReadRow(uint8_t* row) = 0;
    virtual void Finish() {}

  protected:
    PictureInfo info_;
};

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// Reads exactly `bytes` or throws.
void ReadExactly(std::FILE* file, const std::string& path, void* buffer, size_t bytes);

// Throws where a file is too short for its dimensions: what it holds needs `rowBytes` for each of `rows` once it is
// unpacked, and `bytesOfByte` is the most that a byte of the file can become. Only files that know their size are
// looked at.
void RefuseMissingBytes(std::FILE* file, const std::string& path, uint64_t rowBytes, uint64_t rows,
                        uint64_t bytesOfByte = 1);

std::unique_ptr<PictureReader> OpenPng(const std::string& path, File file);
std::unique_ptr<PictureReader> OpenJpeg(const std::string& path, File file);
std::unique_ptr<PictureReader> OpenBmp(const std::string& path, File file);
std::unique_ptr<PictureReader> OpenPortable(const std::string& path, File file);
std::unique_ptr<PictureReader> OpenJbig(const std::string& path);

// Finds out what the file is by its first bytes; JBIG, which has no mark of its own, by the name's end.
std::unique_ptr<PictureReader> OpenPicture(const std::string& path);

// The bitmap has the view that the file tells; ReadUpright() turns what does not stand upright.
Bitmap ReadPicture(PictureReader& reader, const std::string& path, const Storage& storage);
Bitmap ReadUpright(PictureReader& reader, const std::string& path, const Storage& storage);

} // namespace zkr::app
