#pragma once

#include "math/rktl_StatTracker.h"
#include "misc/rktl_String.h"

#include <functional>
#include <map>
#include <string_view>

/// Durations of named steps in milliseconds. Belongs to one thread.
class StepStatistics {
public:
    /// The step begins now.
    void start(std::string_view name);

    /// The step begun last under that name is done. A step that failed is simply not stopped, and leaves no sample.
    void stop(std::string_view name);

    /// Drops the 10 oldest samples of each step, those of a start-up, and gives log one line for each step, in name order:
    /// "NAME -- mean: MS, median: MS, samples: N".
    void dump(std::function<void(rktl::String const&)> const& log);

private:
    rktl::StatTracker& tracker(std::string_view name);

    std::map<rktl::String, rktl::StatTracker, std::less<>> mSteps;
};
