// Sequences of row calls, compressed rows, tuning, rebuilding and changes of height over the storage classes,
// checked against a plain array of bytes.
#include "input.h"

#include <algorithm>
#include <vector>

using namespace fuzz;

namespace {

constexpr int32_t MostHeight = 40;

class Checked {
  public:
    explicit Checked(Input& input) : input_(input) {
        // The widest rows do not fit one run.
        const uint8_t kind = input.Byte();
        const int32_t width = kind < 240   ? 1 + input.Below(40)
                              : kind < 250 ? 1 + input.Below(3000)
                                           : 65530 + 2 * input.Below(40000);
        const int32_t height = 1 + input.Below(MostHeight);
        const uint8_t depth = input.Byte(); // mostly one that can be compressed
        Z_InitBitmap(&bitmap_, width, height,
                     depth < 80 || kind >= 250 ? 1
                     : depth < 120             ? 24
                                               : input.Depth());
        if (input.Flip()) bitmap_.Order = Z_ORDER_GRAY;
        Z_SetMemoryThresholds(0, 0, TileSize(), input.Below(9) - 1, input.Below(4), 28);
        constexpr int32_t types[] = {MemoryConventional,
                                     MemoryUser,
                                     MemoryTiled,
                                     MemoryTiled,
                                     MemoryDisk,
                                     MemoryNoTiled,
                                     MemoryCompressed | MemoryConventional,
                                     MemoryCompressed | MemoryConventional,
                                     MemorySuperCompressed | MemoryConventional,
                                     MemorySuperCompressed | MemoryConventional};
        const int32_t type = types[input.Byte() % std::size(types)];
        FUZZ_EXPECT(Z_AllocateBitmap(&bitmap_, type) == 1);
        model_.assign(static_cast<size_t>(height) * RowBytes(), 0);
        if (type == MemoryUser) {
            user_ = model_;
            FUZZ_EXPECT(Z_SetBitmapDataPointer(&bitmap_, user_.data(), user_.size()) == 1);
        }
    }
    ~Checked() {
        Compare();
        FUZZ_EXPECT(Z_FreeBitmap(&bitmap_) == 1);
    }
    Checked(const Checked&) = delete;
    Checked& operator=(const Checked&) = delete;

    void Step() {
        switch (input_.Byte() % (bitmap_.BitsPerPixel == 1 ? 15 : 10)) {
        case 0:
        case 1: Write(); break;
        case 2:
        case 3: Read(); break;
        case 4:
        case 5: Segment(); break;
        case 6: Height(); break;
        case 7: Tune(); break;
        case 8: Rebuild(); break;
        case 9: Copy(); break;
        case 10: ReadRuns(); break;
        case 11: WriteRuns(); break;
        case 12: ReadSomeRuns(); break;
        case 13: WriteSomeRuns(); break;
        default: Compress(); break;
        }
        if ((bitmap_.Flags & Z_FLAG_COMPRESSED) != 0)
            for (int32_t row = 0; row < bitmap_.Height; ++row)
                ForgetPadding(row);
        if (AfterStep != nullptr) AfterStep(bitmap_);
    }

  private:
    size_t RowBytes() const { return bitmap_.BytesPerLine; }
    bool IsEmpty() const { return bitmap_.Height == 0; }
    int32_t TileSize() {
        return static_cast<int32_t>(bitmap_.BytesPerLine) * (1 + input_.Below(12)) - input_.Below(2);
    }

    // A place in the bitmap and bytes that go on from it, up to the end of the bitmap at most.
    struct Stretch {
        int32_t Row, Column;
        size_t Place, Bytes;
    };
    Stretch AnyStretch() {
        Stretch stretch = {};
        stretch.Row = input_.Below(bitmap_.Height);
        stretch.Column = input_.Flip() ? input_.Below(bitmap_.Width) : 0;
        stretch.Place = static_cast<size_t>(stretch.Row) * RowBytes() +
                        static_cast<size_t>(stretch.Column) * static_cast<size_t>(bitmap_.BitsPerPixel) / 8;
        const size_t most =
            std::min(model_.size() - stretch.Place, input_.Flip() ? RowBytes() : model_.size());
        stretch.Bytes = static_cast<size_t>(input_.Word()) % (most + 1);
        return stretch;
    }

