// What makes a bitmap a frame of an animation, passed on from one record to another.
#include "core/flags.h"
#include "core/return_codes.h"
#include "zkr13n/colour_values.h"
#include "zkr13n/playback.h"

using namespace zkr;

ReturnCode Z_CALL Z_CopyPlaybackParms(BitmapHandle* destination, const BitmapHandle* source) {
    if (destination == nullptr || source == nullptr) return code::InvalidArgument;
    constexpr uint32_t carried = flag::PlaybackWaitInput | flag::PlaybackTransparency;
    destination->Flags = (destination->Flags & ~carried) | (source->Flags & carried);
    destination->PlaybackLeft = source->PlaybackLeft;
    destination->PlaybackTop = source->PlaybackTop;
    destination->PlaybackDelay = source->PlaybackDelay;
    destination->DisposalMethod = source->DisposalMethod;
    destination->PlaybackBackColor = Z_TranslateBitmapColor(destination, source, source->PlaybackBackColor);
    destination->TransparentColor = Z_TranslateBitmapColor(destination, source, source->TransparentColor);
    return code::Success;
}
