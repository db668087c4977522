// The file family on real files, and the settings that say where temporary ones go.
#include "core/files.h"
#include "zkr13n/files.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr int32_t Start = 0, Here = 1, End = 2;

class Files : public ::testing::Test {
  protected:
    void SetUp() override {
        fs::remove_all(folder_);
        fs::create_directory(folder_);
        ASSERT_EQ(Z_SetTempDirectory(folder_.string().c_str()), Z_SUCCESS);
    }
    void TearDown() override {
        for (const auto& entry : fs::directory_iterator(folder_))
            fs::permissions(entry, fs::perms::owner_write, fs::perm_options::add);
        fs::remove_all(folder_);
    }

    std::string Path(const char* name) const { return (folder_ / name).string(); }
    std::string MakeFile(const char* name, const std::string& content) const {
        const intptr_t file = Z_OsCreat(Path(name).c_str(), 0);
        EXPECT_EQ(Z_OsWrite(file, content.data(), static_cast<uint32_t>(content.size()), 0),
                  static_cast<int32_t>(content.size()));
        EXPECT_EQ(Z_OsClose(file, 0), 0);
        return Path(name);
    }

    const fs::path folder_ = fs::temp_directory_path() / "zkr13n files test";
};

TEST_F(Files, SeekFromThreeOrigins) {
    const intptr_t file = Z_OsOpen(MakeFile("a", "0123456789").c_str(), Z_OPEN_READ_WRITE, 0, 0);
    const struct {
        intptr_t Offset;
        int32_t Origin;
        intptr_t Position;
    } seeks[] = {{7, Start, 7}, {-3, Here, 4}, {2, Here, 6},    {-1, End, 9},   {-10, 3, 0},
                 {-2, -1, 8},   {0, 1000, 10}, {-1, Start, -1}, {-11, End, -1}, {5, End, 15}};
    for (const auto& seek : seeks)
        EXPECT_EQ(Z_OsSeek(file, seek.Offset, seek.Origin, 0), seek.Position)
            << seek.Offset << " " << seek.Origin;
    Z_OsClose(file, 0);
}

TEST_F(Files, AWriteOfNothingSetsTheEnd) {
    const std::string path = MakeFile("a", "0123456789");
    const intptr_t file = Z_OsOpen(path.c_str(), Z_OPEN_READ_WRITE, 0, 0);
    Z_OsSeek(file, 4, Start, 0);
    EXPECT_EQ(Z_OsWrite(file, nullptr, 0, 0), 0);
    char buffer[16];
    EXPECT_EQ(Z_OsSeek(file, 1, Start, 0), 1);
    EXPECT_EQ(Z_OsRead(file, buffer, 16, 0), 3) << "a short read at the end";
    EXPECT_EQ(std::memcmp(buffer, "123", 3), 0);
    EXPECT_EQ(zkr::SetFileLength(file, 100), 0);
    EXPECT_EQ(Z_OsSeek(file, 0, Here, 0), 100);
    EXPECT_EQ(zkr::SetFileLength(file, 3), 0);
    EXPECT_EQ(zkr::SetFileLength(file, SIZE_MAX), -1);
    EXPECT_EQ(Z_OsClose(file, 0), 0);
    EXPECT_EQ(fs::file_size(path), 3u);
    EXPECT_EQ(Z_OsClose(file, 0), -1);
    EXPECT_EQ(zkr::SetFileLength(-1, 3), -1);
}

TEST_F(Files, TheFlagsSayWhatCanBeDoneAndWhatBecomesOfTheContent) {
    const struct {
        int32_t Flags;
        bool Reads, Writes;
        intmax_t SizeOfExisting, SizeOfMissing; // -1: cannot be opened
    } cases[] = {{Z_OPEN_READ, true, false, 5, -1},        {Z_OPEN_WRITE, false, true, 5, -1},
                 {Z_OPEN_READ_WRITE, true, true, 5, -1},   {3, true, true, 5, -1},
                 {Z_OPEN_WRITE | 256, false, true, 0, 0},  {Z_OPEN_READ_WRITE | 256, true, true, 0, 0},
                 {Z_OPEN_WRITE | 512, false, true, 0, -1}, {Z_OPEN_WRITE | 256 | 512, false, true, 0, 0}};
    for (const auto& row : cases) {
        for (bool exists : {true, false}) {
            const std::string path = exists ? MakeFile("a", "12345") : Path("b");
            const intmax_t size = exists ? row.SizeOfExisting : row.SizeOfMissing;
            const intptr_t file = Z_OsOpen(path.c_str(), row.Flags, 0, 0);
            EXPECT_EQ(file != -1, size >= 0) << row.Flags << exists;
            if (file == -1) continue;
            EXPECT_EQ(Z_OsSeek(file, 0, End, 0), size) << row.Flags << exists;
            char byte = 0;
            EXPECT_EQ(Z_OsWrite(file, "x", 1, 0), row.Writes ? 1 : -1) << row.Flags;
            Z_OsSeek(file, 0, Start, 0);
            EXPECT_EQ(Z_OsRead(file, &byte, 1, 0), !row.Reads ? -1 : size + row.Writes > 0) << row.Flags;
            Z_OsClose(file, 0);
            EXPECT_EQ(Z_OsDelete(path.c_str()), 0);
        }
    }
    EXPECT_EQ(Z_OsOpen(nullptr, 0, 0, 0), -1);
    EXPECT_EQ(Z_OsCreat(Path("no such folder/a").c_str(), 0), -1);
}

