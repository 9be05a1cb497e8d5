#include "sync/rkst_BasicThread.h"

#include "misc/rktl_ElapsedTime.h"
#include "sync/rkst_Deadline.h"
#include "sync/rkst_Mutex.h"
#include "sync/rkst_MutexLock.h"

#include <exception>
#include <iostream>
#include <memory>
#include <string>

namespace rkst {

/// One run of a thread, from start to its end. Its thread holds it too, so that a run that was given up can end without the
/// thread object, which may run again or be gone by then.
struct ThreadRun {
    Mutex mutex{false};
    Event notRunning;     // the object's
    bool ended = false;   // under mutex, as is the next: the handle is no longer valid
    bool givenUp = false; // the object no longer cares
};

namespace {

constexpr unsigned int unwindLimit = 1000; // ms, for a cancelled thread

void report(char const* text)
{
    std::cout << text << std::endl;
}

/// Says at the end of the scope that the run is over, also when the thread is being cancelled.
class RunEnd {
public:
    explicit RunEnd(rktl::SmartPtr<ThreadRun> const& run)
        : mRun(run)
    {
    }

    RunEnd(RunEnd const&) = delete;
    RunEnd& operator=(RunEnd const&) = delete;

    ~RunEnd()
    {
        MutexLock const lock(mRun->mutex, Deadline::noLimit);
        mRun->ended = true;
        if (!mRun->givenUp)
            mRun->notRunning.signal();
    }

private:
    rktl::SmartPtr<ThreadRun> mRun;
};

} // namespace

/// What the new thread gets.
struct BasicThread<0>::Entry {
    BasicThread<0>* thread;
    rktl::SmartPtr<ThreadRun> threadRun;

    static void* run(void* argument);
};

void* BasicThread<0>::Entry::run(void* argument)
{
    std::unique_ptr<Entry> entry(static_cast<Entry*>(argument));
    BasicThread<0>* const thread = entry->thread;
    RunEnd const end(entry->threadRun);
    entry.reset();
    try {
        thread->process(0);
    } catch (std::exception const& exception) {
        report((std::string("Caught exception in rkst::BasicThread: ") + exception.what()).c_str());
    } catch (...) {
        if (!std::current_exception())
            throw; // no exception of ours: the thread is being cancelled
        report("Caught unknown exception in rkst::BasicThread.");
    }
    return nullptr;
}

BasicThread<0>::BasicThread()
    : mStopEvent(true, false)
    , mNotRunningEvent(true, true)
    , mHandle()
{
}

BasicThread<0>::~BasicThread() noexcept(false)
{
    if (!BasicThread::stop(rktl::ElapsedTime(destructorLimit)))
        throw rktl::Exception(
            "libraries/src/sync/rkst_BasicThread", "rktl::BasicThread", "~BasicThread() - Could not stop the thread.");
}

bool BasicThread<0>::start()
{
    if (!mNotRunningEvent.wait(0))
        return false;
    mRun = rktl::SmartPtr<ThreadRun>(new ThreadRun{.notRunning = mNotRunningEvent});
    std::unique_ptr<Entry> entry(new Entry{this, mRun});
    mNotRunningEvent.reset();
    mStopEvent.reset();
    if (pthread_create(&mHandle, nullptr, &Entry::run, entry.get()) != 0) {
        mNotRunningEvent.signal();
        return false;
    }
    entry.release();
    pthread_detach(mHandle);
    return true;
}

bool BasicThread<0>::stop(rktl::ElapsedTime const& limit)
{
    Deadline const deadline(limit);
    if (mNotRunningEvent.wait(0))
        return true;
    mStopEvent.signal();
    if (mNotRunningEvent.wait(deadline.remaining()))
        return true;
    try {
        cancel();
    } catch (std::exception const&) {
        report("rkst::BasicThread::stop() - Caught exception during pthread_cancel.");
    }
    mNotRunningEvent.signal();
    return false;
}

void BasicThread<0>::cancel()
{
    MutexLock lock(mRun->mutex, Deadline::noLimit);
    if (mRun->ended)
        return;
    pthread_cancel(mHandle);
    lock.unlock();

    mNotRunningEvent.wait(unwindLimit);
    MutexLock const again(mRun->mutex, Deadline::noLimit);
    mRun->givenUp = true;
}

} // namespace rkst
