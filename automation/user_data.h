// Copies of clients' bytes that bitmaps lie on. They live as long as the object whose bitmap uses them keeps its bitmaps,
// and follow a bitmap that another object takes over.
#pragma once

#include "zkr13n/lists.h"

#include <cstddef>

namespace zkr::automation {

// A copy that belongs to nobody yet; null where memory is short.
void* CopyUserData(const void* bytes, size_t size);
// Makes the copies that a bitmap, or the items of a list, lie on another object's.
void ClaimUserData(const void* owner, const BitmapHandle& bitmap);
void ClaimUserData(const void* owner, BitmapList list);
// Frees the copy at an address, or that a bitmap lies on, if it is one; all copies of an object.
void FreeUserDataAt(const void* bytes);
void ReleaseUserData(const BitmapHandle& bitmap);
void FreeUserData(const void* owner);

} // namespace zkr::automation
