// PNG pictures, by libpng. Each colour type is taken in at its own depth: palette and gray of 1, 2, 4 and 8
// bits, gray of 16 bits (12 where the file says that only 12 are significant), and colour of 24, 32, 48 and
// 64 bits. A picture with single transparent colours becomes colour with alpha.
#include "picture_reader.h"

#include "c_error_trap.h"

#include "zkr13n/convert.h"

#include <png.h>

#include <array>

namespace zkr::app {

namespace {

struct PngHandles {
    png_structp png = nullptr;
    png_infop info = nullptr;
    ~PngHandles() { png_destroy_read_struct(&png, &info, nullptr); }
};

class PngReader : public PictureReader {
  public:
    PngReader(const std::string& path, File file) : path_(path), file_(std::move(file)), trap_(path_) {
        RefuseZeroSize();
        Open();
        Describe();
    }

    size_t BufferBytes() const override {
        return IsTwelveBits() ? Z_CalcConvertSize(info_.width, 16, info_.width, 12)
                              : PictureReader::BufferBytes();
    }
    void Start() override {
        trap_.Run([this] { png_start_read_image(png_); });
    }
    void ReadRow(uint8_t* row) override {
        trap_.Run([this, row] { png_read_row(png_, row, nullptr); });
        if (IsTwelveBits()) {
            Check(Z_ConvertBuffer(row, info_.width, 16, 12, Z_ORDER_GRAY, Z_ORDER_GRAY, nullptr, nullptr),
                  path_);
        }
    }
    void Finish() override {
        trap_.Run([this] { png_read_end(png_, nullptr); });
    }

  private:
    static CErrorTrap& TrapOf(png_structp png) { return *static_cast<CErrorTrap*>(png_get_error_ptr(png)); }
    static void OnError(png_structp png, const char* message) { TrapOf(png).Raise(message); }
    static void OnWarning(png_structp, const char*) {}
    static void OnRead(png_structp png, png_bytep data, size_t bytes) {
        auto* file = static_cast<std::FILE*>(png_get_io_ptr(png));
        if (std::fread(data, 1, bytes, file) != bytes) TrapOf(png).Raise("the file ends too early");
    }

    bool IsTwelveBits() const { return info_.format.bits == 12; }

    // Signature, chunk length and name take 16 bytes; width and height follow.
    void RefuseZeroSize() {
        std::array<uint8_t, 24> head = {};
        ReadExactly(file_.get(), path_, head.data(), head.size());
        std::rewind(file_.get());
        if (png_get_uint_32(&head[16]) == 0 || png_get_uint_32(&head[20]) == 0) {
            throw Failure(path_, MessageOf(Z_ERROR_DIMENSIONS));
        }
    }

    void Open() {
        trap_.Run([this] {
            png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &trap_, OnError, OnWarning);
            if (png_ != nullptr) png_info_ = png_create_info_struct(png_);
            if (png_info_ == nullptr) trap_.Raise(Z_GetErrorText(Z_ERROR_MEMORY));
            png_set_read_fn(png_, file_.get(), OnRead);
            png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
            png_read_info(png_, png_info_);
        });
    }

    void Describe() {
        info_.kind = "PNG";
        info_.width = static_cast<int>(png_get_image_width(png_, png_info_));
        info_.height = static_cast<int>(png_get_image_height(png_, png_info_));
        const int depth = png_get_bit_depth(png_, png_info_);
        const int type = png_get_color_type(png_, png_info_);
        const bool keyed = png_get_valid(png_, png_info_, PNG_INFO_tRNS) != 0;
        size_t fileRowBytes = 1;
        trap_.Run([&] {
            info_.passes = png_set_interlace_handling(png_);
            fileRowBytes = png_get_rowbytes(png_, png_info_);
            if (depth == 16) png_set_swap(png_);
            if (keyed) png_set_expand(png_);
            if (keyed || type == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(png_);
        });
        constexpr uint64_t deflate = 1032; // the best that it can do
        RefuseMissingBytes(file_.get(), path_, fileRowBytes, static_cast<uint64_t>(info_.height), deflate);
        PixelFormat& format = info_.format;
        if (type == PNG_COLOR_TYPE_PALETTE && !keyed) {
            format.bits = depth;
            format.palette = ReadPalette(depth);
        } else if (type == PNG_COLOR_TYPE_GRAY && !keyed) {
            DescribeGray(depth);
        } else {
            format.alpha = keyed || (type & PNG_COLOR_MASK_ALPHA) != 0;
            format.bits = (format.alpha ? 4 : 3) * (depth == 16 ? 16 : 8);
        }
    }

    void DescribeGray(int depth) {
        PixelFormat& format = info_.format;
        format.bits = depth == 8 ? 0 : depth;
        if (depth < 8) {
            format.palette = GrayPalette(depth);
            info_.colours = 1 << depth;
        }
        if (depth < 16) return;
        format.order = Z_ORDER_GRAY;
        png_color_8p significant = nullptr;
        // Passes refine rows of the file's own depth, so an interlaced picture stays at 16 bits.
        if (info_.passes == 1 && png_get_sBIT(png_, png_info_, &significant) != 0 &&
            significant->gray == 12) {
            format.bits = 12;
        }
    }

    Palette ReadPalette(int bits) {
        png_colorp colours = nullptr;
        int count = 0;
        png_get_PLTE(png_, png_info_, &colours, &count);
        info_.colours = count;
        Palette result(size_t{1} << bits);
        for (size_t index = 0; index < result.size() && index < static_cast<size_t>(count); ++index) {
            const png_color& colour = colours[index];
            result[index] = {colour.blue, colour.green, colour.red, 0};
        }
        return result;
    }

    std::string path_;
    File file_;
    CErrorTrap trap_;
    PngHandles handles_;
    png_structp& png_ = handles_.png;
    png_infop& png_info_ = handles_.info;
};

} // namespace

std::unique_ptr<PictureReader> OpenPng(const std::string& path, File file) {
    return std::make_unique<PngReader>(path, std::move(file));
}

} // namespace zkr::app
