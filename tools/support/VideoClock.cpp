#include "support/VideoClock.h"

#include "misc/rk_clock.h"

#include <atomic>

namespace tools {

namespace {

// The clock of the libraries is a pair of plain functions.
std::atomic<uint32_t> theTicks = 0;
std::atomic<int64_t> theWall = 0;

} // namespace

VideoClock::VideoClock()
{
    set(0, 0);
    rk_clock const clock = {[] { return theTicks.load(); }, [] { return theWall.load(); }};
    rk_clock_set(&clock);
}

VideoClock::~VideoClock()
{
    rk_clock_set(nullptr);
}

void VideoClock::set(int64_t position, int64_t wall)
{
    theTicks = uint32_t(position);
    theWall = wall;
}

} // namespace tools
