// The station of storage classes: rows written and read back in each class, then one living bitmap that is
// moved from class to class and tuned.
#include "tour.h"

#include "apps/zkr/compare.h"
#include "apps/zkr/failure.h"
#include "apps/zkr/progress.h"

#include "zkr13n/storage.h"

#include <cstdio>

namespace zkr::app {

namespace {

struct StorageCase {
    const char* name;
    Storage storage;
};

constexpr int NoLimit = 1 << 20; // more tiles than any bitmap here has

constexpr StorageCase StorageCases[] = {
    {"conventional", {.kind = StorageClass::Conventional}},
    {"user", {.kind = StorageClass::User}},
    {"tiles in memory", {.kind = StorageClass::Tiled, .memoryBudget = NoLimit, .views = 0}},
    {"tiles of all kinds", {.kind = StorageClass::Tiled, .memoryBudget = 5, .views = 2}},
    {"tiles in files", {.kind = StorageClass::Tiled, .memoryBudget = 0, .views = 0}},
    {"disk", {.kind = StorageClass::Disk}},
    {"runs", {.kind = StorageClass::Runs}},
    {"strips", {.kind = StorageClass::Strips}},
};

Bitmap Copied(Bitmap& source, const Storage& storage) {
    Bitmap copy(source.Name(), source.Format(), source.Width(), source.Height(), storage);
    std::vector<uint8_t> row(source.RowBytes());
    RowProgress progress(source.Name(), source.Height());
    for (int y = 0; y < source.Height(); ++y) {
        source.GetRow(y, row.data());
        copy.PutRow(y, row.data());
        progress.RowDone();
    }
    return copy;
}

TourStep Compared(const std::string& name, Bitmap& source, Bitmap& copy, double milliseconds) {
    const bool same = SameRows(source, copy);
    return {name,
            ShortName(copy.Format()),
            StorageOf(copy),
            copy.Bytes(),
            milliseconds,
            same ? "equal" : "differs",
            !same};
}

struct Move {
    const char* name;
    int32_t type;
    int32_t conventional, maximumMapped, mapped;
    uint32_t flags;
};

// Each move starts from what the one before has left.
constexpr Move Moves[] = {
    {"tune: 8 tiles in memory", 0, 8, 0, 0, Z_MEMORY_INFO_CONVENTIONAL},
    {"tune: 1 tile, 3 views", 0, 1, 3, 3,
     Z_MEMORY_INFO_CONVENTIONAL | Z_MEMORY_INFO_MAX_MAPPED | Z_MEMORY_INFO_MAPPED},
    {"move to disk", MemoryDisk, 0, 0, 0, Z_MEMORY_INFO_TYPE},
    {"move to conventional", MemoryConventional, 0, 0, 0, Z_MEMORY_INFO_TYPE},
};

void MoveAbout(Tour& tour, Bitmap& source) {
    Bitmap living = Copied(source, {.kind = StorageClass::Tiled});
    for (const Move& move : Moves) {
        const Stopwatch watch;
        Check(Z_SetBitmapMemoryInfo(living.Handle(), move.type, 0, 0, move.conventional, move.maximumMapped,
                                    move.mapped, move.flags),
              source.Name() + ": " + move.name);
        const double milliseconds = watch.Milliseconds();
        tour.Print(Compared(move.name, source, living, milliseconds));
    }
}

} // namespace

std::vector<std::string> ThroughStorageClasses(Tour& tour, Bitmap& source) {
    std::vector<std::string> lines;
    for (const StorageCase& one : StorageCases) {
        if (!CanLiveIn(one.storage.kind, source.Format().bits)) continue;
        const StatusBar bar(one.name);
        const Stopwatch watch;
        Bitmap copy = Copied(source, one.storage);
        const TourStep step = Compared(one.name, source, copy, watch.Milliseconds());
        tour.Print(step);
        char line[96];
        std::snprintf(line, sizeof line, "%s: %zu bytes, %s after %.1f ms", one.name, step.bytes,
                      step.result.c_str(), step.milliseconds);
        lines.emplace_back(line);
    }
    return lines;
}

static void Run(Tour& tour) {
    tour.storageLines = ThroughStorageClasses(tour, tour.photo);
    const StatusBar bar("moves");
    MoveAbout(tour, tour.photo);
}

constexpr Station StorageStation = {"Storage classes: every row written, read back and compared", Run};

} // namespace zkr::app
