#pragma once

#include <cstdint>
#include <ctime>

namespace rktl {
class ElapsedTime;
}

namespace rkst {

/// The end of a wait: a limit in milliseconds, counted from construction. 0 means try, 0xFFFFFFFF means no limit.
///
/// It runs on the machine's monotonic clock, not on the wall clock and not on the replaceable clock of misc/rk_clock.h:
/// neither a corrected wall clock nor the clock of a recording can stretch a wait. A plain value.
class Deadline {
public:
    static constexpr unsigned int noLimit = 0xFFFFFFFF;

    explicit Deadline(unsigned int milliseconds);

    /// As toLimit has it.
    explicit Deadline(rktl::ElapsedTime const& limit);

    /// Milliseconds: spans below 0 become 0, those of 0xFFFFFFFF ms or more no limit.
    static unsigned int toLimit(rktl::ElapsedTime const& span);

    /// Milliseconds left, rounded up, so that 0 means that the limit is over; 0xFFFFFFFF without limit.
    unsigned int remaining() const;

    /// What remaining gives, as a span.
    rktl::ElapsedTime remainingTime() const;

    /// The moment on CLOCK_MONOTONIC. Means nothing without limit.
    timespec moment() const;

private:
    bool mUnlimited;
    int64_t mEnd; // CLOCK_MONOTONIC, nanoseconds
};

} // namespace rkst
