// Thresholds weighed against the system's memory figures.
#include "core/storage/budget.h"

#include "core/thread_settings.h"
#include "platform/memory.h"

#include <algorithm>

namespace zkr::storage {

namespace {

constexpr uint64_t DefaultTileSize = 0x1000000;

platform::MEMORYSTATUSEX MemoryFigures() {
    platform::MEMORYSTATUSEX figures = {};
    figures.dwLength = sizeof(figures);
    platform::GlobalMemoryStatusEx(&figures);
    return figures;
}

// The setting itself, or that percentage of the whole, truncated.
uint64_t Evaluate(int32_t setting, uint64_t whole) {
    return setting >= 0 ? static_cast<uint64_t>(setting)
                        : whole * static_cast<uint64_t>(-int64_t{setting}) / 100;
}

// The views for a setting below zero: the tiles beyond the budget scaled by p / (100 - p), half rounded up,
// at least 1; the whole budget for 100 percent.
uint64_t MappedShare(int32_t setting, uint64_t tileCount, uint64_t budget) {
    if (setting == -100) return std::max<uint64_t>(budget, 1);
    const auto percent = static_cast<uint64_t>(-setting);
    const uint64_t rest = 100 - percent;
    return std::max<uint64_t>(((tileCount - budget) * percent + rest / 2) / rest, 1);
}

} // namespace

uint64_t TileSizeInForce() {
    const int32_t setting = CurrentThreadSettings().TileSize;
    return setting < 1 ? DefaultTileSize : static_cast<uint64_t>(setting);
}

uint64_t AvailableMemory() {
    const platform::MEMORYSTATUSEX figures = MemoryFigures();
    return figures.ullAvailPhys + figures.ullAvailPageFile;
}

uint64_t UsableMemory() {
    const platform::MEMORYSTATUSEX figures = MemoryFigures();
    const uint64_t available = figures.ullAvailPhys + figures.ullAvailPageFile;
    const uint64_t reserve =
        Evaluate(CurrentThreadSettings().MemoryReserve, figures.ullTotalPhys + figures.ullTotalPageFile);
    return available - std::min(available, reserve);
}

uint64_t LargestConventionalSize() {
    const int32_t setting = CurrentThreadSettings().MaxConventionalSize;
    return setting >= 0 ? static_cast<uint64_t>(setting) : Evaluate(setting, AvailableMemory());
}

TileBudget ShareTiles(uint32_t tileCount, uint64_t tileBytes) {
    const ThreadSettings& settings = CurrentThreadSettings();
    const uint64_t wanted = Evaluate(settings.ConventionalTiles, tileCount);
    const uint64_t budget = std::min(wanted, UsableMemory() / tileBytes);
    if (budget >= tileCount) return {.ConventionalCount = tileCount, .MaxMapped = 0};

    const uint64_t views = settings.MappedTiles >= 0 ? static_cast<uint64_t>(settings.MappedTiles)
                                                     : MappedShare(settings.MappedTiles, tileCount, budget);
    const bool viewsTakeAll = views > budget;
    const uint64_t mapped = viewsTakeAll ? std::max<uint64_t>(budget, 1) : views;
    return {.ConventionalCount = static_cast<uint32_t>(viewsTakeAll ? 0 : budget - views),
            .MaxMapped = static_cast<uint32_t>(std::min<uint64_t>(mapped, tileCount))};
}

} // namespace zkr::storage
