#pragma once

#include <cstdint>

/// The clocks that all intervals and all time stamps come from. They can be replaced as a pair, so that a recording is
/// analysed on its own time and a test moves time by hand. Waits and sleeps of threads are not affected: they stay real.

struct rk_clock {
    /// Monotonic milliseconds, wrapping after 2^32.
    uint32_t (*ticks)();

    /// Wall clock: milliseconds since the Unix epoch.
    int64_t (*wall)();
};

/// The monotonic clock in milliseconds, wrapping: seconds x 1000 + nanoseconds / 1000000; 0 if the clock fails.
uint32_t rk_tickcount();

/// Milliseconds since the Unix epoch.
int64_t rk_wallclock();

/// Replaces both clocks; null goes back to the system's own. The record is copied. To be called while no other thread
/// reads the clock.
void rk_clock_set(rk_clock const* clock);
