// The length of an open file, which the file family has no function of its own for.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr {

// Makes the file exactly length bytes long and leaves the position there. 0 on success, -1 on failure.
int32_t SetFileLength(intptr_t handle, size_t length);

} // namespace zkr
