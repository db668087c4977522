// The calling thread's wishes for new bitmaps: memory type, thresholds, directory of temporary files.
#include "core/return_codes.h"
#include "core/thread_settings.h"
#include "platform/files.h"
#include "zkr13n/storage.h"

#include <algorithm>
#include <cstring>

using namespace zkr;

namespace {

bool IsDirectory(const char* path) {
    const uint32_t attributes = platform::GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

} // namespace

ReturnCode Z_CALL Z_SetDefaultMemoryType(int32_t type) {
    if (type != MemoryConventional && type != MemoryDisk) return code::InvalidArgument;
    CurrentThreadSettings().DefaultMemoryType = type;
    return code::Success;
}

ReturnCode Z_CALL Z_GetDefaultMemoryType(int32_t* typeOut) {
    if (typeOut == nullptr) return code::InvalidArgument;
    *typeOut = CurrentThreadSettings().DefaultMemoryType;
    return code::Success;
}

ReturnCode Z_CALL Z_SetMemoryThresholds(int32_t memoryReserve, int32_t maxConventionalSize, int32_t tileSize,
                                        int32_t conventionalTiles, int32_t mappedTiles, uint32_t flags) {
    constexpr int32_t wholePercentage = -100;
    const struct {
        uint32_t Flag;
        int32_t Value;
        int32_t Least;
        int32_t ThreadSettings::*Field;
    } thresholds[] = {
        {Z_THRESHOLD_MEMORY_RESERVE, memoryReserve, wholePercentage, &ThreadSettings::MemoryReserve},
        {Z_THRESHOLD_MAX_CONVENTIONAL_SIZE, maxConventionalSize, wholePercentage,
         &ThreadSettings::MaxConventionalSize},
        {Z_THRESHOLD_TILE_SIZE, tileSize, 0, &ThreadSettings::TileSize},
        {Z_THRESHOLD_CONVENTIONAL_TILES, conventionalTiles, wholePercentage,
         &ThreadSettings::ConventionalTiles},
        {Z_THRESHOLD_MAPPED_TILES, mappedTiles, wholePercentage, &ThreadSettings::MappedTiles},
    };
    ThreadSettings& settings = CurrentThreadSettings();
    for (const auto& threshold : thresholds) {
        if ((flags & threshold.Flag) == 0) continue;
        if (threshold.Value < threshold.Least) return code::InvalidArgument;
        settings.*threshold.Field = threshold.Value;
    }
    return code::Success;
}

void Z_CALL Z_GetMemoryThresholds(int32_t* reserveOut, int32_t* maxSizeOut, int32_t* tileSizeOut,
                                  int32_t* conventionalTilesOut, int32_t* mappedTilesOut) {
    const ThreadSettings& settings = CurrentThreadSettings();
    if (reserveOut != nullptr) *reserveOut = settings.MemoryReserve;
    if (maxSizeOut != nullptr) *maxSizeOut = settings.MaxConventionalSize;
    if (tileSizeOut != nullptr) *tileSizeOut = settings.TileSize;
    if (conventionalTilesOut != nullptr) *conventionalTilesOut = settings.ConventionalTiles;
    if (mappedTilesOut != nullptr) *mappedTilesOut = settings.MappedTiles;
}

ReturnCode Z_CALL Z_SetTempDirectory(const char* path) {
    ThreadSettings& settings = CurrentThreadSettings();
    if (path == nullptr) return code::InvalidArgument;
    const size_t length = std::strlen(path);
    if (length >= sizeof settings.TempDirectory || !IsDirectory(path)) return code::InvalidArgument;
    std::memmove(settings.TempDirectory, path, length + 1);
    return code::Success;
}

ReturnCode Z_CALL Z_GetTempDirectory(char* buffer, uint32_t size) {
    if (buffer == nullptr) return code::InvalidArgument;
    if (size == 0) return code::Success;
    const char* directory = CurrentThreadSettings().TempDirectory;
    const size_t length = std::min<size_t>(std::strlen(directory), size - 1);
    std::memcpy(buffer, directory, length);
    buffer[length] = '\0';
    return code::Success;
}
