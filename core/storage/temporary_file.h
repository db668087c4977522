// Temporary files that the system deletes when they are closed, and transfers at a place in them.
#pragma once

#include <cstdint>

namespace zkr::storage {

inline constexpr intptr_t NoFile = -1;

// A new file of so many bytes (at least 1) in the thread's temporary directory, or NoFile. It is extended by
// writing its last byte, and reads as zeroes.
intptr_t CreateTemporaryFile(uint64_t bytes);

bool SeekTo(intptr_t file, uint64_t position);

// Grows a file to so many bytes, at least 1, by writing the last one.
bool ExtendFile(intptr_t file, uint64_t bytes);

// Cuts a file at so many bytes.
bool CutFile(intptr_t file, uint64_t bytes);

// The count of bytes moved, which may fall short of what was asked for, or the code of the failure:
// SeekFailed, ReadFailed, WriteFailed. Moving 0 bytes does nothing.
int64_t ReadAt(intptr_t file, uint64_t position, uint8_t* buffer, uint64_t bytes);
int64_t WriteAt(intptr_t file, uint64_t position, const uint8_t* buffer, uint64_t bytes);

} // namespace zkr::storage
