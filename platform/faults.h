// Lets tests make the system fail. In a build with ZKR_FAULT_INJECTION every allocation, mapping, file and
// palette call asks Due() first; in all other builds Due() is constant false and leaves no trace. The state
// is one for the whole process and may be armed from any thread. The same builds count what is alive: blocks,
// handles and views that have been made and not released.
#pragma once

#include <atomic>
#include <cstdint>

namespace zkr::platform::fault {

enum Kind : uint32_t {
    Heap = 1u << 0,      // the run-time heap
    Global = 1u << 1,    // GlobalAlloc, GlobalReAlloc
    Mapping = 1u << 2,   // CreateFileMappingA
    View = 1u << 3,      // MapViewOfFile
    FileOpen = 1u << 4,  // CreateFileA, GetTempFileNameA
    FileRead = 1u << 5,  // ReadFile
    FileWrite = 1u << 6, // WriteFile
    FileSeek = 1u << 7,  // SetFilePointerEx
    FileEnd = 1u << 8,   // SetEndOfFile
    Palette = 1u << 9,   // CreatePalette
    Device = 1u << 10,   // GetDC, SaveDC, the making of device contexts, bitmaps and brushes
    Thread = 1u << 11,   // FlsAlloc, FlsSetValue
    Module = 1u << 12,   // LoadLibraryA
    Region = 1u << 13,   // the making of regions, CombineRgn, GetRegionData, paths
    Drawing = 1u << 14,  // calls that draw, and GetDIBits

    AllMemory = Heap | Global | Mapping | View,
    AllFiles = FileOpen | FileRead | FileWrite | FileSeek | FileEnd,
    All = 0xFFFFFFFFu
};

#if ZKR_FAULT_INJECTION

namespace detail {
inline std::atomic<uint32_t> kinds{0};
inline std::atomic<uint32_t> calls{0};
inline std::atomic<uint32_t> nth{0};
inline std::atomic<bool> sticky{false};
inline std::atomic<int64_t> live{0};
} // namespace detail

inline void Disarm() {
    detail::kinds.store(0);
}

// Makes the nth call (from 1) of the given kinds fail, and with sticky every later one too. With nth 0
// nothing fails and the calls are only counted.
inline void Arm(uint32_t kinds, uint32_t nth, bool sticky = false) {
    Disarm();
    detail::calls.store(0);
    detail::nth.store(nth);
    detail::sticky.store(sticky);
    detail::kinds.store(kinds);
}

// Calls of the armed kinds since Arm().
inline uint32_t Calls() {
    return detail::calls.load();
}

// Whether a fault has been delivered since Arm(): a loop over nth ends with the first round without one.
inline bool Fired() {
    return detail::nth.load() != 0 && detail::calls.load() >= detail::nth.load();
}

inline bool Due(Kind kind) {
    if ((detail::kinds.load() & kind) == 0) return false;
    const uint32_t call = detail::calls.fetch_add(1) + 1;
    const uint32_t nth = detail::nth.load();
    return nth != 0 && (call == nth || (call > nth && detail::sticky.load()));
}

inline void Made() {
    detail::live.fetch_add(1);
}
inline void Released() {
    detail::live.fetch_sub(1);
}

// Blocks, handles and views alive in the process.
inline int64_t Live() {
    return detail::live.load();
}

#else

constexpr bool Due(Kind) {
    return false;
}
constexpr void Made() {}
constexpr void Released() {}

#endif

} // namespace zkr::platform::fault
