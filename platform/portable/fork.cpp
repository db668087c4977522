// The parts that stand still at a fork, and how the end of the process is told from the unloading of the library.
#include "platform/portable/fork.h"

#include "platform/portable/threads.h"

#include <initializer_list>
#include <pthread.h>

namespace zkr::platform {

namespace {

constinit ForkPart* first = nullptr;
constinit ForkPart** end = &first;

} // namespace

struct ForkCalls {
    static void Before() {
        for (const ForkOrder order : {ForkOrder::Outer, ForkOrder::Inner})
            for (const ForkPart* part = first; part != nullptr; part = part->next_)
                if (part->order_ == order) part->before_();
    }
    static void After(bool inChild) {
        for (const ForkPart* part = first; part != nullptr; part = part->next_)
            part->after_(inChild);
    }
    static void Append(ForkPart& part) {
        if (first == nullptr)
            pthread_atfork(
                Before, [] { After(false); }, [] { After(true); });
        *end = &part;
        end = &part.next_;
    }
};

ForkPart::ForkPart(ForkOrder order, void (*before)(), void (*after)(bool inChild))
    : order_(order), before_(before), after_(after) {
    ForkCalls::Append(*this);
}

namespace {

// An unloaded library runs its functions for the end first, and one of them destroys its static storage. At the
// end of the process they come last, after the destruction of what has been constructed since main() began.
constinit bool isUnloaded = false;
constinit bool processEnds = false;

__attribute__((destructor)) void NoteUnloading() {
    isUnloaded = !processEnds;
}

struct EndMark {
    ~EndMark() { processEnds = !isUnloaded; }
};

} // namespace

void ExpectTheEnd() {
    [[maybe_unused]] static const EndMark mark;
}

bool OthersMayWorkOn() {
    return !isUnloaded && !IsOnlyThread();
}

} // namespace zkr::platform
