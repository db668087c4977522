// Random work on run-compressed bitmaps against one byte for each pixel. After each step the heap is looked
// through and all rows are compared.
#include "core/run_heap.h"
#include "core/storage_faults.h"
#include "zkr13n/compressed_rows.h"

#include <algorithm>

namespace zkr::test {
namespace {

using Pixels = std::vector<uint8_t>;
using List = std::vector<uint16_t>; // a compressed row: two words of count, and the runs

bool BitOf(const Bytes& bytes, size_t bit) {
    return (bytes[bit / 8] >> (7 - bit % 8) & 1) != 0;
}

Pixels PixelsOf(const uint16_t* list) {
    uint32_t count;
    std::memcpy(&count, list, sizeof count);
    Pixels pixels;
    for (uint32_t word = 0; word < count; ++word)
        pixels.insert(pixels.end(), list[2 + word], word % 2);
    return pixels;
}

class Model {
  public:
    Model(int32_t width, int32_t height, uint32_t seed)
        : random_(seed), bitmap_(width, height, 1), line_(bitmap_.BytesPerLine) {
        EXPECT_EQ(Z_AllocateBitmap(&bitmap_, MemoryCompressed), 1);
        rows_.assign(static_cast<size_t>(height), Pixels(Width(), 0));
    }

    void Step() {
        switch (rows_.empty() ? 6 : Below(9)) {
        case 0:
        case 1: PutBytes(); break;
        case 2: PutSegments(); break;
        case 3: PutLists(); break;
        case 4: PutPart(); break;
        case 5: GetPart(); break;
        case 6: ChangeHeight(); break;
        case 7: Mirror(); break;
        default:
            Below(2) ? Z_TrimBitmapHeap(&bitmap_)
                     : Z_GrowBitmapHeap(&bitmap_, static_cast<uint32_t>(Below(9999)));
        }
        ExpectConsistent(bitmap_);
        Bytes packed(rows_.size() * line_), read(packed.size(), 0xA5);
        for (size_t row = 0; row < rows_.size(); ++row)
            for (size_t column = 0; column < Width(); ++column)
                packed[row * line_ + column / 8] |=
                    static_cast<uint8_t>(rows_[row][column] << (7 - column % 8));
        const auto count = static_cast<uint32_t>(read.size());
        EXPECT_EQ(Z_GetBitmapRow(&bitmap_, read.data(), 0, count), static_cast<ReturnCode>(count));
        EXPECT_EQ(read, packed);
    }

  private:
    size_t Below(size_t limit) { return random_() % limit; }
    size_t Width() const { return static_cast<size_t>(bitmap_.Width); }
    int32_t AnyRow() { return static_cast<int32_t>(Below(rows_.size())); }
    uint8_t& Pixel(int32_t row, size_t column) { return rows_[static_cast<size_t>(row)][column]; }

    // Random bits, text, alternating bits or all of one colour.
    Bytes SomeBytes(size_t count) {
        const size_t kind = Below(4);
        Bytes bytes = kind < 2 ? RandomBytes(count, random_) : Bytes(count, kind == 2 ? 0x55 : 0xFF);
        for (uint8_t& byte : bytes)
            if (kind == 1 && byte < 230) byte = 0;
        return bytes;
    }

    // The list of some pixels, with runs cut in two by empty ones where the count allows it.
    List ListOf(const Pixels& pixels) {
        List list = {0, 0, 0};
        uint8_t colour = 0;
        const bool cuts = Below(2) != 0;
        for (size_t i = 0; i < pixels.size(); ++i) {
            const size_t left = pixels.size() - i, room = pixels.size() + 3 - list.size();
            if (pixels[i] != colour)
                list.push_back(0), colour = pixels[i];
            else if (list.back() == 65535 || (cuts && room > left + 2 && Below(9) == 0))
                list.insert(list.end(), {0, 0});
            ++list.back();
        }
        const auto count = static_cast<uint32_t>(list.size() - 2);
        std::memcpy(list.data(), &count, sizeof count);
        return list;
    }

    // Calls put() with a heap that may be unable to grow; whether the model is to follow.
    template <typename Put> bool Puts(Put put, ReturnCode good) {
        const bool fails = Below(3) == 0;
        const Fault fault(fails ? uint32_t{fault::Heap} : 0u, 1, true);
        const ReturnCode result = put();
        EXPECT_TRUE(result == good || (fails && result == code::OutOfMemory)) << result;
        return result == good;
    }

    void PutBytes() {
        const int32_t row = AnyRow();
        const size_t column = Below(3) ? Below(Width()) : 0;
        const size_t most = line_ - column / 8, all = most + line_ * (rows_.size() - size_t(row) - 1);
        const Bytes bytes = SomeBytes(Below(2) ? most : Below(Below(2) ? most + 1 : all + 1));
        const auto count = static_cast<uint32_t>(bytes.size());
        const auto put = [&] {
            return Z_PutBitmapRowCol(&bitmap_, bytes.data(), row, static_cast<int32_t>(column), count);
        };
        const auto good = static_cast<ReturnCode>(count);
        if (count > most ? put() != good : !Puts(put, good)) return;
        for (size_t bit = 0; bit < count * 8; ++bit) {
            const size_t place = column / 8 * 8 + bit;
            if (place % (line_ * 8) < Width())
                Pixel(row + static_cast<int32_t>(place / (line_ * 8)), place % (line_ * 8)) =
                    BitOf(bytes, bit);
        }
    }

