// Files: making, sharing, positions beyond 4 GiB, deletion on close, mapped files, full disks.
#include "platform/files.h"
#include "platform/memory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#ifndef _WIN32
#include <csignal>
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

bool Exists(const std::string& name) {
    return GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES;
}

int64_t Seek(HANDLE file, int64_t distance, DWORD origin) {
    LARGE_INTEGER way, position;
    way.QuadPart = distance;
    return SetFilePointerEx(file, way, &position, origin) != FALSE ? position.QuadPart : -1;
}

TEST(Files, HoldWhatWasWrittenAndTellTheirEnd) {
    const std::string name = FreshName();
    HANDLE file = Open(name, ReadWrite, 0);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(Write(file, "raster"));
    EXPECT_EQ(Seek(file, -4, FILE_END), 2);
    EXPECT_EQ(Read(file, 100), "ster") << "a read stops at the end and succeeds";
    EXPECT_EQ(Read(file, 100), "");
    EXPECT_EQ(Seek(file, 3, FILE_BEGIN), 3);
    EXPECT_NE(SetEndOfFile(file), FALSE);
    EXPECT_EQ(Seek(file, 0, FILE_END), 3);
    EXPECT_EQ(Seek(file, -4, FILE_CURRENT), -1) << "before the start";
    EXPECT_EQ(Seek(file, 0, FILE_CURRENT), 3) << "the position stays";
    EXPECT_NE(CloseHandle(file), FALSE);

    file = Open(name, GENERIC_READ, 0);
    EXPECT_FALSE(Write(file, "x")) << "opened for reading";
    CloseHandle(file);
    CloseHandle(Open(name, GENERIC_READ, 0, CREATE_ALWAYS));
    file = Open(name, GENERIC_WRITE, 0);
    EXPECT_EQ(Seek(file, 0, FILE_END), 0) << "made anew, it is empty";
    CloseHandle(file);
    EXPECT_NE(DeleteFileA(name.c_str()), FALSE);
    EXPECT_FALSE(Exists(name));
}

TEST(Files, DispositionsTellNewFromExisting) {
    const std::string name = FreshName();
    EXPECT_EQ(Open(name, ReadWrite, 0, CREATE_NEW), INVALID_HANDLE_VALUE);
    DeleteFileA(name.c_str());
    EXPECT_EQ(Open(name, ReadWrite, 0, OPEN_EXISTING), INVALID_HANDLE_VALUE);
    EXPECT_EQ(Open(name, ReadWrite, 0, TRUNCATE_EXISTING), INVALID_HANDLE_VALUE);
    EXPECT_FALSE(Exists(name));
    HANDLE file = Open(name, ReadWrite, 0, OPEN_ALWAYS);
    EXPECT_TRUE(Write(file, "kept"));
    CloseHandle(file);
    file = Open(name, ReadWrite, 0, OPEN_ALWAYS);
    EXPECT_EQ(Read(file, 9), "kept");
    CloseHandle(file);
    file = Open(name, ReadWrite, 0, TRUNCATE_EXISTING);
    EXPECT_EQ(Read(file, 9), "");
    CloseHandle(file);
    DeleteFileA(name.c_str());
    EXPECT_EQ(DeleteFileA(name.c_str()), FALSE);
}

