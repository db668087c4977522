// Runs a scenario with its first, second, ... call of the system failing until none is left to fail, once and
// for good, and holds it to what every function promises: a documented code, nothing of the caller's lost,
// nothing leaked, and success once the system works again.
#pragma once

#include "core/predicates.h"
#include "core/storage_faults.h"
#include "platform/graphics.h"
#include "zkr13n/allocation.h"
#include "zkr13n/dib.h"
#include "zkr13n/files.h"
#include "zkr13n/lists.h"
#include "zkr13n/palettes.h"

#include <algorithm>
#include <functional>
#include <set>

namespace zkr::test {

// What scenarios work on and leave behind. Everything is released at the end of a round.
struct Ground {
    Bytes UserData;
    Bitmap Subject; // what a failure must leave as it was
    Bitmap Made;
    BitmapList List = nullptr, NewList = nullptr;
    HPALETTE Palette = nullptr, NewPalette = nullptr;
    HANDLE Handle = nullptr;  // of the platform
    HDC Context = nullptr;    // on pixels of the subject
    HGLOBAL Global = nullptr; // a block
    void* Block = nullptr;    // of the Z_Os family
    void* Buffer = nullptr;   // of the run-time heap
    intptr_t File = -1;
    Bytes Row;

    Ground() = default;
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;
    ~Ground() {
        for (BitmapList list : {List, NewList})
            if (list != nullptr) Z_DestroyBitmapList(list);
        for (HPALETTE palette : {Palette, NewPalette})
            if (palette != nullptr) platform::DeleteObject(palette);
        if (Handle != nullptr) platform::DeleteObject(Handle);
        if (Context != nullptr) Z_DeleteZircDC(Context);
        if (Global != nullptr) platform::GlobalFree(Global);
        Z_OsFree(Block);
        Z_Free(Buffer);
        if (File != -1) Z_OsClose(File, 0);
    }
};

// Of the subject, when a call fails: SomeRows are those that the height still counts.
enum class Kept { Nothing, SomeRows, Rows, Everything };

struct Scenario {
    std::string Name;
    std::vector<ReturnCode> Failures; // the documented ones
    std::function<void(Ground&)> Prepare;
    std::function<ReturnCode(Ground&)> Call;
    Kept OnFailure = Kept::Everything;
    std::function<void(Ground&, ReturnCode)> Check = {}; // whatever the result
    uint32_t Kinds = fault::All;
};

constexpr ReturnCode Memory = code::OutOfMemory, DiskSpace = code::OutOfDiskSpace, Seek = code::SeekFailed,
                     Read = code::ReadFailed, Write = code::WriteFailed, Argument = code::InvalidArgument;
inline const std::vector<ReturnCode> OfMemory = {Memory}, OfReading = {Memory, Seek, Read},
                                     OfFiles = {Memory, Seek, Read, Write};

inline void Nothing(Ground&) {}

// Random pixels of a form.
inline void Make(BitmapHandle& bitmap, int32_t type, int32_t bits, int32_t order, int32_t view, int32_t width,
                 int32_t height) {
    ASSERT_EQ(Z_CreateBitmap(&bitmap, type, width, height, bits, order, nullptr, view, nullptr, 0), 1);
    Fill(bitmap, 3);
}
inline std::function<void(Ground&)> With(int32_t type, int32_t bits, int32_t order = Z_ORDER_BGR,
                                         int32_t view = 0, int32_t width = 19, int32_t height = 37) {
    return [=](Ground& g) { Make(g.Subject, type, bits, order, view, width, height); };
}

// The subject as the caller sees it. The row cache may change.
class Picture {
  public:
    explicit Picture(BitmapHandle& bitmap) {
        const int32_t locked = Z_LockBitmap(&bitmap);
        if (IsAllocated(&bitmap)) rows_ = Rows(bitmap);
        Z_UnlockBitmap(&bitmap, locked);
        record_ = bitmap;
        record_.CurrentRow = 0, record_.CurrentRowOffset = 0;
        if (bitmap.PaintLUT != nullptr) tables_.assign(bitmap.PaintLUT, bitmap.PaintLUT + 256);
        RGBQUAD colours[256] = {};
        const uint32_t count = Z_GetBitmapPaletteEntries(&bitmap, 0, 256, colours);
        const auto* bytes = reinterpret_cast<const uint8_t*>(colours);
        tables_.insert(tables_.end(), bytes, bytes + count * sizeof(RGBQUAD));
    }

