#include "misc/rk_clock.h"

#include <time.h>

namespace {

uint32_t systemTicks()
{
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0)
        return 0;
    return static_cast<uint32_t>(now.tv_sec) * 1000u + static_cast<uint32_t>(now.tv_nsec / 1000000);
}

int64_t systemWall()
{
    timespec now;
    if (clock_gettime(CLOCK_REALTIME, &now) != 0)
        return 0;
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

constexpr rk_clock systemClock = {systemTicks, systemWall};
rk_clock currentClock = systemClock;

} // namespace

uint32_t rk_tickcount()
{
    return currentClock.ticks();
}

int64_t rk_wallclock()
{
    return currentClock.wall();
}

void rk_clock_set(rk_clock const* clock)
{
    currentClock = clock ? *clock : systemClock;
}
