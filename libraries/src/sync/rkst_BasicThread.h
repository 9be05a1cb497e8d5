#pragma once

#include "misc/rktl_SmartPtr.h"
#include "sync/rkst_Event.h"

#include <pthread.h>

namespace rktl {
class ElapsedTime;
}

namespace rkst {

struct ThreadRun;

/// One thread of the operating system. The parameter says through which interface: 0 is POSIX threads.
template <int System> class BasicThread;

/// A thread that can be stopped, and started again after it ended. process does the work and looks at mStopEvent.
///
/// start and stop are called by the owner, one at a time, never by the thread itself.
///
/// Whoever overrides process, or anything that it calls, stops the thread in its own destructor: when the destructor here
/// runs, the overrides are gone. That destructor may throw; a class that has also a base with an ordinary virtual destructor
/// must therefore declare its own as noexcept.
///
/// A stop that is not heeded in time cancels the thread (pthread_cancel), the last resort: it acts at the thread's next wait
/// or sleep and unwinds its stack. Code that runs on a thread must not swallow it: catch std::exception, or throw on
/// from `catch (...)`.
template <> class BasicThread<0> {
public:
    BasicThread();
    BasicThread(BasicThread const&) = delete;
    BasicThread& operator=(BasicThread const&) = delete;

    /// Stops the thread with a limit of 15 seconds; throws rktl::Exception when it had to be cancelled.
    virtual ~BasicThread() noexcept(false);

    /// False when it runs already or could not be made.
    virtual bool start();

    /// Asks the thread to end and waits for it. True when it ended, or did not run. False when it did not end within the
    /// limit: it was then cancelled and the object counts as idle. A cancelled thread gets up to a second more to unwind; one
    /// that computes on without any wait may still do so afterwards.
    virtual bool stop(rktl::ElapsedTime const& limit);

    /// The work. The argument is always 0. An exception ends the thread and is reported on standard output.
    virtual void process(int argument) = 0;

protected:
    static constexpr int destructorLimit = 15000; // ms, for destructors that stop the thread

    Event mStopEvent;       // manual reset; signalled: the thread is to end
    Event mNotRunningEvent; // manual reset; signalled: idle

private:
    struct Entry;

    void cancel();

    pthread_t mHandle;
    rktl::SmartPtr<ThreadRun> mRun; // of the last start
};

} // namespace rkst
