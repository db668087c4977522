// The capability table.
#include "zkr13n/locks.h"

#include <gtest/gtest.h>

namespace {

TEST(Locks, TheMaskTheTableAndTheQuestionAgree) {
    EXPECT_EQ(Z_IsSupportLocked(27), 0) << "at the start";
    for (uint32_t mask : {0x80000001u, 0x08000040u, 0xFFFFFFFFu, 0u}) {
        Z_SetSupportLocks(mask);
        const uint8_t* table = Z_GetSupportLocks();
        for (uint32_t capability = 0; capability < 32; ++capability) {
            EXPECT_EQ(table[capability], mask >> capability & 1);
            EXPECT_EQ(Z_IsSupportLocked(capability), static_cast<int32_t>(mask >> capability & 1));
        }
    }
}

TEST(Locks, AnyKeyButAnEmptyOneUnlocks) {
    Z_SetSupportLocks(~0u);
    EXPECT_EQ(Z_UnlockSupport(27, ""), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_UnlockSupport(27, nullptr), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_UnlockSupport(32, "key"), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_UnlockSupport(~0u, "key"), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_IsSupportLocked(27), 1);
    EXPECT_EQ(Z_UnlockSupport(27, "k"), Z_SUCCESS);
    EXPECT_EQ(Z_UnlockSupport(31, "key"), Z_SUCCESS);
    for (uint32_t capability = 0; capability < 32; ++capability)
        EXPECT_EQ(Z_IsSupportLocked(capability), capability != 27 && capability != 31) << capability;
    EXPECT_EQ(Z_UnlockSupport(27, "again"), Z_SUCCESS);
    EXPECT_EQ(Z_IntShutdown(), Z_SUCCESS);
    EXPECT_EQ(Z_IsSupportLocked(0), 1) << "a shutdown must not unlock anything";
    EXPECT_EQ(Z_IsSupportLocked(32), 1);
    Z_SetSupportLocks(0);
}

} // namespace
