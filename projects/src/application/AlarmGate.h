#pragma once

#include "misc/rktl_Countdown.h"

#include <cstdint>
#include <map>

namespace rktl {
class ElapsedTime;
}

/// Decides which events leave the system. An event that was sent is quiet for a while: what comes under its uid then only
/// prolongs the quiet time. And between two events of any uid lies at least the grace period.
///
/// Runs on rk_tickcount. Not thread-safe; belongs to the thread that handles events.
class AlarmGate {
public:
    static constexpr uint32_t quietTime = 15000; // ms

    /// Begins with a grace period of 0, which holds nothing back.
    AlarmGate() = default;

    /// Only the low 32 bits of the milliseconds are kept. The next event is not held back by it.
    void setGracePeriod(rktl::ElapsedTime const& period);

    /// Whether the event may be sent. If it was, sent must follow; after a failure nothing, and it is as if there had been no
    /// event. A uid whose quiet time is over is still quiet when it is the first to ask again: time is only taken into account
    /// after an event.
    bool mayPass(uint32_t uid);

    void sent(uint32_t uid);

private:
    void forgetExpired();

    std::map<uint32_t, rktl::Countdown> mEventTimers; // by uid
    rktl::Countdown mGracePeriod;
};