TEST_F(Files, ShareAsAsked) {
    const std::string path = MakeFile("a", "12345");
    const struct {
        int32_t Share;
        bool ReadsToo, WritesToo;
    } cases[] = {{0, false, false}, {128, false, false}, {256, true, false},
                 {384, true, true}, {64, false, false},  {384 + 64, true, true}};
    for (const auto& row : cases) {
        const intptr_t first = Z_OsOpen(path.c_str(), Z_OPEN_READ, row.Share, 0);
        ASSERT_NE(first, -1);
        const intptr_t reader = Z_OsOpen(path.c_str(), Z_OPEN_READ, Z_SHARE_READ_WRITE, 0);
        const intptr_t writer = Z_OsOpen(path.c_str(), Z_OPEN_WRITE, Z_SHARE_READ_WRITE, 0);
        EXPECT_EQ(reader != -1, row.ReadsToo) << row.Share;
        EXPECT_EQ(writer != -1, row.WritesToo) << row.Share;
        EXPECT_EQ(Z_OsDelete(path.c_str()), -1) << "open, and not shared for that";
        for (intptr_t file : {first, reader, writer})
            if (file != -1) Z_OsClose(file, 0);
    }
}

TEST_F(Files, AttributesOfNewFiles) {
    const struct {
        const char* Name;
        intptr_t File;
        int32_t Written;
        bool StaysWritable;
    } cases[] = {
        {"a", Z_OsCreat(Path("a").c_str(), Z_CREATE_READ_ONLY), -1, false},
        {"b", Z_OsOpen(Path("b").c_str(), Z_OPEN_READ | Z_OPEN_CREATE, 0, 0), -1, false},
        {"c", Z_OsCreat(Path("c").c_str(), Z_CREATE_HIDDEN | Z_CREATE_SYSTEM), 1, true},
    };
    for (const auto& row : cases) {
        ASSERT_NE(row.File, -1) << row.Name;
        EXPECT_EQ(Z_OsWrite(row.File, "x", 1, 0), row.Written) << row.Name;
        Z_OsClose(row.File, 0);
        const fs::perms permissions = fs::status(Path(row.Name)).permissions();
        EXPECT_EQ((permissions & fs::perms::owner_write) != fs::perms::none, row.StaysWritable) << row.Name;
    }
}

TEST_F(Files, TemporaryFilesGoWhenTheyAreClosed) {
    char name[260];
    ASSERT_EQ(Z_OsGetTempName(name), 0);
    const fs::path path = name;
    EXPECT_TRUE(fs::equivalent(path.parent_path(), folder_));
    EXPECT_EQ(path.filename().string().substr(0, 2), "ZD");
    EXPECT_TRUE(fs::exists(path));
    char other[260];
    ASSERT_EQ(Z_OsGetTempName(other), 0);
    EXPECT_STRNE(name, other);
    EXPECT_EQ(Z_OsDelete(other), 0);
    EXPECT_EQ(Z_OsDelete(other), -1);

    const intptr_t file = Z_OsCreat(name, Z_CREATE_DELETE_ON_CLOSE);
    ASSERT_NE(file, -1);
#ifndef _WIN32
    EXPECT_TRUE(fs::is_empty(folder_)) << "nameless at once, so that a crash leaves none";
#endif
    EXPECT_EQ(Z_OsWrite(file, "x", 1, 0), 1);
    Z_OsClose(file, 0);
    EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(Files, TheTempDirectoryMustBeADirectory) {
    const std::string file = MakeFile("a", "1");
    const std::string wanted = folder_.string();
    for (const std::string& bad : {file, Path("missing"), std::string(), std::string(260, 'x')})
        EXPECT_EQ(Z_SetTempDirectory(bad.c_str()), Z_ERROR_ARGUMENT) << bad;
    EXPECT_EQ(Z_SetTempDirectory(nullptr), Z_ERROR_ARGUMENT);
    char buffer[260];
    EXPECT_EQ(Z_GetTempDirectory(nullptr, 260), Z_ERROR_ARGUMENT);
    EXPECT_EQ(Z_GetTempDirectory(buffer, 260), Z_SUCCESS);
    EXPECT_EQ(buffer, wanted);

    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(Z_GetTempDirectory(buffer, 0), Z_SUCCESS);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(Z_GetTempDirectory(buffer, 5), Z_SUCCESS);
    EXPECT_EQ(buffer, wanted.substr(0, 4));
    EXPECT_EQ(buffer[5], '#');
}

} // namespace
