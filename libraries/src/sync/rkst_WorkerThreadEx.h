#pragma once

#include "sync/rkst_Event.h"
#include "sync/rkst_SimpleThread.h"
#include "sync/rkst_TimerThread.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace rktl {
class ElapsedTime;
}

namespace rkst {

/// A thread that sleeps until one of its N event slots is triggered and handles it, lower slots first. The handlers run
/// on the worker; onStart and onStop on the caller's thread. Any thread may call setEvent.
///
/// A handler that does not return holds up stop. The rules of rkst::BasicThread hold: a class with handlers
/// stops the worker in its own destructor.
template <unsigned char N> class WorkerThreadEx : public SimpleThread {
public:
    /// timeout: how long nothing must happen before onTimeOut is called; from 0xFFFFFFFF ms on, never.
    explicit WorkerThreadEx(rktl::ElapsedTime const& timeout);

    /// Stops the worker with a limit of 15 seconds.
    ~WorkerThreadEx() noexcept(false) override;

    bool start() override;

    /// True only when the worker and all its timers ended in time.
    bool stop(rktl::ElapsedTime const& limit) override;

    /// Triggers the slot and returns at once. A slot triggered again before it was handled is handled once.
    /// Throws rktl::Exception for an index of N or more; so does the other form.
    bool setEvent(unsigned char index);

    /// Triggers the slot and waits up to the limit until it was handled. True when it was; result, unless null, is then what
    /// onEvent gave. False at once when the worker does not run or is being stopped. Never to be called by a handler.
    bool setEvent(unsigned char index, unsigned int milliseconds, int* result);

    using SimpleThread::process;
    void process() override;

protected:
    virtual void onInitialize() { }
    virtual void onDeinitialize() { }

    /// The result goes to whoever waits for this event.
    virtual int onEvent(unsigned char) { return 0; }
    virtual void onTimeOut() { }

    /// Before the thread is made.
    virtual void onStart() { }

    /// Once the worker was asked to stop, before it is waited for.
    virtual void onStop(rktl::ElapsedTime const&) { }

    /// Triggers the slot once in each interval until the worker stops. interval: ms, 1 or more.
    /// False when the slot's timer runs already, for 0, and when the worker does not run.
    bool startTimer(unsigned char index, unsigned int interval);

private:
    struct Slot {
        Event trigger{false, false};
        Event done{true, true}; // clear while a synchronous call is under way
        TimerThread timer{trigger};
        std::atomic<int32_t> result = -1;
        std::atomic<uint32_t> asked = 0;  // synchronous calls so far
        std::atomic<uint32_t> served = 0; // of these, the last one whose trigger was handled
    };

    Slot& slot(unsigned char index);
    bool handle(unsigned char index);

    uint32_t mTimeout; // ms
    std::array<Slot, N> mSlots;
};

extern template class WorkerThreadEx<2>;

} // namespace rkst
