// The two filter modules as they are loaded: strips of all shapes come back byte by byte, and whatever is not
// what they have made themselves is refused.
#include "core/storage/filter_modules.h"
#include "core/test_bitmaps.h"

namespace zkr::test {
namespace {

using storage::Filter;

class FilterTest : public testing::TestWithParam<Filter> {
  protected:
    void SetUp() override { ASSERT_EQ(storage::AcquireFilter(GetParam()), 1); }
    void TearDown() override { storage::ReleaseFilter(GetParam()); }

    int32_t Bits() const { return GetParam() == Filter::Colour ? 24 : 1; }
    size_t StripBytes(int32_t width, int32_t rows) const {
        return static_cast<size_t>((width * Bits() + 31) / 32 * 4 * rows);
    }
    // The compressed strip in a block of exactly its size; empty where it is refused.
    Bytes Save(const Bytes& pixels, int32_t width, int32_t height, size_t room) const {
        const BITMAPINFOHEADER header = {.biSize = sizeof header,
                                         .biWidth = width,
                                         .biHeight = height,
                                         .biPlanes = 0,
                                         .biBitCount = static_cast<uint16_t>(Bits()),
                                         .biCompression = 0,
                                         .biSizeImage = 0,
                                         .biXPelsPerMeter = 0,
                                         .biYPelsPerMeter = 0,
                                         .biClrUsed = 0,
                                         .biClrImportant = 0};
        Bytes output(room);
        auto bytes = static_cast<uint32_t>(room);
        const int32_t result = storage::EntriesOf(GetParam())
                                   .Save(pixels.data(), &header, output.data(), &bytes, -1, 0, 20, 0, 0);
        if (result != Z_FILTER_SUCCESS) return {};
        EXPECT_LE(bytes, room);
        return Bytes(output.begin(), output.begin() + static_cast<ptrdiff_t>(bytes));
    }
    bool Load(const Bytes& data, Bytes& pixels, int32_t width, int32_t rows, int32_t bits) const {
        return storage::EntriesOf(GetParam())
                   .Load(data.data(), static_cast<uint32_t>(data.size()), pixels.data(), 20, width, rows,
                         bits, 0, 0) == Z_FILTER_SUCCESS;
    }
};

TEST_P(FilterTest, BringsEveryStripBack) {
    std::mt19937 random(41);
    for (int32_t width = 1; width <= 300; width = width < 70 ? width + 1 : width + 77) {
        for (const int32_t rows : {1, 2, 15, 16}) {
            const size_t bytes = StripBytes(width, rows);
            Bytes smooth(bytes);
            for (size_t i = 0; i < bytes; ++i)
                smooth[i] = static_cast<uint8_t>(i / 9 + random() % 3);
            for (const Bytes& pixels :
                 {Bytes(bytes), Bytes(bytes, 0xFF), smooth, RandomBytes(bytes, random)}) {
                const Bytes data = Save(pixels, width, -rows, StripBytes(width, 32));
                ASSERT_FALSE(data.empty()) << "the room that the library gives holds any strip";
                Bytes back(bytes, 0x5A);
                ASSERT_TRUE(Load(data, back, width, rows, Bits()));
                ASSERT_EQ(back, pixels) << width << " x " << rows;
            }
        }
    }
}

TEST_P(FilterTest, RefusesWhatItHasNotMade) {
    std::mt19937 random(42);
    constexpr int32_t width = 37, rows = 5;
    const Bytes pixels = RandomBytes(StripBytes(width, rows), random);
    const Bytes data = Save(pixels, width, -rows, 2000);
    Bytes back(pixels.size());
    for (size_t cut = 0; cut < data.size(); ++cut)
        EXPECT_FALSE(
            Load(Bytes(data.begin(), data.begin() + static_cast<ptrdiff_t>(cut)), back, width, rows, Bits()));
    for (size_t place = 0; place < data.size(); ++place) {
        Bytes corrupt = data;
        corrupt[place] ^= static_cast<uint8_t>(1u << place % 8);
        EXPECT_FALSE(Load(corrupt, back, width, rows, Bits()) && back != pixels) << place;
    }
    Bytes longer = data;
    longer.push_back(0);
    EXPECT_FALSE(Load(longer, back, width, rows, Bits()));
    Bytes large(pixels.size() * 4);
    for (const auto& [wide, high, bits] : {std::array{width, rows + 1, Bits()},
                                           {width, rows - 1, Bits()},
                                           {width + 32, rows, Bits()},
                                           {width - 32, rows, Bits()},
                                           {width, rows, 25 - Bits()},
                                           {width, 0, Bits()},
                                           {-width, rows, Bits()},
                                           {INT32_MAX, INT32_MAX, Bits()}})
        EXPECT_FALSE(Load(data, large, wide, high, bits)) << wide << " x " << high;
}

TEST_P(FilterTest, RefusesToSaveWhatItCannot) {
    std::mt19937 random(43);
    const Bytes pixels = RandomBytes(StripBytes(40, 16), random);
    const size_t needed = Save(pixels, 40, -16, StripBytes(40, 32)).size();
    for (const size_t room : {size_t{0}, size_t{1}, size_t{9}, needed / 2, needed - 1})
        EXPECT_TRUE(Save(pixels, 40, -16, room).empty()) << room;
    for (const int32_t height : {0, 16, INT32_MIN})
        EXPECT_TRUE(Save(pixels, 40, height, StripBytes(40, 32)).empty()) << height;
}

INSTANTIATE_TEST_SUITE_P(Modules, FilterTest, testing::Values(Filter::Colour, Filter::Bitonal));

} // namespace
} // namespace zkr::test
