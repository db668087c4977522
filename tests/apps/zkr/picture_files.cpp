// Errors of libpng and libjpeg end the test program: the files here are always good ones.
#include "picture_files.h"

#include <cstdio>
#include <ostream>

#include <jpeglib.h>

int Picture::Channels() const {
    const int colours = (type & PNG_COLOR_MASK_COLOR) != 0 && type != PNG_COLOR_TYPE_PALETTE ? 3 : 1;
    return colours + ((type & PNG_COLOR_MASK_ALPHA) != 0 ? 1 : 0);
}

bool Picture::operator==(const Picture& other) const {
    const auto same = [](const png_color& a, const png_color& b) {
        return a.red == b.red && a.green == b.green && a.blue == b.blue;
    };
    return width == other.width && height == other.height && depth == other.depth && type == other.type &&
           samples == other.samples && significantBits == other.significantBits &&
           std::equal(palette.begin(), palette.end(), other.palette.begin(), other.palette.end(), same);
}

void PrintTo(const Picture& picture, std::ostream* stream) {
    *stream << picture.width << " x " << picture.height << ", " << picture.depth << " bits, colour type "
            << picture.type << ", " << picture.palette.size() << " colours, " << picture.significantBits
            << " significant bits, samples";
    for (size_t i = 0; i < 12 && i < picture.samples.size(); ++i)
        *stream << ' ' << picture.samples[i];
}

Picture PictureOf(int width, int height, int depth, int type, const std::function<uint32_t(size_t)>& sample) {
    Picture picture = {width, height, depth, type, {}};
    const int count = width * height * picture.Channels();
    const uint32_t mask = (1u << depth) - 1;
    for (int i = 0; i < count; ++i) {
        picture.samples.push_back(static_cast<uint16_t>(sample(static_cast<size_t>(i)) & mask));
    }
    return picture;
}

uint32_t Scattered(size_t index) {
    uint32_t mixed = static_cast<uint32_t>(index) * 2654435761u + 12345;
    mixed = (mixed ^ mixed >> 15) * 2246822519u;
    mixed = (mixed ^ mixed >> 13) * 3266489917u;
    return mixed ^ mixed >> 16;
}

namespace {

std::vector<uint8_t> PackedRow(const Picture& picture, int y) {
    const int perRow = picture.width * picture.Channels();
    std::vector<uint8_t> row(static_cast<size_t>((perRow * picture.depth + 7) / 8));
    for (int i = 0; i < perRow; ++i) {
        const uint32_t sample = picture.samples[static_cast<size_t>(y * perRow + i)];
        for (int bit = 0; bit < picture.depth; ++bit) {
            const int place = i * picture.depth + bit;
            const uint32_t value = sample >> (picture.depth - 1 - bit) & 1;
            row[static_cast<size_t>(place / 8)] |= static_cast<uint8_t>(value << (7 - place % 8));
        }
    }
    return row;
}

void UnpackRow(Picture& picture, const std::vector<uint8_t>& row) {
    for (int i = 0; i < picture.width * picture.Channels(); ++i) {
        uint32_t sample = 0;
        for (int place = i * picture.depth; place < (i + 1) * picture.depth; ++place) {
            sample = sample << 1 | (row[static_cast<size_t>(place / 8)] >> (7 - place % 8) & 1u);
        }
        picture.samples.push_back(static_cast<uint16_t>(sample));
    }
}

} // namespace

void WritePng(const std::string& path, const Picture& picture, const PngForm& form) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.width), static_cast<png_uint_32>(picture.height),
                 picture.depth, picture.type, form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (!picture.palette.empty()) {
        png_set_PLTE(png, info, picture.palette.data(), static_cast<int>(picture.palette.size()));
    }
    if (form.transparentIndex >= 0) {
        std::vector<png_byte> alpha(static_cast<size_t>(form.transparentIndex) + 1, 255);
        alpha.back() = 0;
        png_set_tRNS(png, info, alpha.data(), static_cast<int>(alpha.size()), nullptr);
    }
    if (picture.significantBits > 0) {
        png_color_8 significant = {};
        significant.gray = static_cast<png_byte>(picture.significantBits);
        png_set_sBIT(png, info, &significant);
    }
    png_write_info(png, info);
    std::vector<std::vector<uint8_t>> rows;
    std::vector<png_bytep> pointers;
    for (int y = 0; y < picture.height; ++y)
        rows.push_back(PackedRow(picture, y));
    for (auto& row : rows)
        pointers.push_back(row.data());
    png_write_image(png, pointers.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

Picture ReadPng(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) return {};
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_read_info(png, info);
    Picture picture;
    picture.width = static_cast<int>(png_get_image_width(png, info));
    picture.height = static_cast<int>(png_get_image_height(png, info));
    picture.depth = png_get_bit_depth(png, info);
    picture.type = png_get_color_type(png, info);
    png_colorp colours = nullptr;
    int count = 0;
    if (png_get_PLTE(png, info, &colours, &count) != 0) picture.palette.assign(colours, colours + count);
    png_color_8p significant = nullptr;
    if (png_get_sBIT(png, info, &significant) != 0) picture.significantBits = significant->gray;
    std::vector<uint8_t> row(png_get_rowbytes(png, info));
    for (int y = 0; y < picture.height; ++y) {
        png_read_row(png, row.data(), nullptr);
        UnpackRow(picture, row);
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(file);
    return picture;
}

void WriteFlatJpeg(const std::string& path, int width, int height, int channels, uint8_t value) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = channels;
    jpeg.in_color_space = channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    std::vector<JSAMPLE> samples(static_cast<size_t>(width * channels), value);
    JSAMPROW row = samples.data();
    for (int y = 0; y < height; ++y)
        jpeg_write_scanlines(&jpeg, &row, 1);
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::fclose(file);
}
