// The moments at which the whole process copies itself or ends while other threads are at work.
#pragma once

namespace zkr::platform {

// Locks that are held while others are taken are Outer ones and come first.
enum class ForkOrder { Outer, Inner };

// A part of the library that must not be copied half done. Before a fork its locks are taken, each part of a file
// in the order of its definition; afterwards they are given back in the parent and in the child, which only has the
// thread that forked. For objects of static storage.
class ForkPart {
  public:
    ForkPart(ForkOrder order, void (*before)(), void (*after)(bool inChild));
    ForkPart(const ForkPart&) = delete;
    ForkPart& operator=(const ForkPart&) = delete;

  private:
    friend struct ForkCalls;

    ForkOrder order_;
    void (*before_)();
    void (*after_)(bool inChild);
    ForkPart* next_ = nullptr;
};

// Called when the library is first at work, for the next one to know.
void ExpectTheEnd();

// To be asked by destructors of static storage alone: whether the process ends beside threads that may be inside the
// library, so that nothing of theirs may be touched. It is not when the library is unloaded, where nobody is.
bool OthersMayWorkOn();

} // namespace zkr::platform
