// What all functions share: messages, callbacks, the version record, and defaults that each thread has for
// itself.
#include "zkr13n.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <tuple>

namespace {

ReturnCode Z_CALL GoOn(int32_t, intptr_t) {
    return Z_SUCCESS;
}
ReturnCode Z_CALL GiveUp(int32_t, intptr_t) {
    return Z_ERROR_GENERAL;
}
void Z_CALL SubstituteFont() {}

TEST(Messages, AreSpelledAsTheFamilySpellsThem) {
    const struct {
        ReturnCode Code;
        const char* Text;
    } expected[] = {
        {0, "General failure"},
        {-1, "Not enough memory available"},
        {-3, "Not enough memory available"},
        {-13, "Invalid parmameter passed"},
        {-29, "Escape key pressed - or user aborted operation"},
        {-84, "TWAIN DS or DSM reported error, app shouldn't (no need for your app to report the error)"},
        {-127, "FlashPix Extension_failed"},
        {-295, "Not enough disk space"},
        {-356, "CMP filter is needed to use this function"},
        {-357, "FAX filter is needed to use this function"},
        {-518, "Group is not found "},
        {-725, "PDF - Invalid Document Structuring comments (Ps and EPS)"},
        {-804, "Extended grayscale support is required to use this function"},
        {-908, "Not allowed to delete the TIFF file"},
    };
    for (const auto& message : expected)
        EXPECT_STREQ(Z_GetErrorText(message.Code), message.Text);

    int messages = 0;
    for (ReturnCode code = 0; code >= -908; --code)
        messages += Z_GetErrorText(code) != nullptr;
    EXPECT_EQ(messages, 525);
    for (ReturnCode code : {1, INT_MAX, -20, -62, -899, -909, INT_MIN})
        EXPECT_EQ(Z_GetErrorText(code), nullptr) << code;
}

TEST(Callbacks, ThePairsAreKeptApartAndGiveBackTheirPredecessors) {
    EXPECT_EQ(Z_SetStatusCallBack(GoOn, 5), nullptr);
    EXPECT_EQ(Z_SetCopyStatusCallBack(GiveUp, -6), nullptr);
    EXPECT_EQ(Z_SetStatusCallBack(nullptr, 0), &GoOn);
    EXPECT_EQ(Z_SetCopyStatusCallBack(nullptr, 0), &GiveUp);

    ASSERT_EQ(Z_VecSetSubstituteFontCallback(SubstituteFont, 9), Z_SUCCESS);
    SubstituteFontCallback callback = nullptr;
    intptr_t userData = 1;
    EXPECT_EQ(Z_VecGetSubstituteFontCallback(nullptr, &userData), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_VecGetSubstituteFontCallback(&callback, nullptr), Z_ERROR_ARGUMENT);
    EXPECT_TRUE(callback == nullptr && userData == 1);
    EXPECT_EQ(Z_VecGetSubstituteFontCallback(&callback, &userData), Z_SUCCESS);
    EXPECT_TRUE(callback == &SubstituteFont && userData == 9);
    Z_VecSetSubstituteFontCallback(nullptr, 0);
}

TEST(Version, TheRecordIsPaddedWithZeros) {
    VersionRecord record;
    std::memset(&record, 0xCC, sizeof record);
    ASSERT_EQ(Z_VersionInfo(&record), Z_SUCCESS);
    unsigned char expected[104] = {};
    std::memcpy(expected, "ZIRCONKIT(r) DLL for Win32", 26);
    expected[60] = 2;
    expected[64] = 13;
    std::memcpy(expected + 72, "Dec 30 2002", 11);
    std::memcpy(expected + 88, "16:54:50", 8);
    EXPECT_EQ(std::memcmp(&record, expected, sizeof expected), 0);
    EXPECT_EQ(Z_VersionInfo(nullptr), Z_ERROR_ARGUMENT);
}

TEST(Version, TheLevelFollowsTheLocks) {
    constexpr uint32_t document = 1u << 0, medical = 1u << 6, medicalNet = 1u << 8;
    const struct {
        uint32_t Locked;
        int32_t Level;
    } expected[] = {{0, 2},
                    {document, 2},
                    {medicalNet, 2},
                    {medical | medicalNet, 0},
                    {document | medical | medicalNet, 1},
                    {~medical, 2},
                    {~0u, 1}};
    for (const auto& row : expected) {
        Z_SetSupportLocks(row.Locked);
        VersionRecord record;
        Z_VersionInfo(&record);
        EXPECT_EQ(record.ProductLevel, row.Level) << std::hex << row.Locked;
    }
    Z_SetSupportLocks(0);
}

struct Defaults {
    int32_t Dithering = Z_GetDefaultDithering();
    int32_t MemoryType = 0;
    int32_t Reserve = 0, MaxSize = 0, TileSize = 0, ConventionalTiles = 0, MappedTiles = 0;
    char Directory[260] = {};
    intptr_t UserData = -1, CopyUserData = -1;
    StatusCallback Status = Z_GetStatusCallBack(&UserData);
    StatusCallback CopyStatus = Z_GetCopyStatusCallBack(&CopyUserData);