    void ExpectKept(const Picture& before, Kept kept) const {
        if (kept == Kept::Nothing) return;
        const size_t bytes = std::min(before.rows_.size(), rows_.size());
        EXPECT_TRUE(kept == Kept::SomeRows || bytes == before.rows_.size());
        EXPECT_TRUE(std::equal(before.rows_.begin(), before.rows_.begin() + static_cast<ptrdiff_t>(bytes),
                               rows_.begin()));
        EXPECT_EQ(tables_, before.tables_);
        EXPECT_TRUE(kept != Kept::Everything || std::memcmp(&record_, &before.record_, sizeof record_) == 0);
    }

  private:
    BitmapHandle record_;
    Bytes rows_, tables_;
};

using Codes = std::set<ReturnCode>;

// One round; false when there was no call left to fail.
inline bool FailOnce(const Scenario& scenario, Codes& seen, uint32_t kinds, uint32_t nth, bool sticky) {
    Ground ground;
    scenario.Prepare(ground);
    const Picture before(ground.Subject);
    fault::Arm(kinds, nth, sticky);
    const ReturnCode result = scenario.Call(ground);
    const bool fired = fault::Fired();
    fault::Disarm();

    EXPECT_TRUE(fired || result == code::Success) << result;
    if (scenario.Check) scenario.Check(ground, result);
    if (result == code::Success) return fired;
    seen.insert(result);
    EXPECT_NE(std::count(scenario.Failures.begin(), scenario.Failures.end(), result), 0) << result;
    Picture(ground.Subject).ExpectKept(before, scenario.OnFailure);
    EXPECT_EQ(scenario.Call(ground), code::Success) << "once the system works again";
    return fired;
}

inline void FailEach(const Scenario& scenario, Codes& seen, uint32_t kinds, bool sticky) {
    bool fired = true;
    for (uint32_t nth = 1; fired && !testing::Test::HasFailure(); ++nth) {
        SCOPED_TRACE(scenario.Name + ": call " + std::to_string(nth) + " of kinds " + std::to_string(kinds) +
                     (sticky ? " and all later ones fail" : " fails"));
        const int64_t alive = fault::Live();
        fired = FailOnce(scenario, seen, kinds, nth, sticky);
        EXPECT_EQ(fault::Live(), alive) << "something has leaked";
        ASSERT_LT(nth, 1000u);
    }
}

inline void Run(const Scenario& scenario, Codes& seen) {
    FailEach(scenario, seen, scenario.Kinds, false);
    constexpr uint32_t shortages[] = {fault::Heap | fault::Global,
                                      fault::Mapping,
                                      fault::View,
                                      fault::AllMemory,
                                      fault::FileOpen,
                                      fault::FileWrite | fault::FileSeek | fault::FileEnd,
                                      fault::AllFiles,
                                      fault::All};
    for (const uint32_t kinds : shortages)
        FailEach(scenario, seen, kinds & scenario.Kinds, true);
}

// Scenarios share a temporary directory of their own, which must be empty in the end. Each code that they
// document is seen in at least one of them.
inline void RunAll(const std::vector<Scenario>& scenarios) {
    const TemporaryDirectory directory;
    const Thresholds restore;
    Codes documented, seen;
    for (const Scenario& scenario : scenarios) {
        Run(scenario, seen);
        documented.insert(scenario.Failures.begin(), scenario.Failures.end());
        EXPECT_TRUE(directory.IsEmpty()) << scenario.Name << " has left files";
    }
    EXPECT_EQ(seen, documented);
}

} // namespace zkr::test
