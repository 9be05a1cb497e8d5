#pragma once

#include "misc/rktl_SmartPtr.h"
#include "sync/rkst_WaitObject.h"

#include <atomic>
#include <cstdint>

/// What all copies of a rkst::Event share.
struct rk_event_object {
    std::atomic<uint32_t> signalled; // 0 or 1; waiters sleep on this very word
    bool manualReset;
    std::atomic<uint32_t> watchers = 0; // places of those who ever waited for it in a list, as rkst::wakeListWaiters takes them
};

namespace rkst {

/// A flag that threads can wait for. A manual-reset event stays signalled until reset and wakes all its waiters; an
/// auto-reset event lets one successful wait through, which clears it. Copies are the same event.
///
/// Any thread may call any operation. signal and reset may also be called from a signal handler, whatever the interrupted
/// thread was doing, a wait on this very event included: the state is one atomic word on which waiters sleep in the kernel
/// (futex), so there is no mutex that the interrupted thread could hold, and errno is left alone.
class Event : public WaitObject, public rktl::SmartPtr<rk_event_object> {
public:
    Event(bool manualReset, bool initiallySignalled);

    /// One sleep at most: a waiter that is woken and finds the event cleared again answers false before its limit. Who must
    /// wait on loops. False also for an event that gave up its state.
    bool wait(unsigned int milliseconds) const override;

    bool watch(uint32_t place) const override;

    /// True on success, which is whenever the event has its state.
    bool signal() const;
    bool reset() const;
};

} // namespace rkst
