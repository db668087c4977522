// One note a thread, in its settings.
#include "core/row_ahead.h"

#include "core/thread_settings.h"

namespace zkr {

void NoteRowAhead(const void* buffer, uintptr_t next) {
    ThreadSettings& settings = CurrentThreadSettings();
    if (!IsFallbackRecord(settings)) settings.Ahead = {buffer, next};
}

ptrdiff_t TakeRowAhead(const void* buffer) {
    RowAhead& ahead = CurrentThreadSettings().Ahead;
    if (ahead.Buffer != buffer) return 0;
    ahead.Buffer = nullptr;
    return static_cast<ptrdiff_t>(ahead.Next - reinterpret_cast<uintptr_t>(buffer));
}

} // namespace zkr
