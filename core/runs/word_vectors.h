// Vectors of the words of run lists and of the bytes of packed rows, of 16 bytes each, loaded from and stored
// to any address.
#pragma once

#include <cstdint>
#include <cstring>

namespace zkr::runs {

typedef uint8_t Bytes16 __attribute__((vector_size(16)));
typedef uint16_t Words8 __attribute__((vector_size(16)));

template <typename Vector> Vector Load(const void* from) {
    Vector vector;
    std::memcpy(&vector, from, sizeof vector);
    return vector;
}

template <typename Vector> void Store(void* to, Vector vector) {
    std::memcpy(to, &vector, sizeof vector);
}

} // namespace zkr::runs
