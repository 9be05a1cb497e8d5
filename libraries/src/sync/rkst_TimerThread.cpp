#include "sync/rkst_TimerThread.h"

#include "misc/rktl_ElapsedTime.h"

namespace rkst {

TimerThread::TimerThread(Event const& event)
    : mEvent(event)
{
}

TimerThread::~TimerThread() noexcept(false)
{
    stop(rktl::ElapsedTime(destructorLimit));
}

void TimerThread::process()
{
    while (!mStopEvent.wait(mInterval))
        mEvent.signal();
}

} // namespace rkst
