// A row of the target is a column of the source, and its runs end where the column changes colour from one source row
// to the next. So the source is swept row by row, and only the columns in which a row differs from the one before
// are touched: once to count the changes, which tells how long each list becomes, and once to write the lists, each
// of which has one run pending.
#include "geometry/rotate/turn_runs.h"

#include "core/return_codes.h"
#include "core/scratch.h"
#include "core/storage/compressed.h"

#include <cstring>

namespace zkr::geometry {

namespace {

using storage::RunList;

// The columns at which a list changes colour, in order, ended by Width.
class Changes {
  public:
    Changes(RunList list, uint32_t width) : reader_(list.Reader()), width_(width) { Find(); }

    uint32_t Column() const { return column_; }
    void Next() {
        ones_ = reader_.Ones();
        Find();
    }

  private:
    void Find() {
        while (!reader_.IsAtEnd() && reader_.Ones() == ones_) {
            column_ += reader_.Left();
            reader_.Skip(reader_.Left());
        }
        if (reader_.IsAtEnd()) column_ = width_;
    }

    runs::RunReader reader_;
    uint32_t width_;
    uint32_t column_ = 0;
    bool ones_ = false;
};

// Calls visit(from, to) for the columns in which two rows differ.
template <typename Visit> void ForDifferences(RunList a, RunList b, uint32_t width, Visit visit) {
    if (a.Words == b.Words && std::memcmp(a.Runs, b.Runs, a.Words * sizeof(uint16_t)) == 0) return;
    Changes first(a, width), second(b, width);
    uint32_t from = 0;
    for (bool differ = false; first.Column() < width || second.Column() < width || differ;) {
        const uint32_t column = std::min(first.Column(), second.Column());
        const bool inFirst = first.Column() == column, inSecond = second.Column() == column;
        if (differ) visit(from, column);
        if (column == width) break;
        if (inFirst) first.Next();
        if (inSecond) second.Next();
        if (inFirst != inSecond) differ = !differ;
        from = column;
    }
}

// The list of a row of the target while it grows.
struct Pending {
    uint16_t* Next;  // where the next word goes
    uint32_t Length; // of words so far
    uint32_t Start;  // the pixel at which the pending run begins
};

class Sweep {
  public:
    Sweep(BitmapHandle& target, BitmapHandle& source, bool clockwise)
        : target_(target), source_(source), clockwise_(clockwise),
          width_(static_cast<uint32_t>(source.Width)), height_(static_cast<uint32_t>(source.Height)),
          changes_(size_t{width_} + 1), pending_(width_) {}

    explicit operator bool() const { return changes_ && pending_; }

    ReturnCode Run(RowProgress& progress) {
        std::memset(changes_.data(), 0, (size_t{width_} + 1) * sizeof(uint32_t));
        ReturnCode status = ForRows(progress, [this](uint32_t, uint32_t from, uint32_t to) {
            ++changes_[from];
            --changes_[to];
        });
        if (status == code::Success) status = MakeRoom();
        if (status != code::Success) return status;
        status = ForRows(progress, [this](uint32_t y, uint32_t from, uint32_t to) {
            for (uint32_t x = from; x < to; ++x)
                EndRun(pending_[x], y);
        });
        if (status == code::Success) Finish();
        return status;
    }

  private:
    // Calls visit(y, from, to) for the columns that change colour at row y in the order of the walk.
    template <typename Visit> ReturnCode ForRows(RowProgress& progress, Visit visit) {
        RunList before = {&NoRuns, 0};
        ReturnCode status = code::Success;
        for (uint32_t y = 0; y < height_ && status == code::Success; ++y) {
            const uint32_t row = clockwise_ ? height_ - 1 - y : y;
            const RunList list = storage::RunsOf(source_, static_cast<int32_t>(row));
            ForDifferences(before, list, width_, [&](uint32_t from, uint32_t to) { visit(y, from, to); });
            before = list;
            status = progress.Visit();
        }
        return status;
    }

    storage::RowEntry& EntryOf(uint32_t x) {
        return storage::CompressedBlockOf(target_)->Rows()[clockwise_ ? x : width_ - 1 - x];
    }

    // A list has a word for each change and one more, and two for each run that is split. Rows without a change stay
    // blank. The heap grows once.
    ReturnCode MakeRoom() {
        constexpr uint64_t header = sizeof(storage::HeapBlock) + 4;
        const uint64_t splits = height_ / runs::LongestRun * uint64_t{2};
        uint64_t bytes = 0;
        for (uint32_t x = 0; x < width_; ++x) {
            if (x > 0) changes_[x] += changes_[x - 1];
            if (changes_[x] != 0) bytes += (changes_[x] + 1 + splits) * sizeof(uint16_t) + header;
        }
        storage::PrivateHeap& heap = storage::CompressedBlockOf(target_)->Heap;
        if (bytes != 0 && !heap.Grow(bytes)) return code::OutOfMemory;
        for (uint32_t x = 0; x < width_; ++x) {
            if (changes_[x] == 0) continue;
            const uint32_t offset = heap.Allocate((changes_[x] + 1 + splits) * sizeof(uint16_t));
            if (offset == 0) return code::OutOfMemory;
            EntryOf(x) = {offset, 0};
        }
        for (uint32_t x = 0; x < width_; ++x)
            pending_[x] = {
                changes_[x] == 0 ? nullptr : static_cast<uint16_t*>(heap.Payload(EntryOf(x).Offset)), 0, 0};
        target_.Size = heap.Size();
        return code::Success;
    }

    static void EndRun(Pending& row, uint32_t end) {
        uint32_t length = end - row.Start;
        for (; length > runs::LongestRun; length -= runs::LongestRun, row.Next += 2, row.Length += 2) {
            row.Next[0] = runs::LongestRun;
            row.Next[1] = 0;
        }
        *row.Next++ = static_cast<uint16_t>(length);
        ++row.Length;
        row.Start = end;
    }

    void Finish() {
        for (uint32_t x = 0; x < width_; ++x) {
            Pending& row = pending_[x];
            if (row.Next == nullptr) continue;
            if (row.Start < height_) EndRun(row, height_);
            EntryOf(x).Length = row.Length;
        }
    }

    static constexpr uint16_t NoRuns = 0;

    BitmapHandle& target_;
    BitmapHandle& source_;
    bool clockwise_;
    uint32_t width_, height_;
    ScratchBuffer<uint32_t> changes_; // in each column; while they are counted, the differences of neighbours
    ScratchBuffer<Pending> pending_;
};

} // namespace

ReturnCode TurnRuns(BitmapHandle& target, BitmapHandle& source, bool clockwise, RowProgress& progress) {
    if (target.Addr == nullptr || source.Addr == nullptr) return code::InvalidBitmap;
    Sweep sweep(target, source, clockwise);
    return sweep ? sweep.Run(progress) : code::OutOfMemory;
}

} // namespace zkr::geometry