    void Write() {
        if (IsEmpty()) return;
        const Stretch to = AnyStretch();
        const Exact bytes(to.Bytes, input_);
        const auto count = static_cast<uint32_t>(to.Bytes);
        const ReturnCode result = to.Column == 0
                                      ? Z_PutBitmapRow(&bitmap_, bytes.Get(), to.Row, count)
                                      : Z_PutBitmapRowCol(&bitmap_, bytes.Get(), to.Row, to.Column, count);
        FUZZ_EXPECT(result == static_cast<ReturnCode>(count));
        std::copy_n(bytes.Get(), to.Bytes, model_.begin() + static_cast<ptrdiff_t>(to.Place));
    }

    void Read() {
        if (IsEmpty()) return;
        const Stretch from = AnyStretch();
        const Exact bytes(from.Bytes);
        const auto count = static_cast<uint32_t>(from.Bytes);
        const ReturnCode result =
            from.Column == 0 ? Z_GetBitmapRow(&bitmap_, bytes.Get(), from.Row, count)
                             : Z_GetBitmapRowCol(&bitmap_, bytes.Get(), from.Row, from.Column, count);
        FUZZ_EXPECT(result == static_cast<ReturnCode>(count));
        FUZZ_EXPECT(std::equal(bytes.Get(), bytes.Get() + from.Bytes,
                               model_.begin() + static_cast<ptrdiff_t>(from.Place)));
    }

    // Bit by bit; pixels of 12 bits begin at the low end of their bytes, others at the high end.
    uint8_t BitMask(size_t bit) const {
        return static_cast<uint8_t>(bitmap_.BitsPerPixel == 12 ? 1 << bit % 8 : 0x80 >> bit % 8);
    }
    // Whether a bit belongs to the alpha of its pixel, in the same count.
    bool IsAlpha(size_t bit) const {
        switch (bitmap_.BitsPerPixel) {
        case 16: return bitmap_.Order != Z_ORDER_GRAY && bit % 16 == 8;
        case 32: return bit % 32 >= 24;
        case 64: return bit % 64 >= 48;
        default: return false;
        }
    }
    void Segment() {
        if (IsEmpty()) return;
        const int32_t row = input_.Below(bitmap_.Height);
        const auto bits = static_cast<size_t>(bitmap_.BitsPerPixel);
        const auto width = static_cast<uint32_t>(bitmap_.Width);
        std::vector<uint32_t> columns(static_cast<size_t>(input_.Below(11))); // an odd one is left over
        for (uint32_t& column : columns)
            column = static_cast<uint32_t>(input_.Below(bitmap_.Width + 1));
        const auto last = std::max_element(columns.begin(), columns.end());
        const Exact pixels(last == columns.end() ? 0 : (*last * bits + 7) / 8, input_);
        const int32_t offset = input_.Flip() ? 0 : input_.Near(bitmap_.Width, -bitmap_.Width);
        const bool keepsAlpha = input_.Flip();
        FUZZ_EXPECT(Z_PutBitmapRowSegments(&bitmap_, pixels.Get(), row, offset, columns.data(),
                                           static_cast<uint32_t>(columns.size()), keepsAlpha) == 1);
        for (size_t pair = 0; pair + 1 < columns.size(); pair += 2) {
            for (size_t bit = columns[pair] * bits; bit < columns[pair + 1] * bits; ++bit) {
                const int64_t to = static_cast<int64_t>(bit) + int64_t{offset} * static_cast<int64_t>(bits);
                if (to < 0 || to >= static_cast<int64_t>(width * bits)) continue;
                if (keepsAlpha && IsAlpha(bit)) continue;
                const auto target = static_cast<size_t>(to);
                uint8_t& byte = model_[static_cast<size_t>(row) * RowBytes() + target / 8];
                const bool set = (pixels.Get()[bit / 8] & BitMask(bit)) != 0;
                byte = static_cast<uint8_t>(set ? byte | BitMask(target) : byte & ~BitMask(target));
            }
        }
    }

    void Height() {
        const int32_t height = input_.Below(MostHeight + 1);
        const ReturnCode result = Z_ChangeBitmapHeight(&bitmap_, height);
        if ((bitmap_.Flags & Z_FLAG_USER_DATA) != 0) {
            FUZZ_EXPECT(result == Z_ERROR_ARGUMENT);
            return;
        }
        FUZZ_EXPECT(result == 1 && bitmap_.Height == height);
        model_.resize(static_cast<size_t>(height) * RowBytes(), 0);
    }

