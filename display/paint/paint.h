// A paint as it is asked for.
#pragma once

#include "core/return_codes.h"
#include "display/paint/source_rows.h"
#include "zkr13n/bitmap.h"

namespace zkr {

struct PaintRequest {
    HDC Context;
    BitmapHandle* Bitmap;
    const RECT* Source;
    const RECT* SourceClip;
    const RECT* Destination;
    const RECT* DestinationClip;
    uint32_t Operation;
};

// Without rows held it is the bitmap that is painted.
struct RowBuffer {
    HeldRows Rows;
    int64_t Count = 0; // 0 and more
};

// The arguments have been tested.
[[nodiscard]] ReturnCode Paint(const PaintRequest& request, const RowBuffer& buffer);

} // namespace zkr
