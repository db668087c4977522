// The streaming resizer against models of its rules: stretches of rows in any order, for each working format.
#include "geometry/resize/reference_resample.h"
#include "support/seeded.h"

#include "zkr13n/convert.h"
#include "zkr13n/dither.h"
#include "zkr13n/gray.h"
#include "zkr13n/palettes.h"
#include "zkr13n/resize.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace zkr::test {
namespace {

// A format that passes through the resizer as it is.
struct Format {
    const char* Name;
    int32_t Bits, Order; // of the bitmap; 0 bits for 8-bit gray
    uint32_t Flags;
    size_t Channels;
    int32_t Largest;

    size_t SampleBytes() const { return Largest == 255 ? 1 : 2; }
};

constexpr Format Formats[] = {{"gray", 0, 1, 0, 1, 255},
                              {"gray words", 16, 2, RESIZE_ORDER_GRAY, 1, 65535},
                              {"24 bits", 24, 1, RESIZE_ORDER_BGR, 3, 255},
                              {"48 bits", 48, 1, RESIZE_ORDER_BGR, 3, 65535}};
constexpr uint32_t Methods[] = {0, RESIZE_LINEAR, RESIZE_SPLINE};

Samples SamplesOf(const std::vector<uint8_t>& bytes, const Format& format) {
    Samples samples(bytes.size() / format.SampleBytes());
    for (size_t i = 0; i < samples.size(); ++i)
        std::memcpy(&samples[i], bytes.data() + i * format.SampleBytes(), format.SampleBytes());
    return samples;
}

struct Source : BitmapHandle {
    Source(Seeded& seeded, const Format& format, int32_t width, int32_t height) : BitmapHandle{} {
        Z_CreateBitmap(this, MemoryConventional, width, height, format.Bits, format.Order, nullptr, 0,
                       nullptr, 0);
        const bool isFlat = seeded.Below(3) == 0; // few values, so that neighbours are often equal
        std::vector<uint8_t> row(BytesPerLine);
        const size_t used = static_cast<size_t>(width) * format.Channels * format.SampleBytes();
        for (int32_t y = 0; y < height; ++y) {
            for (uint8_t& byte : row)
                byte = static_cast<uint8_t>(isFlat ? seeded.Below(2) * 200 : seeded.Byte());
            Z_PutBitmapRow(this, row.data(), y, BytesPerLine);
            Rows.push_back(SamplesOf({row.begin(), row.begin() + static_cast<ptrdiff_t>(used)}, format));
        }
    }
    ~Source() { Z_FreeBitmap(this); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    std::vector<Samples> Rows;
};

class StreamModel {
  public:
    StreamModel(const Source& source, const Format& format, int32_t width, int32_t height, uint32_t method)
        : source_(source), format_(format), width_(width), height_(height), method_(method),
          ratio_(static_cast<float>(source.Height) / static_cast<float>(height)) {
        const bool grows = width > source.Width || height > source.Height;
        if (method == RESIZE_SPLINE && !grows) method_ = RESIZE_LINEAR;
    }

    Samples Get(int32_t row, int32_t first, int32_t count, uint32_t bytes) {
        if (method_ == RESIZE_SPLINE && height_ >= source_.Height) return Splined(row, first, count, bytes);
        const int64_t oldHeight = source_.Height;
        if (method_ == 0) {
            const int64_t up = height_ >= oldHeight ? oldHeight - 1 : 0;
            return Columns(static_cast<int32_t>((row * oldHeight + up) / height_), first, count);
        }
        Samples result;
        if (height_ < oldHeight) {
            const int64_t ends = method_ == RESIZE_SPLINE && height_ > 1 ? 1 : 0;
            const int64_t step = (oldHeight - ends) / (height_ - ends),
                          rest = (oldHeight - ends) % (height_ - ends);
            const int64_t span = step + (row * oldHeight % height_ + rest >= height_ ? 1 : 0);
            for (int64_t i = 0; i < span; ++i) {
                const int64_t at = std::min(row * oldHeight / height_ + i, oldHeight - 1);
                const Samples one = Columns(static_cast<int32_t>(at), first, count);
                result.resize(one.size());
                for (size_t k = 0; k < one.size(); ++k)
                    result[k] += one[k];
            }
            for (int32_t& sum : result)
                sum = static_cast<int32_t>(sum / span);
            return result;
        }
        std::vector<Samples> rows;
        for (int32_t y = 0; y < oldHeight; ++y)
            rows.push_back(Columns(y, first, count));
        for (size_t k = 0; k < rows[0].size(); ++k) {
            Samples column;
            for (const Samples& one : rows)
                column.push_back(one[k]);
            result.push_back(LinearModel(column, height_)[static_cast<size_t>(row)]);
        }
        return result;
    }

  private:
    Samples Columns(int32_t row, int32_t first, int32_t count) const {
        const Samples& from = source_.Rows[static_cast<size_t>(row)];
        const size_t channels = format_.Channels;
        const bool grows = width_ >= source_.Width;
        if (method_ == RESIZE_SPLINE && grows)
            return SplineRowModel(from, channels, format_.Largest, width_, first, count);
        Samples result(static_cast<size_t>(count) * channels);
        for (size_t c = 0; c < channels; ++c) {
            Samples channel;
            for (size_t i = c; i < from.size(); i += channels)
                channel.push_back(from[i]);
            Samples whole;
            if (method_ == 0)
                for (int64_t x = 0; x < width_; ++x)
                    whole.push_back(channel[static_cast<size_t>(x * source_.Width / width_)]);
            else
                whole = grows ? LinearModel(channel, width_) : AverageModel(channel, width_);
            for (int32_t x = 0; x < count; ++x)
                result[static_cast<size_t>(x) * channels + c] = whole[static_cast<size_t>(first + x)];
        }
        return result;
    }