    Defaults() {
        Z_GetDefaultMemoryType(&MemoryType);
        Z_GetMemoryThresholds(&Reserve, &MaxSize, &TileSize, &ConventionalTiles, &MappedTiles);
        Z_GetTempDirectory(Directory, sizeof Directory);
    }
};

void ExpectFresh(const Defaults& seen, const std::string& directory) {
    EXPECT_EQ(std::tuple(seen.Dithering, seen.MemoryType, seen.Reserve, seen.MaxSize, seen.TileSize,
                         seen.ConventionalTiles, seen.MappedTiles),
              std::tuple(7, 1, 0, 0x7FFFFFFF, 0, -100, 1));
    EXPECT_EQ(seen.Directory, directory);
    EXPECT_TRUE(seen.Status == nullptr && seen.CopyStatus == nullptr);
    EXPECT_TRUE(seen.UserData == 0 && seen.CopyUserData == 0);
}

void ChangeEverything() {
    Z_SetStatusCallBack(GoOn, 1);
    Z_SetCopyStatusCallBack(GiveUp, 2);
    Z_SetDefaultMemoryType(MemoryDisk);
    Z_SetMemoryThresholds(1, 2, 3, 4, 5, 31);
    Z_SetTempDirectory(".");
}

TEST(Threads, HaveDefaultsOfTheirOwnUntilTheirShutdown) {
    const std::string directory = Defaults().Directory;
    EXPECT_FALSE(directory.empty());
    ChangeEverything();
    std::thread([&] { // twice without settings, and once with some
        EXPECT_EQ(Z_IntShutdown(), Z_SUCCESS);
        EXPECT_EQ(Z_IntShutdown(), Z_SUCCESS);
        ExpectFresh(Defaults(), directory);
        Z_SetMemoryThresholds(9, 9, 9, 9, 9, 31);
        EXPECT_EQ(Z_IntShutdown(), Z_SUCCESS);
    })
        .join();
    const Defaults mine;
    EXPECT_EQ(mine.MemoryType, 128);
    EXPECT_EQ(mine.MappedTiles, 5) << "the settings of another thread went";
    EXPECT_STREQ(mine.Directory, ".");
    EXPECT_TRUE(mine.Status == GoOn && mine.CopyStatus == GiveUp);
    EXPECT_EQ(Z_IntShutdown(), Z_SUCCESS);
    EXPECT_EQ(Z_IntShutdown(), Z_SUCCESS);
    ExpectFresh(Defaults(), directory);
}

TEST(Threads, ManyComeAndGoAtOnce) {
    std::thread threads[8];
    for (int number = 0; number < 8; ++number)
        threads[number] = std::thread([number] {
            for (int round = 0; round < 200; ++round) {
                std::thread([=] {
                    Z_SetMemoryThresholds(number, round, 0, 0, 0, 3);
                    int32_t reserve = -1, size = -1;
                    Z_GetMemoryThresholds(&reserve, &size, nullptr, nullptr, nullptr);
                    EXPECT_EQ(reserve, number);
                    EXPECT_EQ(size, round);
                    if (round % 16 == number) Z_IntShutdown();
                }).join();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Tokens, EachThreadGoesOnInItsOwnText) {
    char text[] = ",,red;green,, blue";
    EXPECT_STREQ(Z_Strtok(text, ",;"), "red");
    std::thread([] {
        char other[] = "one two";
        EXPECT_EQ(Z_Strtok(nullptr, ","), nullptr);
        EXPECT_STREQ(Z_Strtok(other, " "), "one");
    }).join();
    EXPECT_STREQ(Z_Strtok(nullptr, ",;"), "green");
    EXPECT_STREQ(Z_Strtok(nullptr, " ,"), "blue");
    EXPECT_EQ(Z_Strtok(nullptr, ","), nullptr);
    EXPECT_EQ(Z_Strtok(nullptr, ","), nullptr);
}

} // namespace
