// The row loop of a conversion: get, convert in place, put.
#include "convert.h"

#include "failure.h"
#include "progress.h"

#include "zkr13n/convert.h"

namespace zkr::app {

RowConverter::RowConverter(const std::string& name, const PixelFormat& from, const PixelFormat& to, int width)
    : name_(name), from_(from), to_(to), width_(width),
      row_(Z_CalcConvertSize(width, from.StoredBits(), width, to.StoredBits())) {}

void RowConverter::Convert() {
    uint32_t flags = 0;
    if (from_.order == Z_ORDER_GRAY) flags |= Z_CONVERT_SOURCE_GRAY;
    if (to_.order == Z_ORDER_GRAY) flags |= Z_CONVERT_TARGET_GRAY;
    Check(Z_ConvertBufferExt(row_.data(), width_, from_.bits, to_.bits, from_.order, to_.order,
                             from_.PaletteOrNull(), to_.PaletteOrNull(), flags, -1, -1),
          name_);
}

Bitmap Converted(Bitmap& source, const PixelFormat& format, const Storage& storage) {
    Bitmap target(source.Name(), format, source.Width(), source.Height(), storage,
                  source.Handle()->ViewPerspective);
    RowConverter converter(source.Name(), source.Format(), target.Format(), source.Width());
    RowProgress progress(source.Name(), source.Height());
    for (int row = 0; row < source.Height(); ++row) {
        source.GetRow(row, converter.RowBuffer());
        converter.Convert();
        target.PutRow(row, converter.RowBuffer());
        progress.RowDone();
    }
    return target;
}

} // namespace zkr::app
