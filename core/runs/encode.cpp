// Packed bits to a run list. A pixel that differs from its left neighbour is a change. Blocks of bytes are
// marked for changes at once; a table turns each byte that has any into positions, and the runs are the
// differences of these. So a row costs by its bytes where little happens and by its runs where much does.
#include "core/runs/run_list.h"
#include "core/runs/word_vectors.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zkr::runs {

namespace {

constexpr size_t BlockBytes = 64;
constexpr size_t BlockPixels = BlockBytes * 8;
constexpr size_t ChunkPixels = BlockPixels * 16;

// For each byte the places of its set bits, counted from the top bit, and how many they are.
struct PlaceTable {
    std::array<std::array<uint16_t, 8>, 256> Places = {};
    std::array<uint8_t, 256> Counts = {};
};

constexpr PlaceTable MakePlaceTable() {
    PlaceTable table;
    for (unsigned byte = 0; byte < 256; ++byte)
        for (uint16_t place = 0; place < 8; ++place)
            if ((byte & 0x80u >> place) != 0) table.Places[byte][table.Counts[byte]++] = place;
    return table;
}

alignas(64) constexpr PlaceTable TableOfPlaces = MakePlaceTable();

// A bit for each byte that is not 0, the lowest for the first.
uint32_t MaskOfNonZero(Bytes16 bytes) {
#ifdef __SSE2__
    const auto isZero = reinterpret_cast<__m128i>(bytes == 0);
    return ~static_cast<uint32_t>(_mm_movemask_epi8(isZero)) & 0xFFFF;
#else
    uint32_t mask = 0;
    for (unsigned i = 0; i < 16; ++i)
        mask |= uint32_t{bytes[i] != 0} << i;
    return mask;
#endif
}

// Whether a block goes on in the colour in front of it.
bool IsOneRun(const uint8_t* block) {
    const Bytes16 colour = Bytes16{} + static_cast<uint8_t>(-(block[-1] & 1));
    Bytes16 different = {};
    for (size_t i = 0; i < BlockBytes; i += 16)
        different |= Load<Bytes16>(block + i) ^ colour;
    return MaskOfNonZero(different) == 0;
}

// The positions of the changes in a chunk, counted from its first byte.
class Changes {
  public:
    size_t Count() const { return count_; }
    uint16_t First() const { return positions_[0]; }

    // Adds the changes of the block at a position. The byte in front of the block is read too.
    void AddBlock(const uint8_t* block, size_t position) {
        if (IsOneRun(block)) return;
        alignas(16) uint8_t marks[BlockBytes];
        uint64_t left = 0;
        for (size_t i = 0; i < BlockBytes; i += 16) {
            const auto here = Load<Bytes16>(block + i);
            const auto before = Load<Bytes16>(block + i - 1);
            const Bytes16 mark = here ^ (here >> 1 | before << 7);
            Store(marks + i, mark);
            left |= uint64_t{MaskOfNonZero(mark)} << i;
        }
        uint16_t* next = positions_ + count_;
        for (; left != 0; left &= left - 1) {
            const auto byte = static_cast<size_t>(std::countr_zero(left));
            const uint8_t mark = marks[byte];
            const auto base = static_cast<uint16_t>(position + byte * 8);
            const Words8 places = Load<Words8>(&TableOfPlaces.Places[mark]) + base;
            Store(next, places);
            next += TableOfPlaces.Counts[mark];
        }
        count_ = static_cast<size_t>(next - positions_);
    }

    // Writes the lengths of the runs that begin with the changes, the last of them up to `end`.
    void Lengths(uint16_t* lengths, size_t end) {
        positions_[count_] = static_cast<uint16_t>(end);
        size_t i = 0;
        for (; i + 8 <= count_; i += 8) {
            Store(lengths + i, Load<Words8>(positions_ + i + 1) - Load<Words8>(positions_ + i));
        }
        for (; i < count_; ++i)
            lengths[i] = static_cast<uint16_t>(positions_[i + 1] - positions_[i]);
    }

  private:
    // The table gives eight places at a time, whether all of them are needed or not.
    uint16_t positions_[ChunkPixels + 8];
    size_t count_ = 0;
};

// The block at the start or at the end of a string of bits, with what does not belong to the string replaced
// so that it makes no change.
class EdgeBlock {
  public:
    // first: the string's first byte; begin: of the block, a position in the string; skip, end: where the
    // string's pixels begin and end; ones: the colour in front of the string.
    EdgeBlock(const uint8_t* first, uint64_t begin, uint32_t skip, uint64_t end, bool ones) {
        const uint64_t pixels = std::min<uint64_t>(end - begin, BlockPixels);
        const auto last = static_cast<size_t>((pixels - 1) / 8);
        std::memcpy(bytes_ + 1, first + begin / 8, last + 1);
        if (begin == 0) {
            bytes_[0] = ones ? 0xFF : 0;
            bytes_[1] = Merged(bytes_[1], bytes_[0], 0xFF00u >> skip);
        } else {
            bytes_[0] = first[begin / 8 - 1];
        }
        const auto place = static_cast<unsigned>((pixels - 1) % 8);
        const uint8_t after = (bytes_[1 + last] & 0x80u >> place) != 0 ? 0xFF : 0;
        bytes_[1 + last] = Merged(bytes_[1 + last], after, 0x7Fu >> place);
        std::memset(bytes_ + 2 + last, after, BlockBytes - 1 - last);
    }

    const uint8_t* Data() const { return bytes_ + 1; }

  private:
    static uint8_t Merged(uint8_t kept, uint8_t other, unsigned mask) {
        return static_cast<uint8_t>((kept & ~mask) | (other & mask));
    }

    uint8_t bytes_[1 + BlockBytes];
};

} // namespace

void RunWriter::AppendBits(const uint8_t* source, uint32_t skip, uint64_t bits) {
    const uint64_t end = bits == 0 ? 0 : skip + bits;
    size_t start = skip;
    for (uint64_t chunk = 0; chunk < end; chunk += ChunkPixels, start = 0) {
        const auto pixels = static_cast<size_t>(std::min<uint64_t>(end - chunk, ChunkPixels));
        Changes changes;
        for (size_t place = 0; place < pixels; place += BlockPixels) {
            const uint64_t begin = chunk + place;
            if (begin == 0 || end - begin < BlockPixels)
                changes.AddBlock(EdgeBlock(source, begin, skip, end, ones_).Data(), place);
            else
                changes.AddBlock(source + begin / 8, place);
        }
        if (changes.Count() == 0) {
            Append(pixels - start, ones_);
            continue;
        }
        Append(changes.First() - start, ones_);
        changes.Lengths(last_ + 1, pixels);
        last_ += changes.Count();
        ones_ = ones_ != (changes.Count() % 2 != 0);
    }
}

} // namespace zkr::runs
