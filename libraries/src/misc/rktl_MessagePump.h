#pragma once

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_SmartQueue.h"
#include "sync/rkst_Deadline.h"
#include "sync/rkst_MutexLock.h"
#include "sync/rkst_WorkerThread.h"

#include <cstdint>

namespace rktl {

/// A worker that empties a ring. Producers on any thread push and never wait for the work; in a full ring the oldest
/// entry gives way. Entries may be pushed before the worker runs.
///
/// pump, the only consumer, runs on the worker after a push and when nothing was pushed for the time-out. It peeks,
/// returns when there is nothing, works without the lock, pops that entry and starts over: an entry stays in the ring while it
/// is worked on, and remains there when the work fails.
///
/// The class that implements pump stops the worker in its own destructor.
template <class Q> class MessagePump : public rkst::WorkerThread {
public:
    using value_type = typename Q::value_type;

    /// timeoutMilliseconds: 0xFFFFFFFF for none. The ring has no room until reserve.
    explicit MessagePump(unsigned int timeoutMilliseconds)
        : rkst::WorkerThread(ElapsedTime(int64_t(timeoutMilliseconds)))
    {
    }

    /// False when the ring's mutex was not won within 15 seconds; the entry is then lost.
    bool push(value_type const& value)
    {
        rkst::MutexLock lock(mQueue.mutex(), lockLimit);
        bool const won = bool(lock);
        if (won)
            mQueue.container().push(value);
        lock.unlock();
        setEvent(0);
        return won;
    }

    // For the consumer.

    /// The oldest entry, which stays; the empty one when there is none.
    virtual value_type peek()
    {
        value_type value{};
        rkst::MutexLock const lock(mQueue.mutex(), lockLimit);
        if (lock)
            mQueue.nextValue(value, 0);
        return value;
    }

    /// Removes the oldest entry when it is value; otherwise that was overwritten meanwhile and nothing is removed.
    /// False only for an empty ring.
    virtual bool pop(value_type const& value)
    {
        rkst::MutexLock const lock(mQueue.mutex(), lockLimit);
        if (!lock || mQueue.container().isEmpty())
            return false;
        if (mQueue.container().front() == value)
            mQueue.container().pop();
        return true;
    }

    /// Removes and gives the oldest entry; the empty one when there is none.
    virtual value_type pop()
    {
        rkst::MutexLock const lock(mQueue.mutex(), lockLimit);
        value_type value{};
        if (lock && mQueue.nextValue(value, 0))
            mQueue.container().pop();
        return value;
    }

protected:
    /// Entries that the ring has room for; a smaller ring keeps the newest.
    void reserve(unsigned int capacity)
    {
        rkst::MutexLock const lock(mQueue.mutex(), rkst::Deadline::noLimit);
        mQueue.container().reserve(capacity);
    }

    void onNewEvent() override { pump(); }
    void onTimeOut() override { pump(); }

    virtual void pump() = 0;

private:
    static constexpr unsigned int lockLimit = 15000; // ms

    Q mQueue;
};

/// A pump of shared objects.
template <class T> using CircularMessagePump = MessagePump<ConstSmartCircularQ<T>>;

} // namespace rktl
