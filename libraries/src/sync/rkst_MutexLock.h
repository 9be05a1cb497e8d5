#pragma once

#include "sync/rkst_Mutex.h"

namespace rkst {

/// Holds a mutex for a scope, when it could be won in time. Belongs to the thread that made it.
class MutexLock {
public:
    /// milliseconds: as for rkst::WaitObject::wait.
    MutexLock(Mutex const& mutex, unsigned int milliseconds)
        : mMutex(mutex.lockExclusive(milliseconds) ? &mutex : nullptr)
    {
    }

    MutexLock(MutexLock&& other) noexcept
        : mMutex(other.mMutex)
    {
        other.mMutex = nullptr;
    }

    MutexLock& operator=(MutexLock&&) = delete;

    ~MutexLock() { unlock(); }

    explicit operator bool() const { return mMutex != nullptr; }

    void unlock()
    {
        if (mMutex)
            mMutex->unlock();
        mMutex = nullptr;
    }

    /// The mutex stays locked when the scope ends.
    void keepLocked() { mMutex = nullptr; }

private:
    Mutex const* mMutex; // null: not won, or given up
};

} // namespace rkst