    void Tune() {
        const auto value = [&] { return input_.Near(12); };
        const uint32_t flags = static_cast<uint32_t>(input_.Byte()) & ~3u;
        FUZZ_EXPECT(Z_SetBitmapMemoryInfo(&bitmap_, value(), value(), value(), value(), value(), value(),
                                          flags) == 1);
    }

    // Whatever is asked for, and whether it is granted or not, no pixel is lost; the usual wishes are
    // granted.
    void Rebuild() {
        constexpr int32_t types[] = {
            MemoryConventional, MemoryDisk, MemoryNoTiled, 2, 4, 5, 8, 9, 129, 512, 1024};
        const size_t choice = input_.Byte() % (std::size(types) + 1);
        const bool usual = choice < 3;
        const int32_t type = choice < std::size(types) ? types[choice] : input_.Hostile();
        const auto value = [&] { return usual ? 0 : input_.Near(99); };
        const uint32_t flags = Z_MEMORY_INFO_TYPE | (usual ? 0u : uint32_t{input_.Byte()});
        const int32_t tileSize = value(), tileCount = value(), conventional = value(), most = value(),
                      mapped = value();
        const ReturnCode result =
            Z_SetBitmapMemoryInfo(&bitmap_, type, tileSize, tileCount, conventional, most, mapped, flags);
        // Nothing can be made for a bitmap without rows.
        if (usual) FUZZ_EXPECT(result == 1 || (IsEmpty() && result == Z_ERROR_DIMENSIONS));
        const bool isPlain = (bitmap_.Flags & Z_FLAG_COMPRESSED) == 0;
        if (isPlain && bitmap_.Size != model_.size()) FUZZ_EXPECT(Z_UpdateBitmapSize(&bitmap_) == 1);
    }

    void Copy() {
        BitmapHandle copy;
        const ReturnCode result = Z_CopyBitmap(&copy, &bitmap_);
        FUZZ_EXPECT(result == (IsEmpty() ? Z_ERROR_DIMENSIONS : 1));
        if (result != 1) return;
        Z_FreeBitmap(&bitmap_);
        bitmap_ = copy;
    }

    // ---- compressed rows, of 1-bit bitmaps in any class

    bool Bit(int64_t pixel) const {
        const auto row = static_cast<size_t>(pixel / bitmap_.Width);
        const auto column = static_cast<size_t>(pixel % bitmap_.Width);
        return (model_[row * RowBytes() + column / 8] & 0x80 >> column % 8) != 0;
    }
    void SetBit(int64_t pixel, bool set) {
        const auto row = static_cast<size_t>(pixel / bitmap_.Width);
        const auto column = static_cast<size_t>(pixel % bitmap_.Width);
        uint8_t& byte = model_[row * RowBytes() + column / 8];
        byte = static_cast<uint8_t>(set ? byte | 0x80 >> column % 8 : byte & ~(0x80 >> column % 8));
    }
    // Runs hold no bits behind the last pixel.
    void ForgetPadding(int32_t row) {
        uint8_t* const bytes = model_.data() + static_cast<size_t>(row) * RowBytes();
        const auto width = static_cast<size_t>(bitmap_.Width);
        std::fill(bytes + (width + 7) / 8, bytes + RowBytes(), uint8_t{0});
        if (width % 8 != 0) bytes[width / 8] &= static_cast<uint8_t>(0xFF00 >> width % 8);
    }

    // The words that a list of a row has at most.
    size_t RowWords() const { return static_cast<size_t>(bitmap_.Width) + 1; }

    // Compares a list with the model from a pixel on, and goes on to the list behind it.
    const uint16_t* CompareRuns(const uint16_t* list, int64_t first, int64_t pixels, size_t mostWords) {
        uint32_t count;
        std::memcpy(&count, list, sizeof count);
        FUZZ_EXPECT(count <= mostWords);
        int64_t pixel = first;
        for (uint32_t word = 0; word < count; ++word)
            for (uint16_t left = list[2 + word]; left > 0; --left)
                FUZZ_EXPECT(pixel < first + pixels && Bit(pixel++) == (word % 2 != 0));
        FUZZ_EXPECT(pixel == first + pixels);
        return list + 2 + count;
    }

