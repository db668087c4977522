// Temporary files over the file family.
#include "core/storage/temporary_file.h"

#include "core/return_codes.h"
#include "core/thread_settings.h"
#include "platform/files.h"
#include "zkr13n/files.h"

#include <algorithm>
#include <limits>

namespace zkr::storage {

namespace {

// The file family counts in 32 bits and gives the count back signed; longer transfers go in pieces of this
// size.
constexpr uint64_t LargestPiece = 1u << 30;

template <typename Byte, typename Call>
int64_t MoveAt(intptr_t file, uint64_t position, Byte* buffer, uint64_t bytes, Call call,
               ReturnCode failure) {
    if (!SeekTo(file, position)) return code::SeekFailed;
    uint64_t moved = 0;
    while (moved < bytes) {
        const auto piece = static_cast<uint32_t>(std::min(bytes - moved, LargestPiece));
        const int32_t result = call(file, buffer + moved, piece, 0);
        if (result < 0) return failure;
        moved += static_cast<uint32_t>(result);
        if (static_cast<uint32_t>(result) < piece) break;
    }
    return static_cast<int64_t>(moved);
}

} // namespace

intptr_t CreateTemporaryFile(uint64_t bytes) {
    const auto file = reinterpret_cast<intptr_t>(
        platform::CreateTemporaryFile(CurrentThreadSettings().TempDirectory, "ZD"));
    if (file == NoFile) return NoFile;
    if (ExtendFile(file, bytes)) return file;
    Z_OsClose(file, 0);
    return NoFile;
}

bool SeekTo(intptr_t file, uint64_t position) {
    if (position > static_cast<uint64_t>(std::numeric_limits<intptr_t>::max())) return false;
    const auto wanted = static_cast<intptr_t>(position);
    return Z_OsSeek(file, wanted, 0, 0) == wanted;
}

bool ExtendFile(intptr_t file, uint64_t bytes) {
    const uint8_t last = 0;
    return WriteAt(file, bytes - 1, &last, 1) == 1;
}

bool CutFile(intptr_t file, uint64_t bytes) {
    return SeekTo(file, bytes) && Z_OsWrite(file, nullptr, 0, 0) == 0;
}

int64_t ReadAt(intptr_t file, uint64_t position, uint8_t* buffer, uint64_t bytes) {
    return MoveAt(file, position, buffer, bytes, Z_OsRead, code::ReadFailed);
}

int64_t WriteAt(intptr_t file, uint64_t position, const uint8_t* buffer, uint64_t bytes) {
    return MoveAt(file, position, buffer, bytes, Z_OsWrite, code::WriteFailed);
}

} // namespace zkr::storage
