// Files as every system has to give them: sharing, positions beyond 4 GiB, deletion on close, full disks. How
// the library's own file functions use them is tested with those.
#include "platform/files.h"
#include "platform/memory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace zkr {
namespace {

using namespace platform;

constexpr DWORD ReadWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD ShareBoth = FILE_SHARE_READ | FILE_SHARE_WRITE;

std::string FreshName() {
    char folder[MAX_PATH];
    char name[MAX_PATH];
    EXPECT_NE(GetTempPathA(MAX_PATH, folder), 0u);
    EXPECT_NE(GetTempFileNameA(folder, "ZT", 0, name), 0u);
    return name;
}

HANDLE Open(const std::string& name, DWORD access, DWORD share, DWORD disposition = OPEN_EXISTING,
            DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    return CreateFileA(name.c_str(), access, share, nullptr, disposition, attributes, nullptr);
}

HANDLE Temporary() {
    return Open(FreshName(), ReadWrite, 0, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
}

bool Write(HANDLE file, const std::string& text) {
    DWORD done = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr) != FALSE &&
           done == text.size();
}

std::string Read(HANDLE file, size_t count) {
    std::string text(count, '?');
    DWORD got = 0;
    EXPECT_NE(ReadFile(file, text.data(), static_cast<DWORD>(count), &got, nullptr), FALSE);
    return text.substr(0, got);
}

int64_t Seek(HANDLE file, int64_t distance, DWORD origin) {
    LARGE_INTEGER way, position;
    way.QuadPart = distance;
    return SetFilePointerEx(file, way, &position, origin) != FALSE ? position.QuadPart : -1;
}

TEST(Files, DispositionsTellNewFromExisting) {
    const std::string name = FreshName();
    EXPECT_EQ(Open(name, ReadWrite, 0, CREATE_NEW), INVALID_HANDLE_VALUE);
    DeleteFileA(name.c_str());
    HANDLE file = Open(name, ReadWrite, 0, OPEN_ALWAYS);
    EXPECT_TRUE(Write(file, "kept"));
    EXPECT_EQ(Open(name, ReadWrite, 0, CREATE_ALWAYS), INVALID_HANDLE_VALUE) << "not shared";
    CloseHandle(file);
    file = Open(name, ReadWrite, 0, OPEN_ALWAYS);
    EXPECT_EQ(Read(file, 9), "kept") << "a refused open truncates nothing";
    EXPECT_EQ(Seek(file, -5, FILE_CURRENT), -1) << "before the start";
    EXPECT_EQ(Seek(file, 0, FILE_CURRENT), 4) << "the position stays";
    CloseHandle(file);
    DeleteFileA(name.c_str());

    CloseHandle(Open(name, ReadWrite, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_READONLY));
    EXPECT_NE(GetFileAttributesA(name.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(DeleteFileA(name.c_str()), FALSE);
    std::filesystem::permissions(name, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    EXPECT_NE(DeleteFileA(name.c_str()), FALSE);
}

TEST(Files, ShareModesHoldBetweenOpens) {
    const struct {
        DWORD FirstAccess, FirstShare, SecondAccess, SecondShare;
        bool Allowed;
    } cases[] = {
        {ReadWrite, 0, GENERIC_READ, ShareBoth, false},
        {ReadWrite, ShareBoth, ReadWrite, ShareBoth, true},
        // The second would not bear the first's writing.
        {ReadWrite, ShareBoth, GENERIC_READ, FILE_SHARE_READ, false},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, ShareBoth, false},
        {GENERIC_WRITE, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_WRITE, true},
    };
    const std::string name = FreshName();
    for (const auto& c : cases) {
        HANDLE first = Open(name, c.FirstAccess, c.FirstShare);
        HANDLE second = Open(name, c.SecondAccess, c.SecondShare);
        EXPECT_EQ(second != INVALID_HANDLE_VALUE, c.Allowed) << &c - cases;
        if (second != INVALID_HANDLE_VALUE) CloseHandle(second);
        EXPECT_EQ(DeleteFileA(name.c_str()), FALSE) << "open without the right to delete";
        CloseHandle(first);
    }
    EXPECT_NE(DeleteFileA(name.c_str()), FALSE);
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
    EXPECT_EQ(Read(file, 9), "nd");
    high = -1; // the distance -1
    EXPECT_EQ(SetFilePointer(file, -1, &high, FILE_END), 0x40000002u);
    EXPECT_EQ(high, 1);
    CloseHandle(file);
}

TEST(Files, TemporaryNamesNeedAFolder) {
    char tiny[4], name[MAX_PATH];
    EXPECT_GT(GetTempPathA(2, tiny), 2u) << "tells the size needed";
    for (const std::string& folder : {std::string("no such folder"), std::string(300, 'x')})
        EXPECT_EQ(GetTempFileNameA(folder.c_str(), "ZT", 0, name), 0u);
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
    EXPECT_EQ(Open("/tmp", GENERIC_READ, ShareBoth), INVALID_HANDLE_VALUE) << "a folder is no file";
}

TEST(Files, TemporaryFilesLoseTheirNamesAtOnce) {
    const std::string name = FreshName();
    HANDLE file = Open(name, ReadWrite, ShareBoth, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_EQ(GetFileAttributesA(name.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(Write(file, "still usable"));
    CloseHandle(file);
}
#endif

} // namespace
} // namespace zkr