TEST(Files, ReadOnlyFilesResistWritingAndDeletion) {
    const std::string name = FreshName();
    DeleteFileA(name.c_str());
    CloseHandle(Open(name, ReadWrite, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_READONLY));
    EXPECT_NE(GetFileAttributesA(name.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
    EXPECT_EQ(DeleteFileA(name.c_str()), FALSE);
    std::filesystem::permissions(name, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    EXPECT_NE(DeleteFileA(name.c_str()), FALSE);
}

TEST(Files, ShareModesHoldBetweenOpens) {
    struct Case {
        DWORD firstAccess, firstShare, secondAccess, secondShare;
        bool allowed;
    };
    const Case cases[] = {
        {ReadWrite, 0, GENERIC_READ, ShareBoth, false},
        {ReadWrite, ShareBoth, ReadWrite, ShareBoth, true},
        {ReadWrite, ShareBoth, GENERIC_READ, FILE_SHARE_READ,
         false}, // the second would not bear the first's writing
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
        {GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, ShareBoth, false},
        {GENERIC_WRITE, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_WRITE, true},
    };
    const std::string name = FreshName();
    for (const Case& entry : cases) {
        HANDLE first = Open(name, entry.firstAccess, entry.firstShare);
        ASSERT_NE(first, INVALID_HANDLE_VALUE);
        HANDLE second = Open(name, entry.secondAccess, entry.secondShare);
        EXPECT_EQ(second != INVALID_HANDLE_VALUE, entry.allowed) << &entry - cases;
        if (second != INVALID_HANDLE_VALUE) CloseHandle(second);
        EXPECT_EQ(DeleteFileA(name.c_str()), FALSE) << "open without the right to delete";
        CloseHandle(first);
    }
    HANDLE file = Open(name, ReadWrite, 0);
    EXPECT_TRUE(Write(file, "untouched"));
    EXPECT_EQ(Open(name, ReadWrite, 0, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_EQ(Seek(file, 0, FILE_END), 9) << "a refused open does not truncate";
    CloseHandle(file);
    EXPECT_NE(DeleteFileA(name.c_str()), FALSE);
}

TEST(Files, DeleteOnCloseLeavesNothing) {
    const std::string name = FreshName();
    HANDLE file = Open(name, ReadWrite, ShareBoth, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
#ifndef _WIN32
    EXPECT_FALSE(Exists(name)) << "the name goes at once";
#endif
    EXPECT_TRUE(Write(file, "still usable"));
    Seek(file, 6, FILE_BEGIN);
    EXPECT_EQ(Read(file, 6), "usable");
    CloseHandle(file);
    EXPECT_FALSE(Exists(name));
}

TEST(Files, PositionsBeyondFourGiBWork) {
    const std::string name = FreshName();
    HANDLE file = Open(name, ReadWrite, 0, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
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
#ifndef _WIN32
    EXPECT_EQ(Seek(file, 10, FILE_BEGIN), 10);
    EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_END), INVALID_SET_FILE_POINTER) << "does not fit";
    EXPECT_NE(GetLastError(), static_cast<DWORD>(NO_ERROR));
#endif
    CloseHandle(file);
}

TEST(Files, MappedFilesAndFileCallsSeeTheSameBytes) {
    const std::string name = FreshName();
    HANDLE file = Open(name, ReadWrite, ShareBoth, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
    constexpr DWORD size = 3 << 16;
    Seek(file, size - 1, FILE_BEGIN);
    ASSERT_TRUE(Write(file, "!"));
    HANDLE mapping = CreateFileMappingA(file, nullptr, PAGE_READWRITE, 0, 0, nullptr);
    ASSERT_NE(mapping, nullptr);
    auto* view = static_cast<char*>(MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 1 << 16, 0));
    ASSERT_NE(view, nullptr);
    CloseHandle(mapping);
    EXPECT_EQ(view[(2 << 16) - 1], '!');
    std::memcpy(view, "store", 5);
    Seek(file, 1 << 16, FILE_BEGIN);
    EXPECT_EQ(Read(file, 5), "store");
    Seek(file, (1 << 16) + 10, FILE_BEGIN);
    EXPECT_TRUE(Write(file, "write"));
    EXPECT_EQ(std::memcmp(view + 10, "write", 5), 0);
    EXPECT_NE(UnmapViewOfFile(view), FALSE);
    CloseHandle(file);
}

TEST(Files, TemporaryNamesAreFreshAndBounded) {
    char folder[MAX_PATH];
    const DWORD length = GetTempPathA(MAX_PATH, folder);
    EXPECT_EQ(length, std::strlen(folder));
    EXPECT_TRUE(folder[length - 1] == '/' || folder[length - 1] == '\\');
    char tiny[4];
    EXPECT_GT(GetTempPathA(2, tiny), 2u) << "tells the size needed";
    const std::string first = FreshName(), second = FreshName();
    EXPECT_NE(first, second);
    EXPECT_TRUE(Exists(first) && Exists(second));
    EXPECT_EQ(first.rfind(std::string(folder) + "ZT", 0), 0u);
    DeleteFileA(first.c_str());
    DeleteFileA(second.c_str());

    char name[MAX_PATH];
    EXPECT_EQ(GetTempFileNameA((std::string(folder) + "no such folder").c_str(), "ZT", 0, name), 0u);
    EXPECT_EQ(GetTempFileNameA(std::string(300, 'x').c_str(), "ZT", 0, name), 0u);
}

#ifndef _WIN32
TEST(Files, AFullDiskIsAFailureAndNoSignal) {
    rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 1000;
    const std::string name = FreshName();
    HANDLE file = Open(name, ReadWrite, 0, CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE);
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

    file = Open("/dev/full", GENERIC_WRITE, ShareBoth);
    if (file != INVALID_HANDLE_VALUE) {
        EXPECT_FALSE(Write(file, "x"));
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
        CloseHandle(file);
    }
    EXPECT_EQ(Open("/tmp", GENERIC_READ, ShareBoth), INVALID_HANDLE_VALUE) << "a folder is no file";
}
#endif

} // namespace
} // namespace zkr
