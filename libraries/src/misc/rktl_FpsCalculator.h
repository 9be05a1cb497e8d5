#pragma once

#include "misc/rktl_TimeQueue.h"

namespace rktl {

/// Frames per second over a sliding window of time.
class FpsCalculator {
public:
    /// seconds: length of the window.
    explicit FpsCalculator(unsigned int seconds);

    /// Begins anew with another window; 0 changes nothing.
    void setTimeWindow(unsigned int seconds);

    /// One frame at that time.
    void update(TimeStamp const& time);

    /// Frames in the window, divided by the seconds between the oldest and the newest of them; 0.0 where these are one moment,
    /// -1.0 before the first frame.
    double calcFps() const;

    /// Forgets the frames, keeps the window.
    void reset();

private:
    TimeQueue<bool> mFrames;
};

} // namespace rktl
