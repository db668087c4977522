// Conversion of a row in place: the walk over the row and the exported functions.
#include "zkr13n/convert.h"

#include "colour/convert_plan.h"
#include "core/return_codes.h"
#include "core/row_ahead.h"

#include <algorithm>
#include <limits>

namespace zkr {

namespace {

// The pixels that are in work at a time where a conversion takes several stages; a multiple of 8, so that
// every piece of a row begins on a byte.
constexpr size_t PiecePixels = 512;

// Walks over a row so that every pixel is read before a target pixel covers it: from the end where pixels
// grow, else from the start. A single kernel does so by itself.
class InPlaceWalk {
  public:
    InPlaceWalk(const ConvertPlan& plan, const ConvertRequest& request, uint8_t* row)
        : plan_(plan), row_(row), sourceBits_(static_cast<size_t>(PixelBits(request.SourceBits))),
          targetBits_(static_cast<size_t>(PixelBits(request.TargetBits))) {}

    void Run(size_t width) {
        if (plan_.StageCount() == 1) return RunStages(row_, row_, width);
        const size_t pieces = (width + PiecePixels - 1) / PiecePixels;
        for (size_t i = 0; i < pieces; ++i) {
            const size_t begin = (targetBits_ > sourceBits_ ? pieces - 1 - i : i) * PiecePixels;
            RunStages(SourceAt(begin), TargetAt(begin), std::min(PiecePixels, width - begin));
        }
    }

  private:
    void RunStages(const uint8_t* source, uint8_t* target, size_t pixels) {
        const int32_t last = plan_.StageCount() - 1;
        for (int32_t i = 0; i <= last; ++i) {
            uint8_t* to = i == last ? target : between_[i & 1];
            plan_.Stage(i).Kernel(source, to, pixels, plan_.Stage(i).Parameters);
            source = to;
        }
    }

    uint8_t* SourceAt(size_t pixel) const { return row_ + pixel / 8 * sourceBits_; }
    uint8_t* TargetAt(size_t pixel) const { return row_ + pixel / 8 * targetBits_; }

    const ConvertPlan& plan_;
    uint8_t* row_;
    size_t sourceBits_;
    size_t targetBits_;
    uint8_t between_[2][PiecePixels * 4]; // working rows between two stages
};

uint64_t SourceBytes(const ConvertRequest& request) {
    return static_cast<uint64_t>(request.Width) * static_cast<uint64_t>(PixelBits(request.SourceBits)) / 8;
}

// The bytes of a row that ends on a multiple of four.
uint64_t RowSize(int32_t width, int32_t bits) {
    const int64_t rowBits = static_cast<int64_t>(width) * PixelBits(bits);
    return rowBits > 0 ? static_cast<uint64_t>(rowBits + 31) >> 3 & ~uint64_t{3} : 0;
}

} // namespace

} // namespace zkr

ReturnCode Z_CALL Z_ConvertBuffer(void* row, int32_t width, int32_t sourceBits, int32_t targetBits,
                                  int32_t sourceOrder, int32_t targetOrder, const RGBQUAD* sourcePalette,
                                  const RGBQUAD* targetPalette) {
    return Z_ConvertBufferExt(row, width, sourceBits, targetBits, sourceOrder, targetOrder, sourcePalette,
                              targetPalette, 0, -1, -1);
}

ReturnCode Z_CALL Z_ConvertBufferExt(void* row, int32_t width, int32_t sourceBits, int32_t targetBits,
                                     int32_t sourceOrder, int32_t targetOrder, const RGBQUAD* sourcePalette,
                                     const RGBQUAD* targetPalette, uint32_t flags, int32_t lowBit,
                                     int32_t highBit) {
    zkr::ConvertRequest request{width,         sourceBits,    targetBits, sourceOrder, targetOrder,
                                sourcePalette, targetPalette, flags,      lowBit,      highBit};
    if (row == nullptr || !zkr::CheckConversion(request)) return zkr::code::InvalidArgument;
    zkr::ConvertPlan plan(request);
    if (plan.StageCount() == 0) return zkr::code::Success;
    if (zkr::SourceBytes(request) >= zkr::SmallestNotedRow) plan.ReadAhead(zkr::TakeRowAhead(row));
    zkr::InPlaceWalk(plan, request, static_cast<uint8_t*>(row)).Run(static_cast<size_t>(width));
    return zkr::code::Success;
}

size_t Z_CALL Z_CalcConvertSize(int32_t firstWidth, int32_t firstBits, int32_t secondWidth,
                                int32_t secondBits) {
    const uint64_t size = std::max({zkr::RowSize(firstWidth, firstBits), zkr::RowSize(secondWidth, firstBits),
                                    zkr::RowSize(secondWidth, secondBits)});
    return static_cast<size_t>(std::min<uint64_t>(size, std::numeric_limits<size_t>::max()));
}
