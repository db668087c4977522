// Surfaces and the device contexts that show them. A surface lives as long as a context or the screen holds
// it; its pixels are the host's and are let go as soon as the host deletes it.
#pragma once

#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"
#include "platform/portable/shapes.h"

#include <array>
#include <atomic>
#include <mutex>

namespace zkr::platform {

struct Surface {
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0;
    uint8_t* topRow = nullptr; // null: nothing is shown
    ptrdiff_t pitch = 0;       // bytes from a row to the one below it
    UINT staticColours = 0;    // above 0: a palette display
    std::array<PALETTEENTRY, 256> colours{};
    std::atomic<uint32_t> references{1};

    void Hold() { references.fetch_add(1, std::memory_order_relaxed); }
    void Drop();
};

enum class PathState { None, Open, Whole };

struct DeviceContext final : Object {
    static constexpr ObjectKind kind = ObjectKind::DeviceContext;
    enum class Owner { Surface, Screen, Memory }; // who releases it: Z_DeleteSurface, ReleaseDC or DeleteDC

    Surface* surface = nullptr; // selected, held
    Owner owner = Owner::Surface;

    std::mutex mutex; // guards what follows
    int polyFillMode = ALTERNATE;
    PathState pathState = PathState::None;
    Outline path;

    void Release() override;
};

} // namespace zkr::platform