    // A list that is mostly a row of so many pixels; whether it is one.
    bool AddList(std::vector<uint16_t>& lists, int32_t pixels) {
        const size_t start = lists.size();
        lists.resize(start + 2);
        const auto most = static_cast<size_t>(pixels) + 1;
        int32_t left = pixels;
        const int32_t longest = input_.Flip() ? 4 : 3000;
        for (size_t words = 0; left > 0 && words < most; ++words) {
            const int32_t run = std::min({left, 0xFFFF, words + 1 == most ? left : input_.Below(longest)});
            lists.push_back(static_cast<uint16_t>(run));
            left -= run;
        }
        bool isRow = left == 0;
        auto count = static_cast<uint32_t>(lists.size() - start - 2);
        if (input_.Byte() < 30 && count > 0) {
            uint16_t& spoilt =
                lists[start + 2 + static_cast<size_t>(input_.Below(static_cast<int32_t>(count)))];
            const auto wrong = static_cast<uint16_t>(input_.Word());
            isRow = isRow && spoilt == wrong;
            spoilt = wrong;
        } else if (input_.Byte() < 15) {
            count = std::max(input_.Word(), static_cast<uint32_t>(most) + 1);
            isRow = false;
        }
        std::memcpy(&lists[start], &count, sizeof count);
        return isRow;
    }
    // Takes a list over into the model.
    const uint16_t* Adopt(const uint16_t* list, int64_t pixel) {
        uint32_t count;
        std::memcpy(&count, list, sizeof count);
        for (uint32_t word = 0; word < count; ++word)
            for (uint16_t left = list[2 + word]; left > 0; --left)
                SetBit(pixel++, word % 2 != 0);
        return list + 2 + count;
    }
    // A buffer of exactly the words of a list; what is not there must not be read.
    static Exact Copied(const std::vector<uint16_t>& lists) {
        Exact copy(lists.size() * 2);
        std::memcpy(copy.Get(), lists.data(), copy.Count);
        return copy;
    }
    static uint16_t* Words(const Exact& buffer) { return reinterpret_cast<uint16_t*>(buffer.Get()); }

    void ReadRuns() {
        if (IsEmpty()) return;
        const int32_t row = input_.Below(bitmap_.Height),
                      rows = std::min(1 + input_.Below(3), bitmap_.Height - row);
        const auto width = static_cast<size_t>(bitmap_.Width);
        const Exact lists(static_cast<size_t>(rows) * (4 + 2 * (width + 1))), work(RowBytes());
        const bool past = input_.Flip();
        FUZZ_EXPECT(Z_GetBitmapRowCompressed(&bitmap_, input_.Flip() ? work.Get() : nullptr, Words(lists),
                                             row, past && row + rows == bitmap_.Height ? 99 : rows) == 1);
        const uint16_t* list = Words(lists);
        for (int32_t i = row; i < row + rows; ++i)
            list = CompareRuns(list, int64_t{i} * bitmap_.Width, bitmap_.Width, RowWords());
    }

    void WriteRuns() {
        if (IsEmpty()) return;
        const int32_t row = input_.Below(bitmap_.Height),
                      rows = std::min(1 + input_.Below(3), bitmap_.Height - row);
        std::vector<uint16_t> lists;
        bool good = true;
        for (int32_t i = 0; i < rows && good; ++i)
            good = AddList(lists, bitmap_.Width);
        const Exact source = Copied(lists), work(RowBytes());
        FUZZ_EXPECT(Z_PutBitmapRowCompressed(&bitmap_, input_.Flip() ? work.Get() : nullptr, Words(source),
                                             row, rows) == (good ? 1 : Z_ERROR_ARGUMENT));
        const uint16_t* list = Words(source);
        for (int32_t i = row; good && i < row + rows; ++i) {
            list = Adopt(list, int64_t{i} * bitmap_.Width);
            ForgetPadding(i);
        }
        if (!good || (bitmap_.Flags & Z_FLAG_COMPRESSED) == 0) return;
        const Exact kept(source.Count); // runs are stored as they stand
        FUZZ_EXPECT(Z_GetBitmapRowCompressed(&bitmap_, nullptr, Words(kept), row, rows) == 1);
        FUZZ_EXPECT(std::equal(kept.Get(), kept.Get() + kept.Count, source.Get()));
    }

