// How one row is to be converted: the arguments of a conversion, tested, and the kernels that carry it out
// with their parameters. Making the plan takes all decisions; running it takes none.
#pragma once

#include "colour/convert/stages.h"
#include "colour/palettes/kept_palette_map.h"
#include "zkr13n/convert.h"

namespace zkr {

struct ConvertRequest {
    int32_t Width;
    int32_t SourceBits; // 0 is 8-bit gray
    int32_t TargetBits;
    int32_t SourceOrder;
    int32_t TargetOrder;
    const RGBQUAD* SourcePalette;
    const RGBQUAD* TargetPalette;
    uint32_t Flags; // Z_CONVERT_...
    int32_t LowBit;
    int32_t HighBit;

    bool Has(uint32_t flag) const { return (Flags & flag) != 0; }
};

// The width of a pixel, in bits.
inline int32_t PixelBits(int32_t depth) {
    return depth == 0 ? 8 : depth;
}

// Settles the flags of a request and says whether its depths, orders and windows can go together.
bool CheckConversion(ConvertRequest& request);

struct GrayWindow;

// The stages of a conversion in the order in which the pixels pass them: none where the row is to stay as it
// is. The first reads pixels of the source depth, the last writes pixels of the target depth.
class ConvertPlan {
  public:
    // The request has passed CheckConversion and stands as long as the plan.
    explicit ConvertPlan(const ConvertRequest& request);
    ConvertPlan(const ConvertPlan&) = delete;
    ConvertPlan& operator=(const ConvertPlan&) = delete;

    Stages& Chain() { return stages_; }

  private:
    void PlanIndices();
    void PlanIndexMap();
    void PlanGray();
    void Plan12ToGray(const GrayWindow& window);
    void Plan16ToGray(const GrayWindow& window);
    void PlanGrayToMap();
    void PlanColour();

    void AddTarget(kernels::Source source);
    void AddMatch();
    bool TargetIsIndexed() const { return request_.TargetBits >= 1 && request_.TargetBits <= 8; }
    bool TargetIsGrayWords() const;
    const RGBQUAD* TargetPalette() const;

    const ConvertRequest& request_;
    Stages stages_;
    PaletteMap spareMap_;
};

} // namespace zkr
