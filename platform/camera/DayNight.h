#pragma once

#include "camera/CameraOptions.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace camera {

/// The camera's light sensor: day and night by a schedule, with an infrared cut filter that is in by day and an infrared light
/// that is on by night. Changes are told to the application's callbacks on a thread of its own; the first mode is not.
class DayNight {
public:
    /// The schedule starts now. settings: copied; its callbacks must work until the object is gone.
    DayNight(std::vector<DayNightStep> steps, csdk_settings_record const& settings);
    ~DayNight();
    DayNight(DayNight const&) = delete;
    DayNight& operator=(DayNight const&) = delete;

    /// From any thread.
    csdk_daynight mode() const { return mMode; }

private:
    void run();
    void tell(csdk_daynight mode) const;

    std::vector<DayNightStep> const mSteps;
    csdk_settings_record const mSettings;
    std::atomic<csdk_daynight> mMode;
    std::mutex mMutex;
    std::condition_variable mStop;
    bool mStopping = false;
    std::thread mThread; // last: it uses all of the above
};

} // namespace camera
