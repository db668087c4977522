// Device contexts: what they show, and what is selected into them.
#pragma once

#include "platform/portable/brushes.h"
#include "platform/portable/graphics.h"
#include "platform/portable/handle_table.h"
#include "platform/portable/shapes.h"
#include "platform/portable/surfaces.h"

#include <mutex>

namespace zkr::platform {

// Handles of what a context has from the beginning. They are never alive in the table of handles.
inline HANDLE StockHandle(ObjectKind kind) {
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(kind));
}

// What SaveDC keeps.
struct ContextState {
    Ref<Surface> surface;
    HBITMAP bitmap = static_cast<HBITMAP>(StockHandle(ObjectKind::Bitmap)); // what the surface is of
    Ref<Brush> brush;                                                       // null: white
    HBRUSH brushHandle = static_cast<HBRUSH>(StockHandle(ObjectKind::Brush));
    HPALETTE palette = static_cast<HPALETTE>(StockHandle(ObjectKind::Palette));
    COLORREF textColour = 0;
    COLORREF backgroundColour = 0xFFFFFF;
    POINT brushOrigin{};
    int polyFillMode = ALTERNATE;
    int stretchMode = BLACKONWHITE;
    bool clipped = false;
    PixelSet clip;
};

struct SavedState {
    ContextState state;
    SavedState* before;
};

enum class PathState { None, Open, Whole };

struct DeviceContext final : Object {
    static constexpr ObjectKind kind = ObjectKind::DeviceContext;
    enum class Owner { Surface, Screen, Memory }; // who releases it: Z_DeleteSurface, ReleaseDC or DeleteDC

    Owner owner = Owner::Surface;
    Ref<Surface> device; // what GetDeviceCaps tells of

    std::mutex mutex; // guards what follows
    ContextState state;
    SavedState* saved = nullptr;
    int savedCount = 0;
    PathState pathState = PathState::None;
    Outline path;

    void Release() override;
};

// Holds one or two contexts and what they show for a scope, in an order in which nobody can wait for another
// in a circle. The same context may be given twice.
class ContextLock {
  public:
    explicit ContextLock(DeviceContext& context) : ContextLock(context, context) {}
    ContextLock(DeviceContext& first, DeviceContext& second);
    ~ContextLock();
    ContextLock(const ContextLock&) = delete;
    ContextLock& operator=(const ContextLock&) = delete;

  private:
    std::mutex* mutexes_[4] = {};
    int count_ = 0;

    void Take(std::mutex* first, std::mutex* second); // null ones are none
};

// A memory bitmap's first surface, of one pixel that nobody sees.
Surface& OnePixelSurface();

// A colour as a brush, SetBkColor or a palette names it, under a context's palette.
ColourWord ResolveColour(COLORREF colour, const ContextState& state);

} // namespace zkr::platform
