#include "misc/rktl_FpsCalculator.h"

namespace rktl {

FpsCalculator::FpsCalculator(unsigned int seconds)
    : mFrames(ElapsedTime::fromSeconds(seconds))
{
}

void FpsCalculator::setTimeWindow(unsigned int seconds)
{
    if (seconds != 0)
        mFrames = TimeQueue<bool>(ElapsedTime::fromSeconds(seconds));
}

void FpsCalculator::update(TimeStamp const& time)
{
    mFrames.insert(true, time);
}

double FpsCalculator::calcFps() const
{
    if (mFrames.empty())
        return -1.0;
    double const seconds = static_cast<double>((mFrames.newestTime() - mFrames.oldestTime()).toMilliseconds()) / 1000.0;
    return seconds > 0.0 ? static_cast<double>(mFrames.size()) / seconds : 0.0;
}

void FpsCalculator::reset()
{
    mFrames.clear();
}

} // namespace rktl
