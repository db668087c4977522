// What all kinds of picture files share: opening, telling them apart, and the loop that fills a bitmap.
#include "picture_reader.h"

#include "failure.h"
#include "progress.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace zkr::app {

size_t PictureReader::BufferBytes() const {
    // Widths are positive and fit 31 bits, depths are at most 64.
    const uint64_t bits =
        static_cast<uint64_t>(info_.width) * static_cast<uint64_t>(info_.format.StoredBits());
    return static_cast<size_t>((bits + 31) / 32 * 4);
}

void ReadExactly(std::FILE* file, const std::string& path, void* buffer, size_t bytes) {
    if (std::fread(buffer, 1, bytes, file) == bytes) return;
    throw Failure(path, std::ferror(file) != 0 ? std::strerror(errno) : "the file ends too early");
}

void RefuseMissingBytes(std::FILE* file, const std::string& path, uint64_t rowBytes, uint64_t rows,
                        uint64_t bytesOfByte) {
    struct stat status = {};
    if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode)) return;
    const uint64_t most = static_cast<uint64_t>(status.st_size) * bytesOfByte;
    if (most / rowBytes < rows) throw Failure(path, "the file ends too early for the size that it tells");
}

std::unique_ptr<PictureReader> OpenPicture(const std::string& path) {
    if (std::error_code error; std::filesystem::is_directory(path, error)) {
        throw Failure(path, "is a directory");
    }
    File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) throw Failure(path, std::strerror(errno));
    if (path.ends_with(".jbg")) return OpenJbig(path);

    std::array<char, 8> head = {};
    const size_t length = std::fread(head.data(), 1, head.size(), file.get());
    std::rewind(file.get());
    const std::string_view start(head.data(), length);
    if (start == "\x89PNG\r\n\x1a\n") return OpenPng(path, std::move(file));
    if (start.starts_with("\xff\xd8\xff")) return OpenJpeg(path, std::move(file));
    if (start.starts_with("P4") || start.starts_with("P5") || start.starts_with("P6"))
        return OpenPortable(path, std::move(file));
    if (start.starts_with("BM")) return OpenBmp(path, std::move(file));
    throw Failure(path, length == 0 ? "the file is empty"
                                    : "not a PNG, JPEG, BMP, PBM (P4), PGM (P5), PPM (P6) or JBIG picture");
}

Bitmap ReadPicture(PictureReader& reader, const std::string& path, const Storage& storage) {
    const PictureInfo& info = reader.Info();
    Bitmap bitmap(path, info.format, info.width, info.height, storage, info.view);
    reader.Start();
    std::vector<uint8_t> row(std::max<size_t>(reader.BufferBytes(), bitmap.RowBytes()));
    for (int pass = 0; pass < info.passes; ++pass) {
        RowProgress progress(path, info.height);
        for (int y = 0; y < info.height; ++y) {
            if (pass > 0) bitmap.GetRow(y, row.data());
            reader.ReadRow(row.data());
            bitmap.PutRow(y, row.data());
            progress.RowDone();
        }
    }
    reader.Finish();
    return bitmap;
}

Bitmap ReadUpright(PictureReader& reader, const std::string& path, const Storage& storage) {
    Bitmap bitmap = ReadPicture(reader, path, storage);
    bitmap.StandUpright();
    return bitmap;
}

} // namespace zkr::app
