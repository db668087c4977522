// How long operations tell their progress: percent from 0 to 100 to a callback of the calling thread, which
// is read once at the start. Any result of the callback but code::Success stops the operation and is its
// result.
#pragma once

#include "core/return_codes.h"
#include "zkr13n/frame.h"

#include <cstdint>

namespace zkr {

// The callback and what goes with it.
struct StatusReceiver {
    ::StatusCallback Callback;
    intptr_t UserData;

    static StatusReceiver Status(); // of Z_SetStatusCallBack
    static StatusReceiver Copy();   // of Z_SetCopyStatusCallBack

    [[nodiscard]] ReturnCode Report(int32_t percent) const {
        return Callback != nullptr ? Callback(percent, UserData) : code::Success;
    }
};

// Of an operation that has nothing to do: its beginning and its end, whatever the callback says.
inline void ReportDone(StatusReceiver receiver) {
    static_cast<void>(receiver.Report(0));
    static_cast<void>(receiver.Report(100));
}

// A percentage that advances by equal parts of a range, in whole numbers: what a part does not fill is
// carried.
class PercentCounter {
  public:
    constexpr PercentCounter(int32_t start, int32_t end, int32_t parts)
        : percent_(start), parts_(parts > 0 ? parts : 1), step_((end - start) / parts_),
          remainder_((end - start) % parts_) {}

    int32_t Percent() const { return percent_; }

    // Whether the percentage moved.
    bool Advance(int32_t parts) {
        const int32_t before = percent_;
        const int64_t carried = carried_ + int64_t{remainder_} * parts;
        percent_ += step_ * parts + static_cast<int32_t>(carried / parts_);
        carried_ = carried % parts_;
        return percent_ != before;
    }

  private:
    int32_t percent_;
    int32_t parts_;
    int32_t step_;
    int32_t remainder_;
    int64_t carried_ = 0; // below parts_
};

// The part of an operation that a loop reports.
struct PercentRange {
    int32_t Start = 0;
    int32_t End = 100;
};

// The report of a loop over rows: Begin before the first one, Step after each.
class Progress {
  public:
    Progress(StatusReceiver receiver, int32_t rows, PercentRange range = {})
        : receiver_(receiver), counter_(range.Start, range.End, rows) {}

    [[nodiscard]] ReturnCode Begin() const { return receiver_.Report(counter_.Percent()); }
    [[nodiscard]] ReturnCode Step() {
        return counter_.Advance(1) ? receiver_.Report(counter_.Percent()) : code::Success;
    }

  private:
    StatusReceiver receiver_;
    PercentCounter counter_;
};

// Makes the 0 to 100 of an inner operation a part of the range of the operation that calls it. The thread has
// no status callback while the inner operation runs; the outer one hands on how far it has come by Report. A
// thread without a callback is never told anything.
class ProgressStage {
  public:
    ProgressStage() = default;
    ~ProgressStage() { Restore(); }
    ProgressStage(const ProgressStage&) = delete;
    ProgressStage& operator=(const ProgressStage&) = delete;

    // Reports start, and silences the thread's callback unless that one stops the operation. The range from
    // start to end is told in total units.
    [[nodiscard]] ReturnCode Begin(int32_t start = 0, int32_t end = 100, int32_t total = 100);

    // From an inner percentage of 100 on the thread's callback stays restored.
    [[nodiscard]] ReturnCode Report(int32_t innerPercent);

  private:
    void Silence();
    void Restore();

    StatusReceiver receiver_{};
    PercentCounter counter_{0, 100, 100};
    int32_t total_ = 100;
    int32_t units_ = 0; // of total, reached by the inner operation
    bool silent_ = false;
};

} // namespace zkr
