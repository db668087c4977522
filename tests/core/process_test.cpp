// The process ends, or makes a child of itself, while its threads are inside the library.
#include "support/screen.h"

#include "zkr13n/bitmap.h"
#include "zkr13n/clipboard.h"
#include "zkr13n/copy.h"
#include "zkr13n/dither.h"
#include "zkr13n/files.h"
#include "zkr13n/raster_object.h"
#include "zkr13n/rows.h"
#include "zkr13n/storage.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zkr::test {
namespace {

bool UseStrips() {
    BitmapHandle bitmap;
    std::array<uint8_t, 6000> row{};
    bool good = Z_CreateBitmap(&bitmap, MemorySuperCompressed, 2000, 100, 24, 1, nullptr, 0, nullptr, 0) == 1;
    Z_AccessBitmap(&bitmap);
    for (int32_t y = 0; y < 100; ++y)
        good &= Z_PutBitmapRow(&bitmap, row.data(), y, 6000) == 6000;
    Z_ReleaseBitmap(&bitmap);
    Z_FreeBitmap(&bitmap);
    return good;
}

// Fails while another thread has the clipboard.
bool UseClipboard() {
    BitmapHandle bitmap, pasted;
    bool good = Z_CreateBitmap(&bitmap, MemoryConventional, 30, 20, 24, 1, nullptr, 0, nullptr, 0) == 1;
    good &= Z_CopyToClipboardExt(nullptr, &bitmap, COPY_EMPTY | COPY_DIB) == 1;
    good &= Z_CopyFromClipboard(nullptr, &pasted) == 1;
    Z_FreeBitmap(&pasted);
    Z_FreeBitmap(&bitmap);
    return good;
}

// Draws on the screen, which all threads share: the clipboard's other form is made there. Not always done, as above;
// not called at all where the sanitizers cannot bear forks.
[[maybe_unused]] bool UseScreen() {
    BitmapHandle bitmap;
    bool good = Z_CreateBitmap(&bitmap, MemoryConventional, 90, 60, 24, 1, nullptr, 0, nullptr, 0) == 1;
    good &= Z_CopyToClipboardExt(nullptr, &bitmap, COPY_EMPTY | COPY_DDB) == 1;
    Z_FreeBitmap(&bitmap);
    return good;
}

bool UseObject() {
    IZIRCRaster* raster = nullptr;
    uint8_t bytes[8] = {};
    const bool good = Z_CreateRasterObject(&raster) == 1 &&
                      raster->CreateUserBitmap(4, 2, 8, {Z_VARIANT_BYTES, 8, bytes}, 0, nullptr) == 0;
    raster->Release();
    return good;
}

// Takes every lock of the library: handles, blocks, views, records of threads, files, modules, the clipboard and the
// copies of objects.
bool UseEverything() {
    bool good = true;
    for (const int32_t type :
         {int32_t{MemoryConventional}, int32_t{MemoryDisk}, int32_t{MemorySuperCompressed}}) {
        BitmapHandle bitmap, copy;
        std::array<uint8_t, 120> row{};
        good &= Z_CreateBitmap(&bitmap, type, 40, 20, 24, 1, nullptr, 0, nullptr, 0) == 1;
        Z_AccessBitmap(&bitmap);
        for (int32_t y = 0; y < 20; ++y)
            good &= Z_PutBitmapRow(&bitmap, row.data(), y, 120) == 120;
        Z_ReleaseBitmap(&bitmap);
        good &= Z_CopyBitmap(&copy, &bitmap) == 1;
        Z_FreeBitmap(&copy);
        Z_FreeBitmap(&bitmap);
    }
    std::thread([&good] { good &= Z_GetDefaultDithering() == 7; }).join();
    UseClipboard();
    return good && UseObject();
}

// What a child of this process leaves behind: 0, or what ended it.
template <typename Work> int InChild(Work work) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(30); // a child that hangs is ended
        work();
        _exit(3);
    }
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

// Threads that are at work as long as it lives, or as the process does.
class BusyThreads {
  public:
    explicit BusyThreads(bool (*work)()) {
        for (auto& thread : threads_)
            thread = std::thread([this, work] {
                while (!ended_)
                    work();
            });
    }
    ~BusyThreads() {
        ended_ = true;
        for (auto& thread : threads_)
            thread.join();
    }

  private:
    std::atomic<bool> ended_ = false;
    std::array<std::thread, 3> threads_;
};

#if defined __SANITIZE_ADDRESS__
constexpr int Rounds = 5;
#else
constexpr int Rounds = 60;
#endif

#if !defined __SANITIZE_THREAD__ // which takes threads that do not end for a fault
TEST(Process, EndsInOrderBesideThreadsAtWork) {
    for (int round = 0; round < Rounds; ++round) {
        const int status = InChild([round] {
            new BusyThreads(round % 2 == 0 ? UseStrips : UseEverything);
            usleep(static_cast<useconds_t>(3000 + round * 100));
            exit(0);
        });
        ASSERT_EQ(status, 0) << "round " << round;
    }
}

#if !defined __SANITIZE_ADDRESS__ // whose own heap does not stand a fork
TEST(Process, HasChildrenThatWorkOnWhateverItsThreadsWereAbout) {
    const BusyThreads busy(UseEverything);
    for (int round = 0; round < 4 * Rounds; ++round)
        ASSERT_EQ(InChild([] { _exit(UseEverything() && UseClipboard() ? 0 : 1); }), 0) << "round " << round;
}

TEST(Process, HasChildrenThatDrawOnTheScreenOnWhichItsThreadsDrew) {
    const Screen screen(32, 0);
    const BusyThreads busy(UseScreen);
    for (int round = 0; round < 4 * Rounds; ++round)
        ASSERT_EQ(InChild([] { _exit(UseScreen() ? 0 : 1); }), 0) << "round " << round;
}
#endif
#endif

TEST(Process, ReadsOnWhereItWasAfterAChildHasRead) {
    char name[260];
    Z_OsGetTempName(name);
    const intptr_t file = Z_OsCreat(name, Z_CREATE_DELETE_ON_CLOSE);
    char digits[8] = {};
    ASSERT_EQ(Z_OsWrite(file, "0123456789", 10, 0), 10);
    ASSERT_EQ(Z_OsSeek(file, 2, 0, 0), 2);
    EXPECT_EQ(InChild([&] { _exit(Z_OsRead(file, digits, 3, 0) == 3 && digits[0] == '2' ? 0 : 1); }), 0);
    EXPECT_EQ(Z_OsRead(file, digits, 3, 0), 3);
    EXPECT_STREQ(digits, "234");
    EXPECT_EQ(Z_OsSeek(file, 0, 1, 0), 5);
    Z_OsClose(file, 0);
}

} // namespace
} // namespace zkr::test
