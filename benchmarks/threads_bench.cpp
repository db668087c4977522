// The same work on one, two and four threads, each with bitmaps of its own: how many times as much gets done. It is
// done by a process of its own, since a process that has had a second thread is slower at much else.
#include "pictures.h"
#include "work.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace bench {

namespace {

using Bytes = std::array<uint8_t, 256 * 3>;

const Bytes& RowOfNoise() {
    static const Bytes row = [] {
        Bytes bytes;
        std::copy_n(Photograph().data(), bytes.size(), bytes.data());
        return bytes;
    }();
    return row;
}

void Make(BitmapHandle& bitmap, int32_t memoryType, int32_t side) {
    if (Z_CreateBitmap(&bitmap, memoryType, side, side, 24, Z_ORDER_BGR, nullptr, 2, nullptr, 0) != Z_SUCCESS)
        std::abort();
}

// Each thread's source, made by it.
class Source : public BitmapHandle {
  public:
    explicit Source(int32_t side) {
        Make(*this, MemoryConventional, side);
        for (int32_t y = 0; y < side; ++y)
            Z_PutBitmapRow(this, RowOfNoise().data(), y, BytesPerLine);
    }
    ~Source() { Z_FreeBitmap(this); }
};

void Create(int times) {
    for (BitmapHandle bitmap; times > 0; --times) {
        Make(bitmap, MemoryConventional, 64);
        Z_FreeBitmap(&bitmap);
    }
}

void Copy(int times) {
    Source source(64);
    for (BitmapHandle copy; times > 0; --times) {
        Z_CopyBitmap(&copy, &source);
        Z_FreeBitmap(&copy);
    }
}

void ResolveColours(int times) {
    Source source(64);
    constexpr uint32_t flags = COLORRES_FIXED_PALETTE | static_cast<uint32_t>(DitherFloydSteinberg) << 16;
    for (BitmapHandle reduced; times > 0; --times) {
        Z_ColorResBitmap(&source, &reduced, 8, flags, nullptr, nullptr, 0, nullptr, 0);
        Z_FreeBitmap(&reduced);
    }
}

void PutAndGetStrips(int times) {
    Bytes row = RowOfNoise();
    for (BitmapHandle bitmap; times > 0; --times) {
        Make(bitmap, MemorySuperCompressed, 256);
        Z_AccessBitmap(&bitmap);
        for (int32_t y = 0; y < 256; ++y)
            Z_PutBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
        for (int32_t y = 0; y < 256; ++y)
            Z_GetBitmapRow(&bitmap, row.data(), y, bitmap.BytesPerLine);
        Z_ReleaseBitmap(&bitmap);
        Z_FreeBitmap(&bitmap);
    }
}

struct Task {
    const char* Name;
    size_t PixelsEach;
    int Times;
    void (*Run)(int times);
};
constexpr Task Tasks[] = {
    {"create 64 x 64", 64 * 64, 24000, Create},
    {"copy 64 x 64", 64 * 64, 8000, Copy},
    {"to 256 colours", 64 * 64, 320, ResolveColours},
    {"strips of 256", 256 * 256, 32, PutAndGetStrips},
};

struct Request {
    int Task;
    int Threads;
};

void Serve(const Request& request) {
    const Task& task = Tasks[request.Task];
    std::vector<std::thread> threads;
    for (int i = 0; i < request.Threads; ++i)
        threads.emplace_back(task.Run, task.Times / request.Threads);
    for (auto& thread : threads)
        thread.join();
}

// The other process: it gives each request back when it is done, and ends with this one.
class Server {
  public:
    Server() {
        RowOfNoise();
        int toServer[2], fromServer[2];
        if (pipe(toServer) != 0 || pipe(fromServer) != 0) std::abort();
        const pid_t child = fork();
        if (child < 0) std::abort();
        if (child == 0) {
            close(toServer[1]);
            Request request;
            while (read(toServer[0], &request, sizeof request) == sizeof request) {
                Serve(request);
                if (write(fromServer[1], &request, sizeof request) != sizeof request) break;
            }
            _exit(0);
        }
        requests_ = toServer[1];
        answers_ = fromServer[0];
    }
    void Run(Request request) const {
        if (write(requests_, &request, sizeof request) != sizeof request ||
            read(answers_, &request, sizeof request) != sizeof request)
            std::abort();
    }

  private:
    int requests_, answers_;
};

void Run(Request request) {
    static const Server server;
    server.Run(request);
}

const Adds adds([] {
    int number = Threads;
    for (int index = 0; index < static_cast<int>(std::size(Tasks)); ++index) {
        const Task& task = Tasks[index];
        const size_t pixels = task.PixelsEach * static_cast<size_t>(task.Times);
        for (const auto& [threads, reach] : {std::pair{2, 1.8}, std::pair{4, 3.4}}) {
            if (static_cast<unsigned>(threads) > std::thread::hardware_concurrency()) continue;
            AddWork(number, {.Name = task.Name + (", " + std::to_string(threads)) + " threads",
                             .Pixels = pixels,
                             .Bytes = pixels * 3,
                             .Run = [request = Request{index, threads}] { Run(request); },
                             .Elsewhere = true});
            AddPeer(number++, {.Name = "1 thread",
                               .RatioToReach = reach,
                               .Run = [request = Request{index, 1}] { Run(request); },
                               .Elsewhere = true});
        }
    }
});

} // namespace

} // namespace bench
