#include "camera/DayNight.h"

#include "camera/QuietThread.h"

#include <chrono>

namespace camera {

DayNight::DayNight(std::vector<DayNightStep> steps, csdk_settings_record const& settings)
    : mSteps(std::move(steps))
    , mSettings(settings)
    , mMode(mSteps.front().mode)
{
    if (mSteps.size() > 1)
        mThread = startQuietThread([this] { run(); });
}

DayNight::~DayNight()
{
    {
        std::lock_guard const lock(mMutex);
        mStopping = true;
    }
    mStop.notify_all();
    if (mThread.joinable())
        mThread.join();
}

void DayNight::run()
{
    auto const start = std::chrono::steady_clock::now();
    for (size_t i = 1; i < mSteps.size(); ++i) {
        {
            std::unique_lock lock(mMutex);
            if (mStop.wait_until(lock, start + std::chrono::milliseconds(mSteps[i].time), [this] { return mStopping; }))
                return;
        }
        mMode = mSteps[i].mode;
        tell(mSteps[i].mode);
    }
}

void DayNight::tell(csdk_daynight mode) const
{
    if (mSettings.callbacks_enabled != 1)
        return;
    if (mSettings.on_daynight != nullptr)
        mSettings.on_daynight(mode);
    if (mSettings.on_ircut != nullptr)
        mSettings.on_ircut(mode == CSDK_DAY);
    if (mSettings.on_irled != nullptr)
        mSettings.on_irled(mode == CSDK_NIGHT);
}

} // namespace camera
