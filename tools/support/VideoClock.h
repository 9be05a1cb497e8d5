#pragma once

#include <cstdint>

namespace tools {

/// While one of these lives, all intervals and time stamps of the system follow a video in place of the real clocks. Only one
/// at a time, and no other thread may read the clocks while it comes or goes.
class VideoClock {
public:
    VideoClock();
    ~VideoClock();
    VideoClock(VideoClock const&) = delete;
    VideoClock& operator=(VideoClock const&) = delete;

    /// position: milliseconds since the first frame. wall: milliseconds since the epoch.
    void set(int64_t position, int64_t wall);
};

} // namespace tools
