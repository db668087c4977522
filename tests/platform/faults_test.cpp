// Each kind of call can be made to fail on its N-th time, and fails without a trace.
#include "platform/faults.h"
#include "platform/files.h"
#include "platform/heap.h"
#include "platform/memory.h"

#include <gtest/gtest.h>

namespace zkr {
namespace {

using namespace platform;

class Faults : public testing::Test {
  protected:
    void TearDown() override { fault::Disarm(); }
};

TEST_F(Faults, ReachEveryMappingAndFileCall) {
    char folder[MAX_PATH], name[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    // One road through all calls; the number of the first one that fails, 0 when none does.
    const auto road = [&]() -> int {
        int failed = 0, step = 0;
        const auto note = [&](bool good) {
            ++step;
            if (!good && failed == 0) failed = step;
            return good;
        };
        if (!note(GetTempFileNameA(folder, "ZF", 0, name) != 0)) return failed;
        HANDLE file = CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (!note(file != INVALID_HANDLE_VALUE)) {
            DeleteFileA(name);
            return failed;
        }
        DWORD count = 0;
        LARGE_INTEGER distance;
        distance.QuadPart = 1000;
        note(WriteFile(file, "abc", 3, &count, nullptr) != FALSE);
        note(SetFilePointer(file, 0, nullptr, FILE_BEGIN) == 0);
        note(ReadFile(file, name, 3, &count, nullptr) != FALSE);
        note(SetFilePointerEx(file, distance, nullptr, FILE_BEGIN) != FALSE);
        note(SetEndOfFile(file) != FALSE);
        HANDLE mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 100, nullptr);
        if (note(mapping != nullptr)) {
            void* view = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0);
            if (note(view != nullptr)) UnmapViewOfFile(view);
            CloseHandle(mapping);
        }
        CloseHandle(file);
        return failed;
    };
    for (int nth = 1; nth <= 9; ++nth) {
        fault::Arm(fault::AllFiles | fault::AllMemory, static_cast<uint32_t>(nth));
        EXPECT_EQ(road(), nth);
        fault::Disarm();
    }
    fault::Arm(fault::AllFiles | fault::AllMemory, 10);
    EXPECT_EQ(road(), 0);
    EXPECT_EQ(fault::Calls(), 9u);
}

} // namespace
} // namespace zkr
