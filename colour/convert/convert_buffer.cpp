// Conversion of a row in place: the walk over the row and the exported functions.
#include "zkr13n/convert.h"

#include "colour/convert/convert_plan.h"
#include "core/return_codes.h"
#include "core/row_ahead.h"

#include <algorithm>
#include <limits>

namespace zkr {

namespace {

// A row is walked so that every pixel is read before a target pixel covers it.
void RunInPlace(Stages& stages, const ConvertRequest& request, uint8_t* row) {
    const int32_t targetBits = PixelBits(request.TargetBits);
    const bool grows = targetBits > PixelBits(request.SourceBits);
    stages.RunRow(row, row, targetBits, static_cast<size_t>(request.Width),
                  grows ? Stages::Direction::Backwards : Stages::Direction::Forwards);
}

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

using namespace zkr;

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
    ConvertRequest request{width,         sourceBits,    targetBits, sourceOrder, targetOrder,
                           sourcePalette, targetPalette, flags,      lowBit,      highBit};
    if (row == nullptr || !CheckConversion(request)) return code::InvalidArgument;
    ConvertPlan plan(request);
    if (plan.Chain().Count() == 0) return code::Success;
    if (SourceBytes(request) >= SmallestNotedRow) plan.Chain().ReadAhead(TakeRowAhead(row));
    RunInPlace(plan.Chain(), request, static_cast<uint8_t*>(row));
    return code::Success;
}

size_t Z_CALL Z_CalcConvertSize(int32_t firstWidth, int32_t firstBits, int32_t secondWidth,
                                int32_t secondBits) {
    const uint64_t size = std::max(
        {RowSize(firstWidth, firstBits), RowSize(secondWidth, firstBits), RowSize(secondWidth, secondBits)});
    return static_cast<size_t>(std::min<uint64_t>(size, std::numeric_limits<size_t>::max()));
}
