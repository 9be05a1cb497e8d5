#include <gtest/gtest.h>

#include "math/rktl_StatTracker.h"
#include "support/virtual_clock.h"

#include <cmath>

using rktl::StatTracker;

namespace {

void measure(StatTracker& tracker, VirtualClock& clock, std::vector<uint32_t> const& milliseconds)
{
    for (uint32_t const duration : milliseconds) {
        tracker.start();
        clock.advance(duration);
        tracker.stop();
    }
}

} // namespace

TEST(StatTracker, NeedsThreeSamples)
{
    VirtualClock clock(0, 4294967290u); // the tick wraps within the samples
    StatTracker tracker;
    measure(tracker, clock, {4, 9});
    EXPECT_EQ(-1.0, tracker.mean());
    EXPECT_EQ(-1.0, tracker.median());
    EXPECT_EQ(-1.0, tracker.stddev());
    measure(tracker, clock, {2});
    EXPECT_EQ(5.0, tracker.mean());
    EXPECT_EQ(4.0, tracker.median());
    EXPECT_EQ(std::sqrt(26.0 / 3.0), tracker.stddev()); // 1 + 16 + 9, over all three
    measure(tracker, clock, {3});
    EXPECT_EQ(3.5, tracker.median());
    measure(tracker, clock, {7});
    EXPECT_EQ(4.0, tracker.median());
}

TEST(StatTracker, DropsTheOldestBeyondItsLimitAndOnDemand)
{
    VirtualClock clock;
    StatTracker tracker(4);
    measure(tracker, clock, {100, 1, 2, 3, 4});
    EXPECT_EQ(4u, tracker.size());
    EXPECT_EQ(2.5, tracker.mean());
    tracker.popFront(1);
    EXPECT_EQ(3.0, tracker.mean());
    tracker.popFront(10);
    EXPECT_EQ(0u, tracker.size());

    StatTracker byDefault;
    measure(byDefault, clock, std::vector<uint32_t>(1001, 1));
    EXPECT_EQ(1000u, byDefault.size());
}
