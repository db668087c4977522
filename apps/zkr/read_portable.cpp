// PBM (P4), PGM (P5) and PPM (P6) pictures: 1 bit with a palette of white and black, gray of 8, 12 or 16 bits by the
// file's largest value, or colours of 24 or 48 bits. Other largest values are scaled to the next of 8 and 16 bits.
// JBIG pictures come as PBM or PGM from the program jbgtopbm.
#include "picture_reader.h"

#include "child_pipe.h"
#include "failure.h"

#include "zkr13n/convert.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace zkr::app {

namespace {

class PortableReader : public PictureReader {
  public:
    PortableReader(const std::string& path, std::FILE* file) : path_(path), file_(file) {
        info_.kind = ReadKind();
        info_.width = ReadNumber(INT32_MAX);
        info_.height = ReadNumber(INT32_MAX);
        if (info_.width == 0 || info_.height == 0) throw Failure(path_, MessageOf(Z_ERROR_DIMENSIONS));
        if (info_.kind == "PBM") {
            info_.format.bits = 1;
            info_.format.palette = {{255, 255, 255, 0}, {0, 0, 0, 0}};
            info_.colours = 2;
        } else {
            largest_ = static_cast<uint32_t>(ReadNumber(65535));
            if (largest_ == 0) throw Failure(path_, "the largest value is 0");
            if (info_.kind == "PPM") {
                info_.format.bits = largest_ < 256 ? 24 : 48;
                info_.format.order = Z_ORDER_RGB;
            } else {
                info_.format.bits = largest_ < 256 ? 0 : largest_ == 4095 ? 12 : 16;
                if (largest_ >= 256) info_.format.order = Z_ORDER_GRAY;
            }
        }
        samples_ = static_cast<size_t>(info_.width) * (info_.kind == "PPM" ? 3 : 1);
        const uint64_t rowBytes = info_.kind == "PBM" ? (samples_ + 7) / 8
                                  : largest_ < 256    ? samples_
                                                      : 2 * samples_;
        RefuseMissingBytes(file_, path_, rowBytes, static_cast<uint64_t>(info_.height));
    }

    size_t BufferBytes() const override {
        return std::max(PictureReader::BufferBytes(), Z_CalcConvertSize(info_.width, 16, info_.width, 12));
    }

    void ReadRow(uint8_t* row) override {
        if (info_.kind == "PBM") {
            ReadExactly(file_, path_, row, (samples_ + 7) / 8);
        } else if (largest_ >= 256) {
            ReadWords(row);
        } else {
            ReadExactly(file_, path_, row, samples_);
            if (largest_ == 255) return;
            for (size_t i = 0; i < samples_; ++i)
                row[i] = static_cast<uint8_t>(Scaled(row[i], 255));
        }
    }

  private:
    std::string ReadKind() {
        char mark[2];
        ReadExactly(file_, path_, mark, sizeof mark);
        if (mark[0] != 'P' || mark[1] < '4' || mark[1] > '6')
            throw Failure(path_, "not a P4, P5 or P6 picture");
        return mark[1] == '4' ? "PBM" : mark[1] == '5' ? "PGM" : "PPM";
    }

    // One number of the header, with the white space and comments before it and the one separator behind it.
    int ReadNumber(int largest) {
        int next = std::getc(file_);
        while (std::isspace(next) != 0 || next == '#') {
            if (next == '#') {
                while (next != '\n' && next != EOF)
                    next = std::getc(file_);
            } else {
                next = std::getc(file_);
            }
        }
        if (std::isdigit(next) == 0) throw Failure(path_, "the header of the picture is damaged");
        int64_t number = 0;
        for (; std::isdigit(next) != 0; next = std::getc(file_)) {
            number = number * 10 + (next - '0');
            if (number > largest) throw Failure(path_, MessageOf(Z_ERROR_DIMENSIONS));
        }
        if (std::isspace(next) == 0) throw Failure(path_, "the header of the picture is damaged");
        return static_cast<int>(number);
    }

    uint32_t Scaled(uint32_t value, uint32_t full) const {
        return (std::min(value, largest_) * full + largest_ / 2) / largest_;
    }

    // Big-endian words of the file become the library's little-endian ones. Twelve bits go by the top of 16.
    void ReadWords(uint8_t* row) {
        ReadExactly(file_, path_, row, samples_ * 2);
        const bool twelve = info_.format.bits == 12;
        for (size_t i = 0; i < samples_; ++i) {
            uint8_t* pixel = row + 2 * i;
            const uint32_t value = static_cast<uint32_t>(pixel[0] << 8 | pixel[1]);
            const uint32_t word = twelve ? std::min(value, largest_) << 4 : Scaled(value, 65535);
            pixel[0] = static_cast<uint8_t>(word);
            pixel[1] = static_cast<uint8_t>(word >> 8);
        }
        if (twelve) {
            Check(Z_ConvertBuffer(row, info_.width, 16, 12, Z_ORDER_GRAY, Z_ORDER_GRAY, nullptr, nullptr),
                  path_);
        }
    }

    std::string path_;
    std::FILE* file_;
    uint32_t largest_ = 1;
    size_t samples_ = 0; // of a row
};

class PortableFileReader : public PortableReader {
  public:
    PortableFileReader(const std::string& path, File file)
        : PortableReader(path, file.get()), file_(std::move(file)) {}

  private:
    File file_;
};

class JbigReader : public PictureReader {
  public:
    explicit JbigReader(const std::string& path)
        : child_({"jbgtopbm", path}), reader_(path, child_.Output()) {
        info_ = reader_.Info();
        info_.kind = "JBIG";
    }
    size_t BufferBytes() const override { return reader_.BufferBytes(); }
    void ReadRow(uint8_t* row) override { reader_.ReadRow(row); }

  private:
    ChildPipe child_;
    PortableReader reader_;
};

} // namespace

std::unique_ptr<PictureReader> OpenPortable(const std::string& path, File file) {
    return std::make_unique<PortableFileReader>(path, std::move(file));
}

std::unique_ptr<PictureReader> OpenJbig(const std::string& path) {
    return std::make_unique<JbigReader>(path);
}

} // namespace zkr::app
