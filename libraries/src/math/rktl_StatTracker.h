#pragma once

#include "misc/rktl_NodeAllocator.h"

#include <cstddef>
#include <cstdint>
#include <list>

namespace rktl {

/// How long a step takes: a bounded number of measurements in milliseconds of rk_tickcount, and their statistics.
class StatTracker {
public:
    explicit StatTracker(uint32_t maxSamples = 1000)
        : mMaxSamples(maxSamples)
    {
    }
    virtual ~StatTracker() = default;
    StatTracker(StatTracker const&) = default;
    StatTracker& operator=(StatTracker const&) = default;

    /// The step begins.
    void start();

    /// The step is done: keeps the time since start, and drops the oldest sample when there are more than the limit.
    void stop();

    /// Removes up to count of the oldest samples.
    void popFront(size_t count);

    size_t size() const { return mSamples.size(); }

    /// -1.0 with fewer than 3 samples.
    double mean() const;
    double median() const;
    /// Of the population: the sum of squares is divided by the number of samples.
    double stddev() const;

private:
    bool isMeaningful() const { return mSamples.size() >= 3; }

    uint32_t mMaxSamples;
    uint32_t mStartTick = 0;                           // ms
    std::list<double, NodeAllocator<double>> mSamples; // ms, oldest first
};

} // namespace rktl
