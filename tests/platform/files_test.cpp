// Files as every system has to give them: positions beyond 4 GiB, deletion on close, full disks. What the
// library's own file functions show of them is tested with those.
#include "platform/files.h"
#include "platform/memory.h"

#include <gtest/gtest.h>

#include <string>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace zkr {
namespace {

using namespace platform;

std::string FreshName() {
    char folder[MAX_PATH];
    char name[MAX_PATH];
    EXPECT_NE(GetTempPathA(MAX_PATH, folder), 0u);
    EXPECT_NE(GetTempFileNameA(folder, "ZT", 0, name), 0u);
    return name;
}

HANDLE Temporary(const std::string& name = FreshName()) {
    return CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                       FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

bool Write(HANDLE file, const std::string& text) {
    DWORD done = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) != FALSE &&
           done == text.size();
}

int64_t Seek(HANDLE file, int64_t distance, DWORD origin) {
    LARGE_INTEGER way, position;
    way.QuadPart = distance;
    return SetFilePointerEx(file, way, &position, origin) != FALSE ? position.QuadPart : -1;
}

TEST(Files, PositionsBeyondFourGiBWork) {
    HANDLE file = Temporary();
    constexpr int64_t fiveGiB = int64_t{5} << 30;
    ASSERT_EQ(Seek(file, fiveGiB, FILE_BEGIN), fiveGiB);
    ASSERT_TRUE(Write(file, "end"));
    EXPECT_EQ(Seek(file, 0, FILE_END), fiveGiB + 3);

    LONG high = 1;
    EXPECT_EQ(SetFilePointer(file, 0x40000001, &high, FILE_BEGIN), 0x40000001u);
    EXPECT_EQ(high, 1);
    char text[9];
    DWORD count = 0;
    EXPECT_NE(ReadFile(file, text, sizeof text, &count, nullptr), FALSE);
    EXPECT_EQ(std::string(text, count), "nd");
    high = -1; // the distance -1
    EXPECT_EQ(SetFilePointer(file, -1, &high, FILE_END), 0x40000002u);
    EXPECT_EQ(high, 1);
    CloseHandle(file);
}

#ifndef _WIN32
TEST(Files, AFullDiskIsAFailureAndNoSignal) {
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 1000;
    HANDLE file = Temporary();
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_TRUE(Write(file, std::string(1000, 'x')));
    EXPECT_FALSE(Write(file, "y"));
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    Seek(file, 2000, FILE_BEGIN);
    EXPECT_EQ(SetEndOfFile(file), FALSE);
    EXPECT_EQ(CreateFileMappingA(file, nullptr, PAGE_READWRITE, 0, 4000, nullptr), nullptr);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_EQ(Seek(file, 0, FILE_END), 1000) << "what was written stays";
    CloseHandle(file);
}

TEST(Files, TemporaryFilesLoseTheirNamesAtOnce) {
    const std::string name = FreshName();
    HANDLE file = Temporary(name);
    EXPECT_EQ(GetFileAttributesA(name.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(Write(file, "still usable"));
    CloseHandle(file);
}
#endif

} // namespace
} // namespace zkr
