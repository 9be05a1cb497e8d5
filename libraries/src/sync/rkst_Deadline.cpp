#include "sync/rkst_Deadline.h"

#include "misc/rktl_ElapsedTime.h"

#include <algorithm>

namespace rkst {

namespace {

constexpr int64_t nanosecondsPerMillisecond = 1000000;
constexpr int64_t nanosecondsPerSecond = 1000000000;

int64_t now()
{
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return int64_t(time.tv_sec) * nanosecondsPerSecond + time.tv_nsec;
}

} // namespace

Deadline::Deadline(unsigned int milliseconds)
    : mUnlimited(milliseconds == noLimit)
    , mEnd(now() + milliseconds * nanosecondsPerMillisecond)
{
}

Deadline::Deadline(rktl::ElapsedTime const& limit)
    : Deadline(toLimit(limit))
{
}

unsigned int Deadline::toLimit(rktl::ElapsedTime const& span)
{
    return (unsigned int)std::clamp<int64_t>(span.toMilliseconds(), 0, noLimit);
}

unsigned int Deadline::remaining() const
{
    if (mUnlimited)
        return noLimit;
    int64_t const left = mEnd - now();
    return left > 0 ? (unsigned int)((left + nanosecondsPerMillisecond - 1) / nanosecondsPerMillisecond) : 0;
}

rktl::ElapsedTime Deadline::remainingTime() const
{
    return rktl::ElapsedTime(int64_t(remaining()));
}

timespec Deadline::moment() const
{
    timespec time{};
    time.tv_sec = time_t(mEnd / nanosecondsPerSecond);
    time.tv_nsec = long(mEnd % nanosecondsPerSecond);
    return time;
}

} // namespace rkst
