#include "display/dib/runs.h"

#include "core/return_codes.h"
#include "core/row_access.h"

#include <algorithm>
#include <cstring>

namespace zkr::dib {

namespace {

// What the second byte of a pair means when the first is 0; from 3 on it counts pixels that follow.
enum : uint8_t { EndOfRow = 0, EndOfPicture = 1, Step = 2 };

// The row that is being written, where it stands or in a buffer.
class RowInWork {
  public:
    RowInWork(BitmapHandle& bitmap, uint8_t* scratch) : bitmap_(bitmap), scratch_(scratch) { Reach(); }

    uint8_t* Pixels() const { return pixels_; }
    int32_t Index() const { return index_; }
    bool IsInside() const { return index_ < bitmap_.Height; }
    void Touch() { touched_ = true; }

    // Brings the row home and goes on; `rows` is 0 for the last one.
    [[nodiscard]] ReturnCode Advance(int32_t rows) {
        if (touched_ && pixels_ == scratch_) {
            const ReturnCode status = WriteExactly(bitmap_, scratch_, index_, 0, bitmap_.BytesPerLine);
            if (status != code::Success) return status;
            std::memset(scratch_, 0, bitmap_.BytesPerLine);
        }
        touched_ = false;
        if (rows == 0) return code::Success;
        index_ = bitmap_.Height - index_ > rows ? index_ + rows : bitmap_.Height;
        if (IsInside()) Reach();
        return code::Success;
    }

  private:
    void Reach() {
        pixels_ = ReachRow(bitmap_, index_);
        if (pixels_ == nullptr) pixels_ = scratch_;
    }

    BitmapHandle& bitmap_;
    uint8_t* scratch_;
    uint8_t* pixels_ = nullptr;
    int32_t index_ = 0;
    bool touched_ = false;
};

// Pixels of a byte.
struct Bytes8 {
    static constexpr size_t PixelsIn(size_t bytes) { return bytes; }
    static constexpr size_t BytesOf(size_t pixels) { return pixels; }

    static void Fill(uint8_t* row, size_t column, size_t count, uint8_t value) {
        std::memset(row + column, value, count);
    }
    static void Copy(uint8_t* row, size_t column, size_t count, const uint8_t* from) {
        std::memcpy(row + column, from, count);
    }
};

// Pixels of half a byte, the upper half first. A run alternates between both halves of its value.
struct Nibbles {
    static constexpr size_t PixelsIn(size_t bytes) { return bytes * 2; }
    static constexpr size_t BytesOf(size_t pixels) { return (pixels + 1) / 2; }

    static void PutUpper(uint8_t& byte, uint32_t value) {
        byte = static_cast<uint8_t>((byte & 0x0F) | value << 4);
    }
    static void PutLower(uint8_t& byte, uint32_t value) {
        byte = static_cast<uint8_t>((byte & 0xF0) | (value & 0x0F));
    }
    static void Fill(uint8_t* row, size_t column, size_t count, uint8_t value) {
        uint8_t* to = row + column / 2;
        if (column % 2 != 0 && count != 0) {
            PutLower(*to++, value >> 4);
            value = static_cast<uint8_t>(value << 4 | value >> 4);
            --count;
        }
        std::memset(to, value, count / 2);
        if (count % 2 != 0) PutUpper(to[count / 2], value >> 4);
    }
    static void Copy(uint8_t* row, size_t column, size_t count, const uint8_t* from) {
        for (size_t i = 0; i < count; ++i, ++column) {
            const uint32_t value = i % 2 == 0 ? from[i / 2] >> 4 : from[i / 2] & 0x0Fu;
            column % 2 == 0 ? PutUpper(row[column / 2], value) : PutLower(row[column / 2], value);
        }
    }
};

template <typename Form> class Decoder {
  public:
    Decoder(BitmapHandle& bitmap, const uint8_t* data, size_t bytes, uint8_t* scratch)
        : row_(bitmap, scratch), at_(data), end_(data + bytes), width_(static_cast<size_t>(bitmap.Width)) {}

    ReturnCode Run() {
        while (!ended_ && row_.IsInside() && end_ - at_ >= 2) {
            const uint8_t count = at_[0], value = at_[1];
            at_ += 2;
            if (count != 0) {
                Form::Fill(row_.Pixels(), column_, Room(count), value);
                Pass(count);
            } else {
                const ReturnCode status = Escape(value);
                if (status != code::Success) return status;
            }
        }
        return row_.IsInside() ? row_.Advance(0) : code::Success;
    }

  private:
    size_t Room(size_t count) const { return std::min(count, width_ - column_); }
    void Pass(size_t count) {
        column_ += Room(count);
        row_.Touch();
    }

    ReturnCode Escape(uint8_t value) {
        switch (value) {
        case EndOfRow: column_ = 0; return row_.Advance(1);
        case EndOfPicture: ended_ = true; return code::Success;
        case Step: return TakeStep();
        default: TakePixels(value); return code::Success;
        }
    }

    ReturnCode TakeStep() {
        if (end_ - at_ < 2) {
            ended_ = true;
            return code::Success;
        }
        column_ += Room(at_[0]);
        const uint8_t rows = at_[1];
        at_ += 2;
        return rows == 0 ? code::Success : row_.Advance(rows);
    }

    // Pixels one by one, in an even number of bytes.
    void TakePixels(size_t count) {
        const auto there = static_cast<size_t>(end_ - at_);
        const size_t given = std::min(count, Form::PixelsIn(there));
        Form::Copy(row_.Pixels(), column_, Room(given), at_);
        Pass(given);
        at_ += std::min(there, (Form::BytesOf(count) + 1) & ~size_t{1});
    }

    RowInWork row_;
    const uint8_t* at_;
    const uint8_t* end_;
    size_t width_;
    size_t column_ = 0; // at most the width
    bool ended_ = false;
};

} // namespace

ReturnCode DecodeRuns(BitmapHandle& bitmap, const uint8_t* data, size_t bytes, uint8_t* scratch) {
    if (bitmap.BitsPerPixel == 8) return Decoder<Bytes8>(bitmap, data, bytes, scratch).Run();
    return Decoder<Nibbles>(bitmap, data, bytes, scratch).Run();
}

} // namespace zkr::dib
