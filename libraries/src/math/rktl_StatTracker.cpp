#include "math/rktl_StatTracker.h"

#include "math/rkml_Utility.h"
#include "misc/rk_clock.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>
#include <vector>

namespace rktl {

void StatTracker::start()
{
    mStartTick = rk_tickcount();
}

void StatTracker::stop()
{
    mSamples.push_back(static_cast<double>(rk_tickcount() - mStartTick));
    if (mSamples.size() > mMaxSamples)
        mSamples.pop_front();
}

void StatTracker::popFront(size_t count)
{
    auto const steps = static_cast<std::ptrdiff_t>(std::min(count, mSamples.size()));
    mSamples.erase(mSamples.begin(), std::next(mSamples.begin(), steps));
}

double StatTracker::mean() const
{
    if (!isMeaningful())
        return -1.0;
    return std::accumulate(mSamples.begin(), mSamples.end(), 0.0) / static_cast<double>(mSamples.size());
}

double StatTracker::median() const
{
    if (!isMeaningful())
        return -1.0;
    std::vector<double> samples(mSamples.begin(), mSamples.end());
    return rkml::median(samples);
}

double StatTracker::stddev() const
{
    if (!isMeaningful())
        return -1.0;
    double const centre = mean();
    double squares = 0.0;
    for (double const sample : mSamples)
        squares += (centre - sample) * (centre - sample);
    return std::sqrt(squares / static_cast<double>(mSamples.size()));
}

} // namespace rktl
