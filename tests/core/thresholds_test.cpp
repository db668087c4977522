// Memory type and thresholds: what is accepted, and that a bad value stops the setting just there.
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using Values = std::array<int32_t, 5>;

Values Thresholds() {
    Values values{};
    Z_GetMemoryThresholds(&values[0], &values[1], &values[2], &values[3], &values[4]);
    return values;
}

ReturnCode SetThresholds(const Values& values, uint32_t flags) {
    return Z_SetMemoryThresholds(values[0], values[1], values[2], values[3], values[4], flags);
}

TEST(MemoryType, OnlyTwoAreDefaults) {
    int32_t type = 0;
    for (int32_t good : {128, 1})
        EXPECT_EQ(Z_SetDefaultMemoryType(good), Z_SUCCESS);
    for (int32_t bad : {0, 2, 4, 8, 9, 129, 256, 512, 1024, -1})
        EXPECT_EQ(Z_SetDefaultMemoryType(bad), Z_ERROR_ARGUMENT) << bad;
    EXPECT_EQ(Z_GetDefaultMemoryType(&type), Z_SUCCESS);
    EXPECT_EQ(type, 1);
    EXPECT_EQ(Z_GetDefaultMemoryType(nullptr), Z_ERROR_ARGUMENT);
}

TEST(Thresholds, EachFlagSetsItsValue) {
    SetThresholds({1, 2, 3, 4, 5}, 31);
    for (size_t chosen = 0; chosen < 5; ++chosen) {
        EXPECT_EQ(SetThresholds({10, 20, 30, 40, 50}, 1u << chosen), Z_SUCCESS);
        Values expected = {1, 2, 3, 4, 5};
        expected[chosen] *= 10;
        EXPECT_EQ(Thresholds(), expected);
        SetThresholds({1, 2, 3, 4, 5}, 31);
    }
    EXPECT_EQ(SetThresholds({-999, -999, -999, -999, -999}, 0xFFFFFFE0u), Z_SUCCESS) << "values not chosen";
    EXPECT_EQ(Thresholds(), (Values{1, 2, 3, 4, 5}));
    int32_t only = 0;
    Z_GetMemoryThresholds(nullptr, nullptr, &only, nullptr, nullptr);
    EXPECT_EQ(only, 3);
}

TEST(Thresholds, ABadValueKeepsThoseBeforeIt) {
    constexpr Values limit = {-100, -100, 0, -100, -100};
    for (size_t bad = 0; bad < 5; ++bad) {
        SetThresholds({1, 2, 3, 4, 5}, 31);
        Values values = limit;
        --values[bad];
        EXPECT_EQ(SetThresholds(values, 31), Z_ERROR_ARGUMENT);
        Values expected = {1, 2, 3, 4, 5};
        for (size_t before = 0; before < bad; ++before)
            expected[before] = limit[before];
        EXPECT_EQ(Thresholds(), expected) << bad;
    }
    EXPECT_EQ(SetThresholds(limit, 31), Z_SUCCESS);
    EXPECT_EQ(Thresholds(), limit);
}

} // namespace
