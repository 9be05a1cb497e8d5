#pragma once

#include "misc/rk_clock.h"
#include "misc/rktl_ElapsedTime.h"

#include <cstdint>

namespace rktl {

/// A timer that is asked, not one that calls. Runs on rk_tickcount, wrap-around included.
class Countdown {
public:
    /// A period that never runs out.
    static constexpr uint32_t NEVER = 0xffffffffu;

    /// period: milliseconds; starts now.
    explicit Countdown(uint32_t period = 0)
        : mPeriod(period)
        , mStartTick(rk_tickcount())
    {
    }
    virtual ~Countdown() = default;
    Countdown(Countdown const&) = default;
    Countdown& operator=(Countdown const&) = default;

    /// From now on, with a new period. Of a span only the low 32 bits of its milliseconds are kept.
    void start(uint32_t period)
    {
        mPeriod = period;
        restart();
    }
    void start(ElapsedTime const& period) { start(static_cast<uint32_t>(period.toMilliseconds())); }

    /// From now on, with the same period.
    void restart() { mStartTick = rk_tickcount(); }

    /// Ends the present period at once.
    void expire() { mStartTick = rk_tickcount() - mPeriod; }

    bool hasExpired() const { return mPeriod != NEVER && rk_tickcount() - mStartTick >= mPeriod; }

private:
    uint32_t mPeriod;    // ms
    uint32_t mStartTick; // ms
};

} // namespace rktl
