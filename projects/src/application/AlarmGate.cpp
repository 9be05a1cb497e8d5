#include "application/AlarmGate.h"

#include "misc/rktl_ElapsedTime.h"

void AlarmGate::setGracePeriod(rktl::ElapsedTime const& period)
{
    mGracePeriod.start(period);
    mGracePeriod.expire();
}

bool AlarmGate::mayPass(uint32_t uid)
{
    auto const timer = mEventTimers.find(uid);
    if (timer == mEventTimers.end() && mGracePeriod.hasExpired())
        return true;
    if (timer != mEventTimers.end())
        timer->second.restart();
    forgetExpired();
    return false;
}

void AlarmGate::sent(uint32_t uid)
{
    mEventTimers[uid].start(quietTime);
    mGracePeriod.restart();
    forgetExpired();
}

void AlarmGate::forgetExpired()
{
    std::erase_if(mEventTimers, [](auto const& entry) { return entry.second.hasExpired(); });
}
