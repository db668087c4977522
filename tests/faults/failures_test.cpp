// Every function that allocates or touches a file, a mapping or an object of the platform, with each of these
// calls failing in turn.
#include "core/predicates.h"
#include "core/run_heap.h"
#include "faults/fault_driver.h"
#include "zkr13n/pixels.h"

#include "zkr13n/color_resolution.h"
#include "zkr13n/colour_values.h"
#include "zkr13n/compressed_rows.h"
#include "zkr13n/convert.h"
#include "zkr13n/copy.h"
#include "zkr13n/dither.h"
#include "zkr13n/fill.h"
#include "zkr13n/frame.h"
#include "zkr13n/gray.h"
#include "zkr13n/surface.h"

#include <thread>

namespace zkr::test {
namespace {

ReturnCode Found(bool good) {
    return good ? code::Success : Memory;
}

// A gray bitmap of 8 bits with everything that a record can hold.
void Furnish(BitmapHandle& bitmap, bool blockPalette) {
    bitmap.Order = Z_ORDER_GRAY;
    if (blockPalette) bitmap.Flags |= flag::PaletteIsBlock;
    ASSERT_EQ(Z_CreateBitmapGrayPalette(&bitmap), 1);
    bitmap.LevelLUT = static_cast<RGBQUAD*>(Z_OsAllocInit(40, 1));
    bitmap.LevelLUTLength = 10;
    bitmap.PaintLUT[3] = 77;
}

constexpr uint32_t PixelSeed = 5;

std::function<void(Ground&)> In(const Storage& storage, bool blockPalette = false) {
    return [=](Ground& g) {
        Z_InitBitmap(&g.Subject, 7, 6, 8);
        Allocate(g.Subject, storage, g.UserData);
        Furnish(g.Subject, blockPalette);
        Fill(g.Subject, PixelSeed);
        Z_ReleaseBitmap(&g.Subject);
        g.Row.assign(8, 0xC3);
    };
}

const Storage Plain = {"conventional", MemoryConventional};

void Record(Ground& g) {
    Z_InitBitmap(&g.Subject, 7, 6, 8);
}

void ExpectNoStorage(Ground& g, ReturnCode result) {
    if (result == code::Success) return;
    EXPECT_FALSE(IsAllocated(&g.Made));
    EXPECT_EQ(g.Made.PaintLUT, nullptr);
}

// Whether a call succeeds or fails, no pixel may be lost.
void ExpectPixels(Ground& g, ReturnCode) {
    const int32_t locked = Z_LockBitmap(&g.Subject);
    std::mt19937 random(PixelSeed);
    EXPECT_EQ(Rows(g.Subject), RandomBytes(8 * 6, random));
    Z_UnlockBitmap(&g.Subject, locked);
}

ReturnCode Tune(BitmapHandle& bitmap, int32_t type, int32_t conventional, int32_t mapped, uint32_t flags) {
    return Z_SetBitmapMemoryInfo(&bitmap, type, 0, 0, conventional, mapped, mapped, flags);
}

TEST(Failures, OfNewBitmaps) {
    std::vector<Scenario> scenarios;
    const int32_t types[] = {MemoryConventional,
                             MemoryUser,
                             MemoryTiled,
                             MemoryNoTiled,
                             9,
                             MemoryDisk,
                             MemoryNoDisk,
                             MemoryCompressed | MemoryConventional};
    for (const int32_t type : types) {
        for (const int32_t tileSize : {0, 16}) {
            const auto prepare = [=](Ground& g) {
                Thresholds::Tiles(tileSize, 3, 2);
                g.UserData.assign(8 * 12, 1);
            };
            const auto call = [=](Ground& g) {
                void* data = type == MemoryUser ? g.UserData.data() : nullptr;
                return Z_CreateBitmap(&g.Made, type, 7, 12, 8, 0, nullptr, 1, data, g.UserData.size());
            };
            const std::string name =
                "type " + std::to_string(type) + ", tiles of " + std::to_string(tileSize);
            scenarios.push_back({name, {Memory, Write}, prepare, call, Kept::Nothing, ExpectNoStorage});
        }
    }
    RunAll(scenarios);
}

TEST(Failures, OfWorkOnOneBitmap) {
    std::vector<Scenario> scenarios;
    for (const Storage& storage : AllStorages()) {
        const auto add = [&](const char* name, std::vector<ReturnCode> failures, auto call,
                             Kept kept = Kept::Everything) {
            scenarios.push_back({storage.Name + ": " + name, failures, In(storage), call, kept});
        };
        if (storage.Type != MemoryUser)
            for (const int32_t height : {7, 12, 5, 0})
                add(
                    "height", {Memory, DiskSpace},
                    [=](Ground& g) { return Z_ChangeBitmapHeight(&g.Subject, height); },
                    height > 6 ? Kept::Rows : Kept::SomeRows);
        const auto move = [&](const char* name, int32_t type, int32_t conventional, uint32_t flags) {
            const auto call = [=](Ground& g) {
                const Thresholds restore;
                if (type == MemoryNoDisk) // into tiles without a view
                    Z_SetMemoryThresholds(0, 1, 16, 0, 0, 31);
                return Tune(g.Subject, type, conventional, 2, flags);
            };
            const Kept kept = flags == Z_MEMORY_INFO_TYPE ? Kept::Everything : Kept::Rows;
            // The other sources show what becomes of a file that fails while rows go there.
            const bool fromTiles = type == MemoryDisk && storage.Type == MemoryTiled;
            add(name, {Memory, DiskSpace, Seek, Read, Write}, call, kept);
            scenarios.back().Check = ExpectPixels;
            if (fromTiles) scenarios.back().Kinds = fault::AllMemory | fault::FileOpen;
        };
        move("into a file", MemoryDisk, 0, Z_MEMORY_INFO_TYPE);
        move("into memory", MemoryConventional, 0, Z_MEMORY_INFO_TYPE);
        if (storage.Type == MemoryDisk) move("into tiles", MemoryNoDisk, 0, Z_MEMORY_INFO_TYPE);
        if (storage.Type == MemoryTiled)
            for (const int32_t conventional : {0, 1, 99})
                move("tuning", MemoryTiled, conventional, 56);
        add("copy", {Memory, Write}, [](Ground& g) { return Z_CopyBitmap(&g.Made, &g.Subject); });
        add("copy into a file", {Memory, Write},
            [](Ground& g) { return Z_CopyBitmap2(&g.Made, &g.Subject, MemoryDisk); });
        add("rectangle", {Memory, Write},
            [](Ground& g) { return Z_CopyBitmapRect(&g.Made, &g.Subject, -1, 2, 7, 6); });
        add("rectangle into a file", {Memory, Write},
            [](Ground& g) { return Z_CopyBitmapRect2(nullptr, &g.Subject, -1, 2, 7, 6, MemoryDisk); });
        if (storage.Type == MemoryDisk || storage.Type == MemoryTiled)
            add("pixel bytes", OfMemory, [](Ground& g) {
                uint8_t bytes[1] = {};
                const ReturnCode read = Z_GetPixelData(&g.Subject, bytes, 3, 2, 1);
                return read == code::Success ? Z_PutPixelData(&g.Subject, bytes, 3, 2, 1) : read;
            });
        add("cut", {Memory, Write}, [](Ground& g) { return Z_TrimBitmap(&g.Subject, 1, 1, 5, 4); });
        add("fill", OfMemory, [](Ground& g) { return Z_FillBitmap(&g.Subject, 0x010000EE); });
        add("clear", OfMemory, [](Ground& g) { return Z_ClearBitmap(&g.Subject); });
        add("duplicate without data", OfMemory, [](Ground& g) {
            const ReturnCode result = Z_DupBitmapNewDim(&g.Made, &g.Subject, 3, 3, 8, Z_DUP_PALETTE);
            Z_FreeDuplicateBitmap(&g.Made, Z_DUP_PALETTE);
            return result;
        });
        add("duplicate of another depth", {Memory, Write}, [](Ground& g) {
            const ReturnCode result = Z_DupBitmapNewDim(&g.Made, &g.Subject, 3, 3, 24, Z_DUP_DATA);
            if (result == code::Success) Z_FreeDuplicateBitmap(&g.Made, Z_DUP_DATA);
            return result;
        });
        add("copied pixels", OfMemory, [](Ground& g) {
            BitmapHandle to = {};
            Z_InitBitmap(&to, 7, 6, 8);
            ReturnCode result = Z_AllocateBitmap(&to, MemoryConventional);
            if (result == code::Success) result = Z_CopyBitmapData(&to, &g.Subject);
            Z_FreeBitmap(&to);
            return result;
        });
        if (storage.Type == GlobalType) continue; // rows of a locked bitmap alone can be reached
        add("read", {Seek, Read}, [](Ground& g) {
            const ReturnCode count = Z_GetBitmapRowCol(&g.Subject, g.Row.data(), 5, 2, 6);
            return count == 6 ? code::Success : count;
        });
        add("write", {Seek, Write}, [](Ground& g) {
            const ReturnCode count = Z_PutBitmapRow(&g.Subject, g.Row.data(), 4, 8);
            return count == 8 ? code::Success : count;
        });
        add("write of a segment", {Seek, Read, Write}, [](Ground& g) {
            const uint32_t segment[] = {2, 5};
            return Z_PutBitmapRowSegments(&g.Subject, g.Row.data(), 5, 0, segment, 2, 0);
        });
    }
    RunAll(scenarios);
}

// Rows of 65536 pixels by turns take half of the heap's step each, so that it has to grow for the third.
TEST(Failures, OfRuns) {
    const auto runs = [](int32_t type, int32_t rows) {
        return [=](Ground& g) {
            Z_InitBitmap(&g.Subject, 65536, 6, 1);
            ASSERT_EQ(Z_AllocateBitmap(&g.Subject, type), 1);
            Z_CreateBitmapFixedPalette(&g.Subject);
            g.Row.assign(g.Subject.BytesPerLine, 0x55);
            for (int32_t row = 0; row < rows; ++row)
                ASSERT_EQ(Z_PutBitmapRow(&g.Subject, g.Row.data(), row, 8192), 8192);
            g.UserData.assign(4 + 2 * 65537, 0);
            Z_CompressRow(reinterpret_cast<uint16_t*>(g.UserData.data()), g.Row.data(), 0, 65536);
        };
    };
    const auto list = [](Ground& g) { return reinterpret_cast<uint16_t*>(g.UserData.data()); };
    std::vector<Scenario> scenarios;
    const auto add = [&](const char* name, auto call, Kept kept = Kept::Everything) {
        scenarios.push_back(
            {name, OfMemory, runs(MemoryCompressed, 1), call, kept, [](Ground& g, ReturnCode) {
                 if (HasFlag(g.Subject, flag::Compressed)) ExpectConsistent(g.Subject);
             }});
    };
    add(
        "mirrored row", [](Ground& g) { return Found(storage::MirrorRow(g.Subject, 0)); }, Kept::Nothing);
    add("whole row", [](Ground& g) {
        const ReturnCode count = Z_PutBitmapRow(&g.Subject, g.Row.data(), 1, 8192);
        return count == 8192 ? code::Success : count;
    });
    scenarios.push_back(scenarios.back()); // into the place of a short row, in a heap without room
    scenarios.back().Prepare = [=](Ground& g) {
        runs(MemoryCompressed, 1)(g);
        const Bytes ink(8192, 0xFF);
        ASSERT_EQ(Z_PutBitmapRow(&g.Subject, ink.data(), 1, 8192), 8192);
        ASSERT_EQ(Z_TrimBitmapHeap(&g.Subject), 1);
    };
    add("part of a row", [](Ground& g) {
        const ReturnCode count = Z_PutBitmapRowCol(&g.Subject, g.Row.data(), 3, 800, 8000);
        return count == 8000 ? code::Success : count;
    });
    add("segments", [](Ground& g) {
        const uint32_t segments[] = {0, 100, 200, 65536};
        return Z_PutBitmapRowSegments(&g.Subject, g.Row.data(), 3, 0, segments, 4, 0);
    });
    add("list", [=](Ground& g) { return Z_PutBitmapRowCompressed(&g.Subject, nullptr, list(g), 2, 1); });
    add("part of a list",
        [=](Ground& g) { return Z_PutBitmapRowColCompressed(&g.Subject, nullptr, list(g), 0, 0, 65536); });
    for (const int32_t height : {7, 5, 0})
        add(
            "height", [=](Ground& g) { return Z_ChangeBitmapHeight(&g.Subject, height); },
            height > 6 ? Kept::Everything : Kept::SomeRows);
    add("copy", [](Ground& g) {
        Z_FreeBitmap(&g.Made);
        return Z_CopyBitmap(&g.Made, &g.Subject);
    });
    add("into plain storage", [](Ground& g) { return Z_ChangeBitmapCompression(&g.Subject, COMP_NONE); });
    add("growth", [](Ground& g) { return Found(Z_GrowBitmapHeap(&g.Subject, 500000) == 1); });
    for (const int32_t type : {int32_t{MemoryConventional}, int32_t{MemoryDisk}}) {
        const auto plain = [&](const char* name, std::vector<ReturnCode> failures, auto call) {
            scenarios.push_back({name, failures, runs(type, 4), call});
        };
        plain("into runs", OfReading, [](Ground& g) { return Z_ToggleBitmapCompression(&g.Subject); });
        plain("list from a plain bitmap", OfReading,
              [=](Ground& g) { return Z_GetBitmapRowCompressed(&g.Subject, nullptr, list(g), 3, 1); });
        plain("list into a plain bitmap", {Memory, Seek, Write},
              [=](Ground& g) { return Z_PutBitmapRowCompressed(&g.Subject, nullptr, list(g), 3, 1); });
        plain("part of a list into a plain bitmap", OfFiles, [=](Ground& g) {
            return Z_PutBitmapRowColCompressed(&g.Subject, nullptr, list(g), 3, 0, 65536);
        });
    }
    RunAll(scenarios);
}

TEST(Failures, OfLists) {
    const auto list = [](Ground& g) {
        In(Plain)(g);
        ASSERT_EQ(Z_CreateBitmapList(&g.List), 1);
        for (int32_t i = 0; i < 3; ++i) {
            BitmapHandle item = {};
            ASSERT_EQ(Z_CopyBitmap(&item, &g.Subject), 1);
            ASSERT_EQ(Z_InsertBitmapListItem(g.List, 0, &item), 1);
        }
        ASSERT_EQ(Z_CopyBitmap(&g.Made, &g.Subject), 1);
    };
    std::vector<Scenario> scenarios = {
        {"new list", OfMemory, Nothing, [](Ground& g) { return Z_CreateBitmapList(&g.List); }}};
    // What the list of three items has after success; it keeps three when the call fails.
    const auto add = [&](const char* name, uint32_t items, auto call) {
        const auto check = [=](Ground& g, ReturnCode result) {
            uint32_t count = 99;
            EXPECT_EQ(Z_GetBitmapListCount(g.List, &count), 1);
            EXPECT_EQ(count, result == code::Success ? items : 3u);
            EXPECT_TRUE(result == code::Success || g.NewList == nullptr);
            BitmapHandle item;
            for (uint32_t i = 0; i < count; ++i) {
                ASSERT_EQ(Z_GetBitmapListItem(g.List, i, &item), 1);
                EXPECT_EQ(Rows(item), Rows(g.Subject));
            }
        };
        scenarios.push_back({name, OfMemory, list, call, Kept::Everything, check});
    };
    add("insert", 4, [](Ground& g) {
        const ReturnCode result = Z_InsertBitmapListItem(g.List, 1, &g.Made);
        if (result == code::Success) Z_InitBitmap(&g.Made, 0, 0, 0);
        return result;
    });
    add("remove", 2, [](Ground& g) {
        Z_FreeBitmap(&g.Made);
        return Z_RemoveBitmapListItem(g.List, 1, &g.Made);
    });
    add("copy", 3, [](Ground& g) { return Z_CopyBitmapListItems(&g.NewList, g.List, 0, 9); });
    add("move", 1, [](Ground& g) { return Z_MoveBitmapListItems(&g.NewList, g.List, 0, 2); });
    RunAll(scenarios);
}

TEST(Failures, OfPalettes) {
    static const RGBQUAD colours[256] = {{1, 2, 3, 0}, {200, 100, 50, 4}};
    std::vector<Scenario> scenarios;
    for (const bool block : {false, true}) {
        const auto add = [&](const char* name, std::vector<ReturnCode> failures, auto call,
                             Kept kept = Kept::Everything) {
            const auto prepare = [=](Ground& g) {
                In(Plain, block)(g);
                g.Palette = Z_CreateFixedPalette(4);
            };
            scenarios.push_back(
                {std::string(name) + (block ? ", block" : ""), failures, prepare, call, kept});
        };
        // A bitmap that gets a palette is not asked to free an older one.
        const auto fresh = [&](const char* name, std::vector<ReturnCode> failures, auto call) {
            const auto prepare = [=](Ground& g) {
                Record(g);
                if (block) g.Subject.Flags |= flag::PaletteIsBlock;
                g.Made.Palette = Z_CreateFixedPalette(3);
                g.Made.ColorsUsed = 8;
                if (block) {
                    platform::DeleteObject(g.Made.Palette);
                    g.Made.Flags |= flag::PaletteIsBlock;
                    Z_CreateBitmapFixedPalette(&g.Made);
                }
            };
            scenarios.push_back({std::string(name) + (block ? ", block" : ""), failures, prepare, call});
        };
        fresh("given", OfMemory, [](Ground& g) { return Z_CreateBitmapPalette(&g.Subject, colours, 2); });
        fresh("gray", OfMemory, [](Ground& g) { return Z_CreateBitmapGrayPalette(&g.Subject); });
        fresh("fixed", OfMemory, [](Ground& g) { return Z_CreateBitmapFixedPalette(&g.Subject); });
        fresh("copied", {0}, [](Ground& g) { return Z_CopyBitmapPalette(&g.Subject, &g.Made); });
        add("duplicate", OfMemory,
            [](Ground& g) { return Found((g.NewPalette = Z_DupBitmapPalette(&g.Subject)) != nullptr); });
        add("other form", OfMemory, [=](Ground& g) { return Z_SetPaletteType(&g.Subject, block ? 0 : 1); });
        add(
            "set", {}, [](Ground& g) { return Z_SetBitmapPalette(&g.Subject, g.Palette); }, Kept::Nothing);
        add(
            "put colours", {}, [](Ground& g) { return Z_PutBitmapColors(&g.Subject, 3, 2, colours); },
            Kept::Nothing);
        add("match", {0}, [](Ground& g) {
            return Z_GetNearestPaletteIndex(&g.Subject, 0x0A0A0A) == 10 ? code::Success : code::General;
        });
        add("translate", {0}, [](Ground& g) {
            return Z_TranslateBitmapColor(&g.Subject, nullptr, 0x141414) == 0x01000014u ? code::Success
                                                                                        : code::General;
        });
    }
    const auto makes = [&](const char* name, auto call) {
        const auto prepare = [](Ground& g) { g.Palette = Z_CreateFixedPalette(4); };
        scenarios.push_back(
            {name, OfMemory, prepare, [=](Ground& g) { return Found((g.NewPalette = call(g)) != nullptr); }});
    };
    makes("from colours", [](Ground&) { return Z_CreatePalette(colours, 256); });
    makes("gray ramp", [](Ground&) { return Z_CreateGrayPalette(0); });
    makes("fixed palette", [](Ground&) { return Z_CreateFixedPalette(8); });
    makes("duplicate of an object", [](Ground& g) { return Z_DupPalette(g.Palette); });
    scenarios.push_back({"match table", OfMemory, Nothing, [](Ground& g) {
                             return Found((g.Buffer = Z_CreateUserMatchTable(colours, 256)) != nullptr);
                         }});
    scenarios.push_back({"gray window", OfMemory, In(Plain), [](Ground& g) {
                             const ReturnCode result = Z_CopyGrayParams(&g.Made, &g.Subject);
                             EXPECT_EQ(g.Made.LevelLUTLength, result == code::Success ? 10u : 0u);
                             Z_FreeGrayParams(&g.Made); // nobody else does so for a record without storage
                             return result;
                         }});
    RunAll(scenarios);
}

// With and without a match table of the run's own, for each number of error rows.
TEST(Failures, OfDithering) {
    static const RGBQUAD colours[256] = {{1, 2, 3, 0}, {200, 100, 50, 4}};
    std::vector<Scenario> scenarios;
    for (const int32_t method : {DitherOrdered, DitherBurkes, DitherStucki, DitherStevensonArce}) {
        for (const RGBQUAD* palette : {static_cast<const RGBQUAD*>(nullptr), colours}) {
            const auto prepare = [=](Ground& g) {
                In(Plain)(g);
                g.Subject.DitheringMethod = method;
            };
            const auto call = [=](Ground& g) {
                const ReturnCode result = Z_StartDithering(&g.Subject, palette, 200);
                if (result != code::Success) return result;
                uint8_t indices[8];
                EXPECT_EQ(Z_DitherLine(&g.Subject, g.Row.data(), indices), 1);
                return Z_StopDithering(&g.Subject);
            };
            scenarios.push_back({"method " + std::to_string(method), OfMemory, prepare, call});
        }
    }
    RunAll(scenarios);
}

// Through the quantiser, and a dithering run of three rows of errors.
TEST(Failures, OfColourResolution) {
    constexpr uint32_t diffused = 0x050000;
    const auto disk = [](Ground& g) {
        Z_InitBitmap(&g.Subject, 40, 8, 24);
        ASSERT_EQ(Z_AllocateBitmap(&g.Subject, MemoryDisk), 1);
        Fill(g.Subject, PixelSeed);
    };
    const auto listed = [](Ground& g) {
        Z_CreateBitmapList(&g.List);
        for (const int32_t bits : {24, 8, 24}) {
            BitmapHandle item;
            Z_CreateBitmap(&item, MemoryConventional, 40, 4, bits, 1, nullptr, 2, nullptr, 0);
            Fill(item, PixelSeed);
            Z_InsertBitmapListItem(g.List, 9, &item);
        }
    };
    const auto resolve = [](BitmapHandle& source, BitmapHandle* target, int32_t bits, uint32_t flags) {
        return Z_ColorResBitmap(&source, target, bits, flags, nullptr, nullptr, 0, nullptr, 0);
    };
    const std::vector<ReturnCode> failures = {Memory, Write, Seek, Read};
    RunAll(
        {{"to another", failures, disk, [=](Ground& g) { return resolve(g.Subject, &g.Made, 4, diffused); }},
         {"to a stream", OfReading, disk, [=](Ground& g) { return resolve(g.Subject, nullptr, 8, 0x400); }},
         {"converted", failures, disk, [=](Ground& g) { return resolve(g.Subject, &g.Made, 48, 0); }},
         {"in place", failures, disk, [=](Ground& g) { return resolve(g.Subject, &g.Subject, 8, diffused); }},
         {"palette of a list", OfMemory, listed,
          [](Ground& g) {
              RGBQUAD palette[16];
              uint32_t count = 16, *table = nullptr;
              int32_t quantised;
              Z_Free(std::exchange(g.Buffer, nullptr));
              const ReturnCode result = Z_CreateBitmapListOptPal(g.List, palette, &count, &table, &quantised);
              g.Buffer = table;
              return result;
          }},
         {"list", OfMemory, listed,
          [](Ground& g) { return Z_ColorResBitmapList(g.List, 4, diffused, nullptr, nullptr, 0); }}});
}

TEST(Failures, OfBlocks) {
    std::vector<Scenario> scenarios;
    const auto resizes = [&](const char* name, void* Ground::*place, auto resize) {
        const auto prepare = [](Ground& g) {
            g.Block = Z_OsAllocInit(8, 1);
            g.Buffer = Z_Calloc(2, 4);
        };
        const auto call = [=](Ground& g) {
            void* result = resize(g.*place);
            if (result != nullptr) g.*place = result;
            return Found(result != nullptr);
        };
        const auto check = [=](Ground& g, ReturnCode) {
            EXPECT_EQ(0, std::memcmp(g.*place, "\0\0\0\0\0\0\0", 8));
        };
        scenarios.push_back({name, OfMemory, prepare, call, Kept::Nothing, check});
    };
    const auto makes = [&](const char* name, void* Ground::*place, auto make) {
        const auto call = [=](Ground& g) { return Found((g.*place = make()) != nullptr); };
        scenarios.push_back({name, OfMemory, Nothing, call});
    };
    makes("Z_Malloc", &Ground::Buffer, [] { return Z_Malloc(9); });
    makes("Z_Calloc", &Ground::Buffer, [] { return Z_Calloc(9, 9); });
    makes("Z_OsAlloc", &Ground::Block, [] { return Z_OsAlloc(9); });
    makes("Z_OsAllocInit", &Ground::Block, [] { return Z_OsAllocInit(9, 1); });
    resizes("Z_Realloc", &Ground::Buffer, [](void* old) { return Z_Realloc(old, 99); });
    resizes("Z_OsReAlloc", &Ground::Block, [](void* old) { return Z_OsReAlloc(old, 99); });
    resizes("Z_OsReAllocInit", &Ground::Block, [](void* old) { return Z_OsReAllocInit(old, 9999); });
    RunAll(scenarios);
}

TEST(Failures, OfFiles) {
    const auto nameIn = [](Ground& g) { return reinterpret_cast<char*>(g.Row.data()); };
    const auto file = [=](Ground& g) {
        g.Row.assign(300, 0);
        ASSERT_EQ(Z_OsGetTempName(nameIn(g)), 0);
        g.File = Z_OsCreat(nameIn(g), Z_CREATE_DELETE_ON_CLOSE);
        ASSERT_EQ(Z_OsWrite(g.File, "abcd", 4, 0), 4);
    };
    const auto closed = [=](Ground& g) {
        file(g);
        Z_OsClose(g.File, 0);
        Z_OsClose(Z_OsCreat(nameIn(g), 0), 0);
        g.File = -1;
    };
    std::vector<Scenario> scenarios;
    const auto add = [&](const char* name, auto prepare, auto call) {
        scenarios.push_back({name, {-1}, prepare, call});
    };
    const auto noName = [](Ground& g) { g.Row.assign(300, 1); };
    add("Z_OsGetTempName", noName, [=](Ground& g) {
        EXPECT_EQ(Z_OsGetTempName(nameIn(g)), 0);
        if (*nameIn(g) == '\0') return ReturnCode{-1};
        EXPECT_EQ(Z_OsDelete(nameIn(g)), 0);
        return code::Success;
    });
    add("Z_OsWrite", file, [](Ground& g) { return Z_OsWrite(g.File, "e", 1, 0); });
    add("Z_OsRead", file, [](Ground& g) {
        char letter = 0;
        if (Z_OsSeek(g.File, 2, 0, 0) != 2) return ReturnCode{-1};
        const ReturnCode result = Z_OsRead(g.File, &letter, 1, 0);
        EXPECT_TRUE(result != 1 || letter == 'c');
        return result;
    });
    add("end of a file", file,
        [](Ground& g) { return Z_OsWrite(g.File, nullptr, 0, 0) == 0 ? code::Success : ReturnCode{-1}; });
    add("Z_OsOpen", closed, [=](Ground& g) {
        const intptr_t opened = Z_OsOpen(nameIn(g), Z_OPEN_READ_WRITE, Z_SHARE_NONE, 0);
        if (opened == -1) return ReturnCode{-1};
        EXPECT_EQ(Z_OsClose(opened, 0), 0);
        EXPECT_EQ(Z_OsDelete(nameIn(g)), 0);
        return code::Success;
    });
    RunAll(scenarios);
}

// A thread whose record cannot be made gets answers all the same, and the next call tries again.
TEST(Failures, OfThreads) {
    const auto thread = [](auto work) {
        return [=](Ground& g) {
            ReturnCode result = 0;
            std::thread([&] { result = work(g); }).join();
            return result;
        };
    };
    const auto palette = [](Ground& g) {
        g.Row.resize(3 * 4096);
        for (size_t i = 0; i < g.Row.size(); ++i)
            g.Row[i] = static_cast<uint8_t>(i * i >> 5 | 3);
    };
    RunAll({
        {"bitmap", {Memory, Write}, Nothing, thread([](Ground& g) {
             return Z_CreateBitmap(&g.Made, MemoryDisk, 7, 12, 24, 0, nullptr, 1, nullptr, 0);
         })},
        // Without memory for its tables the search takes longer and finds the same.
        {"colours to a palette",
         {},
         palette,
         thread([](Ground& g) {
             const RGBQUAD* fixed = Z_IntGetFixedPalette(8);
             return Z_ConvertBuffer(g.Row.data(), 4096, 24, 8, Z_ORDER_BGR, Z_ORDER_RGB, nullptr, fixed);
         }),
         Kept::Nothing,
         [=](Ground& g, ReturnCode) {
             Ground source;
             palette(source);
             for (size_t i = 0; i < 4096; ++i) {
                 const uint8_t* pixel = source.Row.data() + 3 * i;
                 ASSERT_EQ(g.Row[i],
                           Z_FindPaletteIndex(Z_IntGetFixedPalette(8), 256, pixel[2], pixel[1], pixel[0]));
             }
         }},
    });
}

#ifndef _WIN32
TEST(Failures, OfTheDisplay) {
    RunAll({{"surface and its palette", OfMemory, Nothing, [](Ground& g) {
                 uint8_t pixels[4] = {};
                 const SurfaceDescription description = {
                     sizeof description, 4, 1, 8, 4, 1, pixels, nullptr, 0, 20};
                 HDC screen = nullptr;
                 const ReturnCode result = Z_CreateSurface(&description, &screen);
                 if (result != code::Success) return result;
                 EXPECT_EQ(Z_SetScreenSurface(screen), 1);
                 g.NewPalette = Z_CreateSystemPalette();
                 EXPECT_EQ(Z_DeleteSurface(screen), 1);
                 return Found(g.NewPalette != nullptr);
             }}});
}
#endif

} // namespace
} // namespace zkr::test
