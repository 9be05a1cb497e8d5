#include "BaseClasses/StepStatistics.h"

#include <sstream>

void StepStatistics::start(std::string_view name)
{
    tracker(name).start();
}

void StepStatistics::stop(std::string_view name)
{
    tracker(name).stop();
}

void StepStatistics::dump(std::function<void(rktl::String const&)> const& log)
{
    constexpr size_t startUpSamples = 10;
    for (auto& [name, tracker] : mSteps) {
        tracker.popFront(startUpSamples);
        std::ostringstream line;
        line << std::string_view(name) << " -- mean: " << tracker.mean() << ", median: " << tracker.median()
             << ", samples: " << tracker.size();
        log(line.str());
    }
}

rktl::StatTracker& StepStatistics::tracker(std::string_view name)
{
    auto const found = mSteps.find(name);
    return found != mSteps.end() ? found->second : mSteps.try_emplace(rktl::String(name)).first->second;
}
