#pragma once

#include "misc/rktl_CircularQueue.h"
#include "misc/rktl_SmartPtr.h"
#include "sync/rkst_Mutex.h"
#include "sync/rkst_MutexLock.h"

namespace rktl {

/// A container and the recursive mutex under which alone it may be touched.
template <class Q> class SmartQueueImpl {
public:
    using value_type = typename Q::value_type;

    explicit SmartQueueImpl(unsigned int capacity)
        : mContainer(capacity)
    {
    }

    virtual ~SmartQueueImpl() = default;

    /// Waits up to the limit for the mutex. True: value is a copy of the entry that is next in turn, which stays where it is.
    /// False: there is none, and value is an empty one; or the mutex was not won, and value is as before.
    virtual bool nextValue(value_type& value, unsigned int milliseconds) const = 0;

    rkst::Mutex const& mutex() const { return mMutex; }

    /// To be touched under the mutex.
    Q& container() { return mContainer; }
    Q const& container() const { return mContainer; }

private:
    rkst::Mutex mMutex{false};
    Q mContainer;
};

/// A ring shared among threads. An entry and its empty form are values of type T.
template <class T> class SmartCircularQ : public SmartQueueImpl<CircularQueue<T>> {
public:
    /// Holds nothing until its container reserves room.
    SmartCircularQ()
        : SmartQueueImpl<CircularQueue<T>>(0)
    {
    }

    bool nextValue(T& value, unsigned int milliseconds) const override
    {
        rkst::MutexLock const lock(this->mutex(), milliseconds);
        if (!lock)
            return false;
        bool const any = !this->container().isEmpty();
        value = any ? this->container().front() : T();
        return any;
    }
};

/// A ring of shared objects; its empty entry is the null pointer.
template <class T> using ConstSmartCircularQ = SmartCircularQ<ConstSmartPtr<T>>;

} // namespace rktl
