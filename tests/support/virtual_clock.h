#pragma once

#include "misc/rk_clock.h"

#include <atomic>
#include <cstdint>

/// While one of these lives, rk_tickcount and rk_wallclock stand still and move only when the test moves them. Only one at a
/// time. Threads of the code under test may read the clocks; they must have ended when this goes.
class VirtualClock {
public:
    /// wall: milliseconds of the Unix epoch.
    explicit VirtualClock(int64_t wall = 1700000000000, uint32_t ticks = 1000)
    {
        sWall = wall;
        sTicks = ticks;
        rk_clock const clock = {[] { return sTicks.load(); }, [] { return sWall.load(); }};
        rk_clock_set(&clock);
    }
    ~VirtualClock() { rk_clock_set(nullptr); }
    VirtualClock(VirtualClock const&) = delete;
    VirtualClock& operator=(VirtualClock const&) = delete;

    /// Both clocks go on together.
    void advance(uint32_t milliseconds)
    {
        sWall += milliseconds;
        sTicks += milliseconds;
    }
    void setWall(int64_t milliseconds) { sWall = milliseconds; }
    void setTicks(uint32_t milliseconds) { sTicks = milliseconds; }

private:
    static inline std::atomic<int64_t> sWall = 0;
    static inline std::atomic<uint32_t> sTicks = 0;
};
