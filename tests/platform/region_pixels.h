// Regions as grids of pixels, for tests that hold them against a slow model.
#pragma once

#include "platform/graphics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace zkr {

// How far from a shape's edge the system decides which pixels belong to it.
#ifdef _WIN32
inline constexpr double EdgeSlack = 1.5;
#else
inline constexpr double EdgeSlack = 0;
#endif

inline std::vector<RECT> RectsOf(HRGN region) {
    const platform::DWORD bytes = platform::GetRegionData(region, 0, nullptr);
    std::vector<char> data(std::max<size_t>(bytes, sizeof(platform::RGNDATAHEADER)));
    auto* record = reinterpret_cast<platform::RGNDATA*>(data.data());
    EXPECT_NE(platform::GetRegionData(region, bytes, record), 0u);
    EXPECT_EQ(record->rdh.dwSize, 32u);
    EXPECT_EQ(record->rdh.iType, static_cast<platform::DWORD>(RDH_RECTANGLES));
    EXPECT_EQ(record->rdh.nRgnSize, record->rdh.nCount * sizeof(RECT));
    std::vector<RECT> rects(record->rdh.nCount);
    if (!rects.empty())
        std::memcpy(rects.data(), data.data() + record->rdh.dwSize, rects.size() * sizeof(RECT));
    return rects;
}

inline HRGN RegionOf(const std::vector<RECT>& rects) {
    std::vector<char> data(sizeof(platform::RGNDATAHEADER) + rects.size() * sizeof(RECT));
    auto* record = reinterpret_cast<platform::RGNDATA*>(data.data());
    record->rdh.dwSize = sizeof(platform::RGNDATAHEADER);
    record->rdh.iType = RDH_RECTANGLES;
    record->rdh.nCount = static_cast<platform::DWORD>(rects.size());
    record->rdh.nRgnSize = static_cast<platform::DWORD>(rects.size() * sizeof(RECT));
    RECT& bound = record->rdh.rcBound;
    bound = rects.empty() ? RECT{} : rects[0];
    for (const RECT& rect : rects) {
        bound = {std::min(bound.left, rect.left), std::min(bound.top, rect.top),
                 std::max(bound.right, rect.right), std::max(bound.bottom, rect.bottom)};
    }
    if (!rects.empty())
        std::memcpy(data.data() + sizeof(platform::RGNDATAHEADER), rects.data(), rects.size() * sizeof(RECT));
    return platform::ExtCreateRegion(nullptr, static_cast<platform::DWORD>(data.size()), record);
}

// Square [0, Side) x [0, Side).
struct Grid {
    static constexpr int Side = 48;
    std::array<bool, Side * Side> pixels{};

    bool& At(int x, int y) { return pixels[static_cast<size_t>(y * Side + x)]; }
    void Add(const RECT& rect) {
        for (int y = std::max<int>(rect.top, 0); y < std::min<int>(rect.bottom, Side); ++y) {
            for (int x = std::max<int>(rect.left, 0); x < std::min<int>(rect.right, Side); ++x)
                At(x, y) = true;
        }
    }
    bool operator==(const Grid&) const = default;
};

// The pixels of a region, whose rectangles must stand in bands and whose box must be tight.
inline Grid GridOf(HRGN region) {
    Grid grid;
    const std::vector<RECT> rects = RectsOf(region);
    RECT tight{};
    for (size_t i = 0; i < rects.size(); ++i) {
        const RECT& now = rects[i];
        EXPECT_TRUE(now.left < now.right && now.top < now.bottom);
        if (i == 0) tight = now;
        tight = {std::min(tight.left, now.left), tight.top, std::max(tight.right, now.right), now.bottom};
        if (i > 0) {
            const RECT& before = rects[i - 1];
            const bool sameBand =
                now.top == before.top && now.bottom == before.bottom && now.left >= before.right;
            EXPECT_TRUE(sameBand || now.top >= before.bottom);
        }
        grid.Add(now);
    }
    RECT box{};
    EXPECT_EQ(platform::GetRgnBox(region, &box), rects.empty()       ? NULLREGION
                                                 : rects.size() == 1 ? SIMPLEREGION
                                                                     : COMPLEXREGION);
    EXPECT_EQ(std::memcmp(&box, &tight, sizeof box), 0);
    return grid;
}

} // namespace zkr
