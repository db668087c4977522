// Run lists: a row of 1-bit pixels as alternating lengths of 16 bits, the first of them a run of 0 bits,
// which is empty where the row starts with a 1 bit. A run longer than LongestRun is split as LongestRun, 0
// and the rest: an empty run within a list means that the colour does not change. Pixels are the bits of a
// row from the top bit of the first byte on. Nothing here allocates or fails.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zkr::runs {

inline constexpr uint32_t LongestRun = 65535;

// Words that a row takes at most: alternating pixels that start with a 1 bit. A split spends two further
// words, but only on a run of many pixels.
constexpr uint64_t MostWords(int32_t width) {
    return static_cast<uint64_t>(width) + 1;
}

// Walks a list. At any time it stands within a run of at least one pixel, or at the end; it reads no word
// beyond those that it was given.
class RunReader {
  public:
    RunReader(const uint16_t* runs, uint32_t words) : next_(runs), end_(runs + words) { SkipEmpty(); }

    bool IsAtEnd() const { return left_ == 0; }
    bool Ones() const { return ones_; }
    // Pixels that the word at hand still has.
    uint32_t Left() const { return left_; }
    // The word at hand, and the pixels of it that are behind; at the end, the place behind the last word.
    const uint16_t* Word() const { return IsAtEnd() ? end_ : next_ - 1; }
    uint32_t Behind() const { return IsAtEnd() ? 0 : next_[-1] - left_; }

    // Goes on by so many pixels, at most to the end.
    void Skip(uint64_t pixels) {
        while (pixels >= left_ && left_ != 0) {
            pixels -= left_;
            left_ = 0;
            SkipEmpty();
        }
        if (left_ != 0) left_ -= static_cast<uint32_t>(pixels);
    }

  private:
    void SkipEmpty() {
        while (left_ == 0 && next_ != end_) {
            left_ = *next_++;
            ones_ = !ones_;
        }
    }

    const uint16_t* next_;
    const uint16_t* end_;
    uint32_t left_ = 0;
    bool ones_ = true;
};

// Writes a list, or the middle of one. Its output needs a word for each pixel and one more (MostWords).
class RunWriter {
  public:
    // ones: the colour that the first word stands for.
    RunWriter(uint16_t* output, bool ones) : first_(output), last_(output), ones_(ones) { *output = 0; }

    // Joins the last run where the colour is the same. No pixels add no run.
    void Append(uint64_t pixels, bool ones) {
        if (pixels == 0) return;
        if (ones != ones_) {
            *++last_ = 0;
            ones_ = ones;
        }
        uint64_t sum = *last_ + pixels;
        for (; sum > LongestRun; sum -= LongestRun) {
            *last_ = LongestRun;
            *++last_ = 0;
            *++last_ = 0;
        }
        *last_ = static_cast<uint16_t>(sum);
    }

    // Appends bits behind the first `skip` (0 to 7) of the source's first byte. No byte is read that holds
    // none of them.
    void AppendBits(const uint8_t* source, uint32_t skip, uint64_t bits);

    // Appends pixels from where a reader stands, which goes on by as many.
    void AppendRuns(RunReader& from, uint64_t pixels) {
        while (pixels > 0 && !from.IsAtEnd()) {
            const uint64_t taken = std::min<uint64_t>(pixels, from.Left());
            Append(taken, from.Ones());
            from.Skip(taken);
            pixels -= taken;
        }
    }

    // Appends pixels of words as they stand, so that empty runs among them come along: from the first word on, which
    // has `ones` and of which so many pixels are left out, to the last one that is needed. The first word joins the
    // last run where the colour is the same.
    void AppendWords(const uint16_t* words, const uint16_t* end, bool ones, uint32_t leftOut,
                     uint64_t pixels) {
        for (bool joins = ones == ones_; words != end && pixels > 0; ++words, joins = false, ones = !ones) {
            const uint64_t taken = std::min<uint64_t>(*words - leftOut, pixels);
            leftOut = 0;
            pixels -= taken;
            if (joins) {
                Append(taken, ones);
                continue;
            }
            *++last_ = static_cast<uint16_t>(taken);
            ones_ = ones;
        }
    }

    uint32_t Words() const { return static_cast<uint32_t>(last_ - first_) + 1; }
    // Whether it has no pixels.
    bool IsEmpty() const { return last_ == first_ && *first_ == 0; }
    // The colour of the last run.
    bool Ones() const { return ones_; }

  private:
    uint16_t* first_;
    uint16_t* last_;
    bool ones_;
};

// Sets the bits of the 1 runs in a zeroed destination: `bits` pixels from pixel `skip` of the list on, or as
// many as it has.
void ExpandRuns(const uint16_t* runs, uint32_t words, uint64_t skip, uint8_t* destination, uint64_t bits);

// Whether a list from outside is a row of exactly `width` pixels, in no more words than such a row can need.
bool IsRow(const uint16_t* runs, uint32_t words, int32_t width);

// The length of a row's list mirrored left to right. Runs keep their colours: an empty first run goes, and
// one comes where the row ends in 1 bits (or has no run at all).
inline uint32_t MirroredWords(const uint16_t* runs, uint32_t words) {
    const bool dropsFirst = words != 0 && runs[0] == 0;
    return words - dropsFirst + (words % 2 == 0);
}

// Mirrors a list into a destination of MirroredWords, which may be the list itself.
void MirrorRuns(const uint16_t* runs, uint32_t words, uint16_t* destination);

} // namespace zkr::runs
