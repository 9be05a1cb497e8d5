#include "sync/rkst_WorkerThreadEx.h"

#include "misc/rktl_ElapsedTime.h"
#include "sync/rkst_Deadline.h"
#include "sync/rkst_Wait.h"

namespace rkst {

template <unsigned char N>
WorkerThreadEx<N>::WorkerThreadEx(rktl::ElapsedTime const& timeout)
    : mTimeout(Deadline::toLimit(timeout))
{
}

template <unsigned char N> WorkerThreadEx<N>::~WorkerThreadEx() noexcept(false)
{
    WorkerThreadEx::stop(rktl::ElapsedTime(destructorLimit));
}

template <unsigned char N> bool WorkerThreadEx<N>::start()
{
    if (!mNotRunningEvent.wait(0))
        return false;
    for (Slot& slot : mSlots)
        slot.done.signal(); // the last run may have ended in the middle of a synchronous call
    onStart();
    return BasicThread<0>::start();
}

template <unsigned char N> bool WorkerThreadEx<N>::stop(rktl::ElapsedTime const& limit)
{
    Deadline const deadline(limit);
    mStopEvent.signal();
    onStop(limit);
    bool stopped = BasicThread<0>::stop(deadline.remainingTime());
    for (Slot& slot : mSlots) {
        stopped = slot.timer.stop(deadline.remainingTime()) && stopped;
        slot.trigger.reset();
    }
    return stopped;
}

template <unsigned char N> bool WorkerThreadEx<N>::setEvent(unsigned char index)
{
    return slot(index).trigger.signal();
}

template <unsigned char N> bool WorkerThreadEx<N>::setEvent(unsigned char index, unsigned int milliseconds, int* result)
{
    Slot& called = slot(index);
    Deadline const deadline(milliseconds);
    if (mStopEvent.wait(0) || mNotRunningEvent.wait(0))
        return false;
    if (!called.done.wait(deadline.remaining()))
        return false;
    uint32_t const number = ++called.asked;
    called.trigger.signal();

    // What the worker was handling when we came ends with the same event; our turn comes after that.
    WaitObject* const either[] = {&called.done, &mNotRunningEvent};
    for (;;) {
        called.done.reset();
        if (static_cast<int32_t>(called.served - number) >= 0)
            break;
        unsigned int first = 0;
        if (!Wait(either, deadline.remaining(), first) || either[first] == &mNotRunningEvent)
            return false;
    }
    called.done.signal();
    if (result)
        *result = called.result;
    return true;
}

template <unsigned char N> void WorkerThreadEx<N>::process()
{
    onInitialize();
    std::array<WaitObject*, N + 1> objects;
    for (unsigned char i = 0; i < N; ++i)
        objects[i] = &mSlots[i].trigger;
    objects[N] = &mStopEvent;

    bool running = true;
    while (running) {
        std::bitset<N + 1> signalled;
        if (!WaitMultiple(objects, mTimeout, signalled)) {
            onTimeOut();
            continue;
        }
        running = !signalled[N];
        for (unsigned char i = 0; i < N && running; ++i)
            running = !signalled[i] || handle(i);
    }
    onDeinitialize();
}

/// False when the worker is to stop; the event is then dropped.
template <unsigned char N> bool WorkerThreadEx<N>::handle(unsigned char index)
{
    if (mStopEvent.wait(0))
        return false;
    Slot& handled = mSlots[index];
    uint32_t const asked = handled.asked;
    handled.result = onEvent(index);
    handled.served = asked;
    handled.done.signal();
    return true;
}

template <unsigned char N> bool WorkerThreadEx<N>::startTimer(unsigned char index, unsigned int interval)
{
    TimerThread& timer = slot(index).timer;
    if (interval == 0 || mStopEvent.wait(0) || mNotRunningEvent.wait(0))
        return false;
    timer.setInterval(interval);
    return timer.start();
}

template <unsigned char N> typename WorkerThreadEx<N>::Slot& WorkerThreadEx<N>::slot(unsigned char index)
{
    if (index >= N)
        throw rktl::Exception("libraries/src/sync/rkst_WorkerThreadEx", "rkst::WorkerThreadEx", "setEvent - not a valid event.");
    return mSlots[index];
}

template class WorkerThreadEx<2>;

} // namespace rkst
