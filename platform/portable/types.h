// The system's types and constants under the names that they have on Windows. There the constants are macros
// and known everywhere; here they are constants of namespace zkr, so that code inside it reads the same.
#pragma once

#include "zkr13n/platform_types.h"

#include <cstddef>
#include <cstdint>

namespace zkr::platform {

using BOOL = int;
using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using LONG = int32_t;
using UINT = uint32_t;
using COLORREF = uint32_t; // 0x00BBGGRR
using HGDIOBJ = void*;

} // namespace zkr::platform

namespace zkr {

inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1));

inline constexpr int FALSE = 0;
inline constexpr int TRUE = 1;
inline constexpr size_t MAX_PATH = 260; // bytes of a path with its zero

// Errors that GetLastError gives.
inline constexpr uint32_t NO_ERROR = 0;
inline constexpr uint32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr uint32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr uint32_t ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr uint32_t ERROR_ACCESS_DENIED = 5;
inline constexpr uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr uint32_t ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr uint32_t ERROR_SEEK = 25;
inline constexpr uint32_t ERROR_READ_FAULT = 30;
inline constexpr uint32_t ERROR_GEN_FAILURE = 31;
inline constexpr uint32_t ERROR_SHARING_VIOLATION = 32;
inline constexpr uint32_t ERROR_FILE_EXISTS = 80;
inline constexpr uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr uint32_t ERROR_DISK_FULL = 112;
inline constexpr uint32_t ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr uint32_t ERROR_MOD_NOT_FOUND = 126;
inline constexpr uint32_t ERROR_PROC_NOT_FOUND = 127;
inline constexpr uint32_t ERROR_NEGATIVE_SEEK = 131;
inline constexpr uint32_t ERROR_NOT_LOCKED = 158;
inline constexpr uint32_t ERROR_INVALID_ADDRESS = 487;
inline constexpr uint32_t ERROR_MAPPED_ALIGNMENT = 1132;
inline constexpr uint32_t ERROR_FILE_INVALID = 1006;
inline constexpr uint32_t ERROR_COMMITMENT_LIMIT = 1455;

} // namespace zkr

namespace zkr::platform {

// The reason of the last failure of a call of this layer in the calling thread.
DWORD GetLastError();
void SetLastError(DWORD error);
// The code for an errno value.
DWORD ErrorFromErrno(int error);

} // namespace zkr::platform
