#pragma once

#include "sync/rkst_Event.h"
#include "sync/rkst_SimpleThread.h"

#include <atomic>
#include <cstdint>

namespace rkst {

/// Signals an event once in each interval while it runs. Intervals that the receiver misses are not made up for when the
/// event is an auto-reset one.
class TimerThread : public SimpleThread {
public:
    explicit TimerThread(Event const& event = Event(false, false));
    ~TimerThread() override;

    /// milliseconds: 1 or more (0 would signal without a pause); 0xFFFFFFFF never signals. Counts from the next round on.
    void setInterval(unsigned int milliseconds) { mInterval = milliseconds; }

    using SimpleThread::process;
    void process() override;

private:
    Event mEvent;
    std::atomic<uint32_t> mInterval = 0; // ms
};

} // namespace rkst
