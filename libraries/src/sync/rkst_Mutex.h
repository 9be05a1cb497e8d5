#pragma once

#include "misc/rktl_SmartPtr.h"
#include "sync/rkst_WaitObject.h"

#include <pthread.h>

namespace rkst {

/// Recursive mutex: its owner may lock it again, and unlocks it as often. Copies are the same mutex. Any thread.
class Mutex : public WaitObject, public rktl::SmartPtr<pthread_mutex_t> {
public:
    explicit Mutex(bool initiallyLocked);
    Mutex(Mutex const&) = default;
    Mutex& operator=(Mutex const&) = default;
    ~Mutex() override;

    /// True when the mutex is now locked by this thread. False when the limit passed, or the mutex gave up its state.
    bool wait(unsigned int milliseconds) const override;

    bool lock(unsigned int milliseconds) const { return wait(milliseconds); }
    bool lockExclusive(unsigned int milliseconds) const { return waitExclusive(milliseconds); }

    /// False when this thread does not own the mutex.
    bool unlock() const;

    /// Destroys the POSIX mutex.
    void uninitializeData() override;
};

} // namespace rkst
