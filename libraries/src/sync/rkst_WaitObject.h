#pragma once

#include <cstdint>

namespace rkst {

/// Something that a thread can wait for and obtain.
class WaitObject {
public:
    virtual ~WaitObject() = default;

    /// Waits up to the limit: 0 tries, 0xFFFFFFFF waits without limit. True when the object was obtained. Any thread.
    virtual bool wait(unsigned int milliseconds) const = 0;

    /// As wait, where nobody else may have the object at the same time.
    virtual bool waitExclusive(unsigned int milliseconds) const { return wait(milliseconds); }

    /// Has the object wake who sleeps at that place (rkst_ListWaiters.h) whenever it may have become obtainable, from now on.
    /// False: it cannot, and whoever waits for it among others has to ask it again and again.
    virtual bool watch(uint32_t) const { return false; }

protected:
    WaitObject() = default;
    WaitObject(WaitObject const&) = default;
    WaitObject& operator=(WaitObject const&) = default;
};

} // namespace rkst
