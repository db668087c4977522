// The row that is probably wanted next. Rows of a bitmap are mostly read one after the other into one buffer
// and worked on there, and meanwhile memory has nothing to do. So whoever reads a row of a large bitmap notes
// where the next one lies, and whoever works on the row in its buffer can ask the cache for that one.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zkr {

// Rows below this are worked on too quickly for the note to pay.
inline constexpr size_t SmallestNotedRow = 2048;

// Notes, for the calling thread, that after the row in the buffer the one at next will be read. Nothing ever
// reads there because of the note, so that it may stand in memory that is gone.
void NoteRowAhead(const void* buffer, uintptr_t next);

// The distance from the buffer to the row that was noted for it, and forgets it; 0 where none was.
ptrdiff_t TakeRowAhead(const void* buffer);

} // namespace zkr
