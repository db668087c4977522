// What files keep to when the system is short of something: disks, descriptors, names.
#include "platform/files.h"
#include "platform/memory.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <vector>

namespace zkr {
namespace {

using namespace platform;
namespace fs = std::filesystem;

class TemporaryFiles : public ::testing::Test {
  protected:
    void SetUp() override { fs::create_directory(folder_); }
    void TearDown() override {
        EXPECT_TRUE(fs::is_empty(folder_));
        fs::remove_all(folder_);
    }
    HANDLE Make() const { return CreateTemporaryFile(folder_.c_str(), "ZD"); }
    uint64_t FreeOnDisk() const {
        struct statvfs disk;
        return statvfs(folder_.c_str(), &disk) == 0 ? uint64_t{disk.f_bavail} * disk.f_frsize : 0;
    }

    const fs::path folder_ = fs::temp_directory_path() / ("zkr13n files " + std::to_string(getpid()));
};

bool Seek(HANDLE file, uint64_t position) {
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<int64_t>(position);
    return SetFilePointerEx(file, distance, nullptr, FILE_BEGIN) != FALSE;
}
bool WritesByteAt(HANDLE file, uint64_t position) {
    DWORD done = 0;
    return Seek(file, position) && WriteFile(file, "x", 1, &done, nullptr) != FALSE && done == 1;
}
bool Extends(HANDLE file, uint64_t length) {
    return Seek(file, length) && SetEndOfFile(file) != FALSE;
}

TEST_F(TemporaryFiles, AreNotExtendedBeyondTheirDisk) {
    constexpr uint64_t huge = uint64_t{1} << 46;
    const uint64_t room = FreeOnDisk();
    if (room == 0 || room > huge / 2) GTEST_SKIP() << "a disk of unknown size";
    const HANDLE first = Make(), second = Make();
    EXPECT_FALSE(WritesByteAt(first, huge));
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_FALSE(Extends(first, huge));
    EXPECT_EQ(CreateFileMappingA(first, nullptr, PAGE_READWRITE, huge >> 32, 0, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);

    const uint64_t most = room / 5 * 3;
    EXPECT_TRUE(WritesByteAt(first, most));
    EXPECT_FALSE(WritesByteAt(second, most)) << "what is promised to one is not there for another";
    EXPECT_TRUE(WritesByteAt(second, room / 10)) << "but the rest is";
    EXPECT_TRUE(Extends(first, 10));
    EXPECT_TRUE(Extends(second, most)) << "what is cut is free again";
    CloseHandle(second);
    EXPECT_TRUE(Extends(first, most));
    CloseHandle(first);
}

TEST_F(TemporaryFiles, LeaveAQuarterOfTheDescriptors) {
    constexpr size_t limit = 80;
    rlimit before;
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit lowered = {limit, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &lowered), 0);
    std::vector<HANDLE> files;
    while (files.size() < limit) {
        const HANDLE file = Make();
        if (file == INVALID_HANDLE_VALUE) break;
        files.push_back(file);
    }
    EXPECT_EQ(files.size(), limit / 4 * 3);
    EXPECT_EQ(GetLastError(), ERROR_TOO_MANY_OPEN_FILES);
    EXPECT_EQ(CreateFileMappingA(files[0], nullptr, PAGE_READWRITE, 0, 100, nullptr), nullptr);
    CloseHandle(files.back());
    files.pop_back();
    const HANDLE mapping = CreateFileMappingA(files[0], nullptr, PAGE_READWRITE, 0, 100, nullptr);
    EXPECT_NE(mapping, nullptr) << "a place that is free again";
    CloseHandle(mapping);
    for (const HANDLE file : files)
        CloseHandle(file);
    setrlimit(RLIMIT_NOFILE, &before);
}

TEST_F(TemporaryFiles, NeverHaveANameWhereTheFileSystemCanDoWithout) {
    const int tried = open(folder_.c_str(), O_TMPFILE | O_RDWR, 0600);
    if (tried < 0) GTEST_SKIP() << "it cannot";
    close(tried);
    const int watch = inotify_init1(IN_NONBLOCK);
    ASSERT_GE(inotify_add_watch(watch, folder_.c_str(), IN_CREATE | IN_MOVED_TO), 0);
    const HANDLE file = Make();
    EXPECT_TRUE(WritesByteAt(file, 100));
    CloseHandle(file);
    char events[512];
    EXPECT_LT(read(watch, events, sizeof events), 0);
    close(watch);
}

TEST(TemporaryFolder, IsNotTakenFromASettingThatIsTooLong) {
    const char* set = getenv("TMPDIR");
    const std::string before = set != nullptr ? set : "";
    const struct {
        size_t Length;
        bool Taken;
    } rows[] = {{100, true}, {258, true}, {259, false}, {260, false}, {5000, false}};
    for (const auto& row : rows) {
        const std::string folder = "/" + std::string(row.Length - 1, 'a');
        setenv("TMPDIR", folder.c_str(), 1);
        char buffer[MAX_PATH];
        const DWORD length = GetTempPathA(sizeof buffer, buffer);
        ASSERT_LT(length, sizeof buffer) << row.Length;
        EXPECT_EQ(std::string(buffer, length), row.Taken ? folder + "/" : "/tmp/");
    }
    if (set != nullptr) setenv("TMPDIR", before.c_str(), 1);
    if (set == nullptr) unsetenv("TMPDIR");
}

} // namespace
} // namespace zkr
