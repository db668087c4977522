// Combinations against a model of single pixels: all flags, depths, phases, clips, regions, views and storage classes.
#include "geometry/combine/combine_code.h"

#include "core/reports.h"
#include "geometry/combine/combine_model.h"
#include "zkr13n/color_resolution.h"
#include "zkr13n/copy.h"

namespace zkr::test {
namespace {

TEST(CombineFlags, AllWordsCompile) {
    namespace code = geometry::combine_code;
    for (uint32_t flags = 0; flags < 0x10000; ++flags)
        for (const bool bitonal : {false, true}) {
            const std::optional<Meaning> meaning = MeaningOf(flags, bitonal);
            ASSERT_EQ(geometry::AreCombineFlags(flags), meaning.has_value()) << flags;
            if (!meaning) continue;
            uint32_t expected = meaning->Operator ? static_cast<uint32_t>(*meaning->Operator) + 16
                                                  : meaning->Table | code::IsBoolean;
            if (meaning->NotSource) expected |= code::InvertsSource;
            if (meaning->NotTarget) expected |= code::InvertsTarget;
            if (meaning->NotResult) expected |= code::InvertsResult;
            if (meaning->ReadsSource) expected |= code::ReadsSource;
            if (meaning->ReadsTarget) expected |= code::ReadsTarget;
            ASSERT_EQ(geometry::CompileCombineFlags(flags, bitonal), expected) << flags << bitonal;
        }
    for (const uint32_t flags : {0x10000u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_FALSE(geometry::AreCombineFlags(flags));
}

std::vector<uint32_t> AllFlags() {
    std::vector<uint32_t> all;
    for (uint32_t flags = 0; flags < 0x10000; ++flags)
        if (MeaningOf(flags, false)) all.push_back(flags);
    return all;
}

using Random = std::mt19937;

int Below(Random& random, int limit) {
    return static_cast<int>(random() % static_cast<uint32_t>(limit));
}

// One of a depth's bitmaps, with pixels among which the borders of ranges are not rare.
struct Subject : Bitmap {
    Bytes Data;

    Subject(Random& random, int32_t bits, int32_t order, const Storage& storage, int32_t view)
        : Bitmap(1 + Below(random, Below(random, 4) == 0 ? 300 : 45), 1 + Below(random, 9), bits) {
        ViewPerspective = view;
        Order = order;
        Allocate(*this, storage, Data);
        Bytes row(BytesPerLine);
        for (int32_t y = 0; y < Height; ++y) {
            for (uint8_t& byte : row)
                byte = static_cast<uint8_t>(Below(random, 6) == 0 ? -Below(random, 2) : Below(random, 256));
            Z_PutBitmapRow(this, row.data(), y, BytesPerLine);
        }
        if (bits == 12 || (bits == 16 && order == 2)) {
            LowBit = Below(random, 3) == 0 ? -1 : Below(random, bits);
            HighBit = Below(random, 3) == 0 ? -1 : LowBit + Below(random, bits - std::max(LowBit, 0));
        }
    }
    void AddRegion(Random& random) {
        for (int i = 0; i < 3; ++i) {
            const int left = Below(random, Width), top = Below(random, Height);
            RECT part = {left, top, left + 1 + Below(random, 20), top + 1 + Below(random, 5)};
            Z_SetBitmapRgnRect(this, nullptr, &part, i == 0 ? Z_RGN_SET : Z_RGN_XOR);
        }
    }
};

void ExpectAsModelled(Random& random, BitmapHandle& target, BitmapHandle& source, uint32_t flags,
                      bool clips = true) {
    const int width = 1 + Below(random, std::max(target.Width, 20)), height = 1 + Below(random, 10),
              reach = clips ? 12 : 0;
    const auto place = [&](int limit) { return Below(random, std::max(limit, 1) + 2 * reach) - reach; };
    Places places;
    places.Target.left = place(target.Width), places.Target.top = place(target.Height);
    places.Source.left = place(source.Width), places.Source.top = place(source.Height);
    for (RECT* each : {&places.Target, &places.Source})
        each->right = each->left + width, each->bottom = each->top + height;
    const Picture expected = Combined(target, &source, places, flags);
    const Picture sourceBefore = Picture::Of(source);
    const void* const region = target.Region;
    ASSERT_EQ(Z_CombineBitmap(&target, places.Target.left, places.Target.top, width, height, &source,
                              places.Source.left, places.Source.top, flags),
              1);
    ASSERT_EQ(Picture::Of(target), expected)
        << target.BitsPerPixel << " bits, flags " << std::hex << flags << std::dec << ", views "
        << target.ViewPerspective << " and " << source.ViewPerspective << ", at " << places.Target.left << ','
        << places.Target.top << " from " << places.Source.left << ',' << places.Source.top << " of " << width
        << " x " << height;
    ASSERT_TRUE(&source == &target || Picture::Of(source) == sourceBefore);
    ASSERT_EQ(target.Region, region);
}

int32_t OrderFor(Random& random, int32_t bits) {
    return bits == 12 ? 2 : Below(random, bits == 16 ? 3 : 2);
}

TEST(Combine, AllFlagsAtAllDepths) {
    Random random(1);
    for (const int32_t bits : AllDepths)
        for (const uint32_t flags : AllFlags()) {
            const int32_t order = OrderFor(random, bits);
            const Storage memory = {"user", MemoryUser};
            Subject target(random, bits, order, memory, 0), source(random, bits, order, memory, 0);
            ASSERT_NO_FATAL_FAILURE(ExpectAsModelled(random, target, source, flags));
        }
}

TEST(Combine, ViewsRegionsAndStorages) {
    Random random(2);
    const std::vector<uint32_t> all = AllFlags();
    for (int round = 0; round < 4000; ++round) {
        const int32_t bits = AllDepths[Below(random, 14)], order = OrderFor(random, bits);
        const std::vector<Storage> storages = GeometryStorages(bits);
        const auto storage = [&] {
            return storages[static_cast<size_t>(Below(random, static_cast<int>(storages.size())))];
        };
        const int views = Below(random, 2) == 0 ? 3 : 8;
        Subject target(random, bits, order, storage(), AllViews[Below(random, views)]);
        Subject source(random, bits, order, storage(), AllViews[Below(random, views)]);
        if (Below(random, 2) == 0) target.AddRegion(random);
        if (Below(random, 2) == 0) source.AddRegion(random);
        const uint32_t flags = all[static_cast<size_t>(Below(random, static_cast<int>(all.size())))];
        ASSERT_NO_FATAL_FAILURE(ExpectAsModelled(random, target, source, flags)) << round;
    }
}

// One bitmap as both, through one record and through two, at all distances.
TEST(Combine, Overlaps) {
    Random random(3);
    for (const int32_t bits : AllDepths)
        for (const Storage& storage : GeometryStorages(bits))
            for (int round = 0; round < 12; ++round) {
                const uint32_t flags =
                    std::array<uint32_t, 4>{0x0220, 0x0200, 0x0300, 0x0001}[static_cast<size_t>(round % 4)];
                Subject bitmap(random, bits, OrderFor(random, bits), storage, AllViews[Below(random, 3)]);
                ASSERT_NO_FATAL_FAILURE(ExpectAsModelled(random, bitmap, bitmap, flags)) << storage.Name;
            }
    for (const int32_t distance : {-40, -33, -3, -1, 0, 1, 7, 32, 50}) {
        Bytes data(400 * 3);
        Bitmap whole(400, 1, 24), other(400, 1, 24);
        for (Bitmap* each : {&whole, &other}) {
            each->ViewPerspective = 0;
            Z_AllocateBitmap(each, MemoryUser);
            Z_SetBitmapDataPointer(each, data.data(), data.size());
        }
        Fill(whole, 9);
        Bytes expected = data;
        for (size_t i = 0; i < 300 * 3; ++i)
            expected[150 + i] = static_cast<uint8_t>(
                std::min(255, data[150 + i] + data[static_cast<size_t>(150 + distance * 3) + i]));
        ASSERT_EQ(Z_CombineBitmap(&whole, 50, 0, 300, 1, &other, 50 + distance, 0, COMBINE_OP_ADD), 1);
        ASSERT_EQ(data, expected) << distance;
    }
}

// All pairs of bytes, and words at the borders of rounding, in every operator on samples.
TEST(Combine, EveryPairOfSamples) {
    for (const int32_t bits : {8, 48}) {
        constexpr int32_t side = 256 * 3;
        Bitmap target(bits == 8 ? 256 : side / 3, 256, bits), source(target.Width, 256, bits);
        for (Bitmap* each : {&target, &source})
            Z_AllocateBitmap(each, MemoryConventional);
        std::mt19937 random(4);
        const auto sample = [&](int i) {
            const int borders[] = {0, 1, 2, 65535, 65534, 32767, 32768, 256, 255, 257};
            return bits == 8 ? i : i < 10 ? borders[i] : static_cast<int>(random() % 65536);
        };
        for (int y = 0; y < 256; ++y) {
            std::vector<uint16_t> words(static_cast<size_t>(target.Width) * 3), others = words;
            for (size_t i = 0; i < words.size(); ++i)
                words[i] = static_cast<uint16_t>(sample(static_cast<int>(i % 256))),
                others[i] = static_cast<uint16_t>(sample(y));
            Bytes narrow(words.begin(), words.end()), narrowOthers(others.begin(), others.end());
            Z_PutBitmapRow(&target, bits == 8 ? static_cast<void*>(narrow.data()) : words.data(), y,
                           target.BytesPerLine);
            Z_PutBitmapRow(&source, bits == 8 ? static_cast<void*>(narrowOthers.data()) : others.data(), y,
                           target.BytesPerLine);
        }
        for (uint32_t op = 3; op < 12; ++op) {
            Bitmap copy;
            ASSERT_EQ(Z_CopyBitmap(&copy, &target), 1);
            const RECT all = {0, 0, target.Width, 256};
            const Picture expected = Combined(copy, &source, {all, all}, op << 8);
            ASSERT_EQ(Z_CombineBitmap(&copy, 0, 0, target.Width, 256, &source, 0, 0, op << 8), 1);
            ASSERT_TRUE(Picture::Of(copy) == expected) << op;
        }
    }
}

TEST(Combine, RefusesAndReports) {
    Bitmap target(20, 10, 24), source(20, 10, 24), gray(20, 10, 16), other(20, 10, 16), none(20, 10, 24);
    for (Bitmap* each : {&target, &source, &gray, &other})
        Z_AllocateBitmap(each, MemoryConventional);
    gray.Order = Z_ORDER_GRAY;
    none.ViewPerspective = 5;
    Reports reports(Z_SetStatusCallBack);
    const auto combine = [&](BitmapHandle* to, BitmapHandle* from, uint32_t flags, int32_t width = 5) {
        reports.Seen.clear();
        return Z_CombineBitmap(to, 0, 0, width, 4, from, 0, 0, flags);
    };
    EXPECT_EQ(combine(nullptr, &source, 0), -13);
    EXPECT_EQ(combine(&none, &source, 0), -13);
    for (const uint32_t flags : {0x4u, 0x40u, 0xC00u, 0x4000u, 0x10000u})
        EXPECT_EQ(combine(&target, &source, flags), -13) << flags;
    for (BitmapHandle* from : {static_cast<Bitmap*>(nullptr), &none, &gray})
        EXPECT_EQ(combine(&target, from, 0, 0), -13);
    EXPECT_EQ(combine(&other, &gray, 0), -13);
    EXPECT_EQ(reports.Seen, std::vector<int32_t>());

    const std::vector<int32_t> nothing = {0, 100}, rows = {0, 25, 50, 75, 100};
    EXPECT_EQ(combine(&target, nullptr, COMBINE_SRC_ZERO | COMBINE_OP_OR), 1);
    EXPECT_EQ(reports.Seen, nothing);
    EXPECT_EQ(combine(&target, &none, COMBINE_RES_ONES), 1);
    EXPECT_EQ(reports.Seen, rows);
    for (const int32_t width : {0, -1, INT32_MIN}) {
        EXPECT_EQ(combine(&target, &source, 0, width), 1);
        EXPECT_EQ(reports.Seen, nothing);
    }
    source.ViewPerspective = 6;
    EXPECT_EQ(combine(&target, &source, 0), -1);
    source.ViewPerspective = 2;

    const Picture before = Picture::Of(target);
    for (size_t stop = 0; stop < 5; ++stop) {
        Reports stopping(Z_SetStatusCallBack, stop);
        EXPECT_EQ(Z_CombineBitmap(&target, 0, 0, 5, 4, &source, 0, 0, COMBINE_OP_XOR), Reports::Stopped);
        Z_CombineBitmap(&target, 0, 0, 0, 0, nullptr, 0, 0, COMBINE_RES_ZERO);
    }
}

// Corners and sizes beyond 32 bits.
TEST(Combine, FarAway) {
    for (const int32_t view : {0, 2, 4}) {
        Bitmap target(8, 8, 8), source(8, 8, 8);
        target.ViewPerspective = view;
        for (Bitmap* each : {&target, &source})
            Z_AllocateBitmap(each, MemoryConventional);
        Fill(source, 5);
        const Picture blank = Picture::Of(target);
        for (const int32_t edge : {INT32_MIN, INT32_MAX, INT32_MAX - 4})
            for (const int32_t size : {1, 100, INT32_MAX}) {
                ASSERT_EQ(Z_CombineBitmap(&target, edge, edge, size, size, &source, edge, edge, 0x220), 1);
                ASSERT_EQ(Z_CombineBitmap(&target, 0, 0, size, size, &source, edge,
                                          edge == INT32_MIN ? INT32_MAX : -edge, 0x220),
                          1);
                ASSERT_EQ(Picture::Of(target), blank);
            }
        ASSERT_EQ(Z_CombineBitmap(&target, -INT32_MAX + 5, 0, INT32_MAX, INT32_MAX, &source, -INT32_MAX + 5,
                                  0, 0x220),
                  1);
        EXPECT_NE(Picture::Of(target), blank);
        ASSERT_EQ(Z_CombineBitmap(&target, 0, 0, INT32_MAX, INT32_MAX, &source, 0, 0, 0x220), 1);
        EXPECT_EQ(Picture::Of(target).Seen(view), Picture::Of(source).Seen(2));
    }
}

} // namespace
} // namespace zkr::test