    // Pixels from a place on that are there, and those asked for beyond.
    struct RunStretch {
        int32_t Row, Column, Asked;
        int64_t First, Pixels;
    };
    RunStretch AnyRunStretch() {
        RunStretch stretch = {};
        stretch.Row = input_.Below(bitmap_.Height);
        stretch.Column = input_.Below(bitmap_.Width);
        stretch.Asked = 1 + input_.Below(input_.Flip() ? bitmap_.Width - stretch.Column : 3 * bitmap_.Width);
        stretch.First = int64_t{stretch.Row} * bitmap_.Width + stretch.Column;
        stretch.Pixels =
            std::min<int64_t>(stretch.Asked, int64_t{bitmap_.Height} * bitmap_.Width - stretch.First);
        return stretch;
    }

    void ReadSomeRuns() {
        if (IsEmpty()) return;
        const RunStretch from = AnyRunStretch();
        // Stored lists may spend their words on empty runs.
        const auto rows = static_cast<size_t>((from.Column + from.Asked - 1) / bitmap_.Width + 1);
        const Exact list(4 + 2 * rows * RowWords()), work(RowBytes());
        std::memset(list.Get(), 0, list.Count);
        FUZZ_EXPECT(Z_GetBitmapRowColCompressed(&bitmap_, input_.Flip() ? work.Get() : nullptr, Words(list),
                                                from.Row, from.Column, from.Asked) == 1);
        CompareRuns(Words(list), from.First, from.Pixels, rows * RowWords());
    }

    void WriteSomeRuns() {
        if (IsEmpty()) return;
        const RunStretch to = AnyRunStretch();
        std::vector<uint16_t> list;
        const bool good = AddList(list, to.Asked);
        const Exact source = Copied(list), work(RowBytes());
        FUZZ_EXPECT(Z_PutBitmapRowColCompressed(&bitmap_, input_.Flip() ? work.Get() : nullptr, Words(source),
                                                to.Row, to.Column,
                                                to.Asked) == (good ? 1 : Z_ERROR_ARGUMENT));
        if (!good) return;
        int64_t pixel = to.First;
        for (size_t word = 2; word < list.size(); ++word)
            for (uint16_t left = list[word]; left > 0 && pixel < to.First + to.Pixels; --left)
                SetBit(pixel++, word % 2 != 0);
    }

    void Compress() {
        constexpr uint32_t runs = Z_FLAG_COMPRESSED, strips = Z_FLAG_SUPER_COMPRESSED;
        const uint32_t before = bitmap_.Flags & (runs | strips);
        if (before == runs && input_.Flip()) {
            const int32_t result = input_.Flip() ? Z_TrimBitmapHeap(&bitmap_)
                                                 : Z_GrowBitmapHeap(&bitmap_, input_.Word() % 300000);
            FUZZ_EXPECT(result == 0 || result == 1);
            return;
        }
        const bool toggles = input_.Flip();
        const int32_t method = !toggles ? input_.Below(3) : before == 0 ? COMP_RLE : COMP_NONE;
        const uint32_t wanted = method == COMP_RLE ? runs : method == COMP_SUPER ? strips : 0;
        FUZZ_EXPECT(
            (toggles ? Z_ToggleBitmapCompression(&bitmap_) : Z_ChangeBitmapCompression(&bitmap_, method)) ==
            (IsEmpty() && wanted != before ? Z_ERROR_DIMENSIONS : 1));
        FUZZ_EXPECT((bitmap_.Flags & (runs | strips)) == (IsEmpty() ? before : wanted));
    }

    void Compare() {
        std::vector<uint8_t> all(model_.size());
        for (int32_t row = 0; row < bitmap_.Height; ++row) {
            const auto count = static_cast<uint32_t>(RowBytes());
            FUZZ_EXPECT(Z_GetBitmapRow(&bitmap_, all.data() + static_cast<size_t>(row) * RowBytes(), row,
                                       count) == static_cast<ReturnCode>(count));
        }
        FUZZ_EXPECT(all == model_);
    }

    Input& input_;
    BitmapHandle bitmap_;
    std::vector<uint8_t> model_, user_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Checked bitmap(input);
    for (int step = 0; step < 60 && !input.IsEmpty(); ++step)
        bitmap.Step();
    return 0;
}
