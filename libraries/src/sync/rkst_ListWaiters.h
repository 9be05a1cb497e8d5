#pragma once

#include "sync/rkst_Deadline.h"

#include <atomic>
#include <cstdint>

namespace rkst {

// How a thread sleeps until one of several objects is signalled. A futex is one word, so each thread that waits for a list
// sleeps on a word of its own, one of 32 (more threads share them), and an object remembers as bits on which of these words
// somebody ever waited for it. There is nothing to lock or to take back: an object may be signalled by a signal handler at any
// moment, and a wake-up too many only makes a waiter look once more.

/// Wakes who sleeps at these places. Safe in a signal handler.
void wakeListWaiters(uint32_t places);

/// One wait of this thread.
class ListWaiter {
public:
    ListWaiter();

    /// One bit, for rkst::WaitObject::watch.
    uint32_t getPlace() const;

    /// To be called before the objects are looked at: sleep returns for whatever is signalled later.
    void look();
    void sleep(Deadline const& deadline);

private:
    unsigned int mIndex;
    uint32_t mSeen = 0;
};

} // namespace rkst
