// A whole new record beside the caller's: committed over it when all went well, or with what was done so far when a
// stop leaves a part, and released otherwise, so that a failure leaves the caller's bitmap as it was.
#pragma once

#include "zkr13n/bitmap.h"

#include <cstdint>

namespace zkr {

class BitmapReplacement {
  public:
    // `owned` tells what the new record does not share with the old one: bits Z_DUP_..., as they were given
    // to Z_DupBitmapNewDim. Palette and region without their bit pass from the old record to the new one.
    explicit BitmapReplacement(BitmapHandle* target, uint32_t owned = Z_DUP_DATA)
        : target_(target), owned_(owned) {}
    ~BitmapReplacement() {
        if (target_ != nullptr) Z_FreeDuplicateBitmap(&record_, owned_);
    }
    BitmapReplacement(const BitmapReplacement&) = delete;
    BitmapReplacement& operator=(const BitmapReplacement&) = delete;

    BitmapHandle& record() { return record_; }

    // The new record takes the place of the old one.
    void Commit();

    // The old record gets the storage of the new one, and the row size that belongs to it, and keeps all else.
    void CommitStorage();

  private:
    BitmapHandle* target_; // null once committed
    uint32_t owned_;
    BitmapHandle record_{};
};

} // namespace zkr