    Samples Splined(int32_t row, int32_t first, int32_t count, uint32_t bytes) {
        row = std::max(row - static_cast<int32_t>(0.5f / ratio_), 0);
        const bool isNext = first == first_ && bytes == bytes_ && std::abs(row - row_) <= 1;
        if (!isNext) {
            const float place = static_cast<float>(row) * ratio_;
            at_ = static_cast<int32_t>(place);
            fraction_ = place - static_cast<float>(at_);
        } else if (row > row_) {
            fraction_ += ratio_;
            if (fraction_ >= 1.0f) fraction_ -= 1.0f, ++at_;
        } else if (row < row_) {
            fraction_ -= ratio_;
            if (fraction_ < 0) fraction_ += 1.0f, --at_;
        }
        first_ = first, bytes_ = bytes, row_ = row;
        const auto around = [&](int32_t y) {
            return Columns(std::clamp(y, 0, source_.Height - 1), first, count);
        };
        const Samples a = around(at_ - 1), b = around(at_), c = around(at_ + 1), d = around(at_ + 2);
        Samples result;
        for (size_t k = 0; k < a.size(); ++k)
            result.push_back(SplineBetweenRows(a[k], b[k], c[k], d[k], fraction_, format_.Largest));
        return result;
    }

    const Source& source_;
    const Format& format_;
    int32_t width_, height_;
    uint32_t method_;
    float ratio_, fraction_ = 0;
    int32_t first_ = -1, row_ = 0, at_ = 0;
    uint32_t bytes_ = 0;
};

// Forwards to the bitmap and counts.
struct Reads {
    int32_t Count = 0;
    int32_t FailAt = -1;

    static ReturnCode Z_CALL Read(BitmapHandle* bitmap, void* buffer, int32_t row, int32_t column,
                                  uint32_t bytes, void* data) {
        Reads& reads = *static_cast<Reads*>(data);
        if (reads.Count++ == reads.FailAt) return -29;
        EXPECT_TRUE(row >= 0 && row < bitmap->Height && column >= 0 && column < bitmap->Width);
        EXPECT_EQ(Z_GetBitmapRowCol(bitmap, buffer, row, column, bytes), static_cast<int32_t>(bytes));
        return Z_SUCCESS;
    }
};

// Sizes that shrink, stay or grow, by a little or much.
int32_t NewSize(Seeded& seeded, int32_t size) {
    switch (seeded.Below(6)) {
    case 0: return size;
    case 1: return seeded.Between(1, size);
    case 2: return size * seeded.Between(2, 9);
    case 3: return size * 2;
    default: return seeded.Between(1, size * 4);
    }
}

TEST(RowStream, AnyWalkGivesWhatTheRulesSay) {
    for (int round = 0; round < 900; ++round) {
        Seeded seeded(static_cast<uint64_t>(round));
        const Format& format = Formats[seeded.Below(4)];
        const uint32_t method = Methods[seeded.Below(3)];
        Source source(seeded, format, seeded.Between(1, 45), seeded.Between(1, 25));
        const int32_t width = NewSize(seeded, source.Width), height = NewSize(seeded, source.Height);
        Reads reads;
        ResizeRowContext* context = nullptr;
        ASSERT_EQ(Z_StartResizeBitmap(&source, width, height, format.Bits == 0 ? 8 : format.Bits, nullptr, 0,
                                      method | format.Flags, Reads::Read, &reads, &context),
                  1);
        StreamModel model(source, format, width, height, method);
        const size_t pixelBytes = format.Channels * format.SampleBytes();
        int32_t row = seeded.Below(height), first = 0, count = 0, before = -9;
        for (int request = 0; request < 12; ++request) {
            const bool jumps = request == 0 || seeded.Below(6) == 0;
            if (jumps) {
                row = seeded.Below(height);
                first = seeded.Below(3) == 0 ? 0 : seeded.Below(width);
                count = seeded.Below(3) == 0 ? width - first : seeded.Between(1, width - first);
            } else {
                row = std::clamp(row + seeded.Between(-1, 1), 0, height - 1);
            }
            const size_t bytes = static_cast<size_t>(count) * pixelBytes;
            std::vector<uint8_t> target(bytes + 8, 0xC3);
            reads.Count = 0;
            ASSERT_EQ(Z_GetResizedRowCol(context, target.data(), row, first, static_cast<uint32_t>(bytes)),
                      1);
            ASSERT_EQ(std::vector<uint8_t>(target.end() - 8, target.end()), std::vector<uint8_t>(8, 0xC3));
            target.resize(bytes);
            ASSERT_EQ(SamplesOf(target, format), model.Get(row, first, count, static_cast<uint32_t>(bytes)))
                << "round " << round << ", " << format.Name << ", method " << method << ", " << source.Width
                << " x " << source.Height << " to " << width << " x " << height << ", row " << row
                << " after " << before << ", column " << first << ", " << count << " pixels";
            EXPECT_TRUE(jumps || height < source.Height || reads.Count <= 1) << "a neighbouring row";
            before = row;
        }
        EXPECT_EQ(Z_StopResizeBitmap(context), 1);
    }
}

} // namespace
} // namespace zkr::test