    void PutSegments() {
        const int32_t row = AnyRow(), offset = static_cast<int32_t>(Below(40)) - 20;
        const Bytes bytes = SomeBytes(line_);
        std::vector<uint32_t> columns(2 * Below(6));
        for (uint32_t& column : columns)
            column = static_cast<uint32_t>(Below(Width() + 1));
        if (Below(4)) std::sort(columns.begin(), columns.end());
        ASSERT_EQ(Z_PutBitmapRowSegments(&bitmap_, bytes.data(), row, offset, columns.data(),
                                         static_cast<uint32_t>(columns.size()), 0),
                  1);
        for (size_t i = 0; i < columns.size(); i += 2)
            for (int32_t from = int32_t(columns[i]); from < int32_t(columns[i + 1]); ++from)
                if (from + offset >= 0 && from + offset < bitmap_.Width)
                    Pixel(row, size_t(from + offset)) = BitOf(bytes, size_t(from));
    }

    void PutLists() {
        const int32_t row = AnyRow();
        List lists;
        for (size_t i = size_t(row); i < rows_.size(); ++i) {
            rows_[i] = rows_[Below(rows_.size())];
            const List list = ListOf(rows_[i]);
            lists.insert(lists.end(), list.begin(), list.end());
        }
        ASSERT_EQ(Z_PutBitmapRowCompressed(&bitmap_, nullptr, lists.data(), row, 9999), 1);
        List read(lists.size());
        ASSERT_EQ(Z_GetBitmapRowCompressed(&bitmap_, nullptr, read.data(), row, 9999), 1);
        EXPECT_EQ(read, lists) << "lists are kept as they are";
    }

    // A part of a row and what runs over into the next rows.
    struct Part {
        int32_t Row, Column, Width;
    };
    Part AnyPart() {
        const int32_t row = AnyRow(), column = static_cast<int32_t>(Below(Width()));
        const size_t most = Width() * (rows_.size() - size_t(row)) - size_t(column);
        return {row, column, static_cast<int32_t>(1 + Below(Below(3) ? Width() - size_t(column) : most))};
    }
    template <typename Visit> void VisitPart(const Part& part, Visit visit) {
        for (size_t i = 0, place = size_t(part.Column); i < size_t(part.Width); ++i, ++place)
            visit(Pixel(part.Row + static_cast<int32_t>(place / Width()), place % Width()), i);
    }

    void PutPart() {
        const Part part = AnyPart();
        const Bytes bytes = SomeBytes(size_t(part.Width) / 8 + 1);
        Pixels pixels(size_t(part.Width));
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = BitOf(bytes, i);
        const List list = ListOf(pixels);
        const auto put = [&] {
            return Z_PutBitmapRowColCompressed(&bitmap_, nullptr, list.data(), part.Row, part.Column,
                                               part.Width);
        };
        const bool oneRow = part.Column + part.Width <= bitmap_.Width;
        if (oneRow ? !Puts(put, 1) : put() != 1) return;
        VisitPart(part, [&](uint8_t& pixel, size_t i) { pixel = pixels[i]; });
    }

    void GetPart() {
        const Part part = AnyPart();
        List list(size_t(part.Width) + 3);
        ASSERT_EQ(
            Z_GetBitmapRowColCompressed(&bitmap_, nullptr, list.data(), part.Row, part.Column, part.Width),
            1);
        Pixels expected;
        VisitPart(part, [&](uint8_t& pixel, size_t) { expected.push_back(pixel); });
        EXPECT_EQ(PixelsOf(list.data()), expected);
    }

    void ChangeHeight() {
        const auto height = static_cast<int32_t>(Below(9));
        ASSERT_EQ(Z_ChangeBitmapHeight(&bitmap_, height), 1);
        rows_.resize(size_t(height), Pixels(Width(), 0));
    }

    void Mirror() {
        const int32_t row = AnyRow();
        if (Puts([&] { return storage::MirrorRow(bitmap_, row) ? 1 : code::OutOfMemory; }, 1))
            std::reverse(rows_[size_t(row)].begin(), rows_[size_t(row)].end());
    }

    std::mt19937 random_;
    Bitmap bitmap_;
    size_t line_;
    std::vector<Pixels> rows_;
};

TEST(RunModel, HoldsUnderRandomWork) {
    for (const int32_t width : {1, 7, 8, 31, 64, 65, 300, 65535, 65536, 140000}) {
        for (uint32_t seed = 0; seed < (width < 1000 ? 20u : 2u) && !HasFailure(); ++seed) {
            SCOPED_TRACE("width " + std::to_string(width) + ", seed " + std::to_string(seed));
            Model model(width, 1 + static_cast<int32_t>(seed % 7), seed);
            for (int step = 0; step < 60 && !HasFailure(); ++step)
                model.Step();
        }
    }
}

} // namespace
} // namespace zkr::test
