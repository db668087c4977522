#include "display/dib/region_exchange.h"

#include "core/return_codes.h"
#include "display/dib/from_dib.h"
#include "display/dib/locked_block.h"
#include "zkr13n/dib.h"
#include "zkr13n/flip.h"
#include "zkr13n/region_colours.h"

namespace zkr::dib {

HGLOBAL RegionToBlock(BitmapHandle& bitmap) {
    BitmapHandle mask;
    if (Z_CreateMaskFromBitmapRgn(&bitmap, &mask) != code::Success) return nullptr;
    HGLOBAL block = Z_ChangeToDIB(&mask);
    if (block == nullptr) Z_FreeBitmap(&mask);
    return block;
}

ReturnCode RegionFromBlock(BitmapHandle& bitmap, HGLOBAL handle) {
    const LockedBlock block(handle);
    if (block.Data() == nullptr) return code::InvalidArgument;
    Header header;
    ReturnCode status = ReadPacked(block.Data(), block.Bytes(), header);
    if (status != code::Success) return status;
    BitmapHandle mask;
    status = ConvertPacked(mask, block.Data(), header, block.Bytes());
    if (status != code::Success) return status;
    status = Z_IntChangeBitmapViewPerspective(nullptr, &mask, bitmap.ViewPerspective, 0);
    if (status == code::Success) status = Z_SetBitmapRgnFromMask(&bitmap, nullptr, &mask, Z_RGN_SET);
    Z_FreeBitmap(&mask);
    return status;
}

} // namespace zkr::dib
