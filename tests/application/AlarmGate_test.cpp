#include "application/AlarmGate.h"

#include "misc/rktl_ElapsedTime.h"
#include "support/virtual_clock.h"

#include <gtest/gtest.h>

namespace {

using rktl::ElapsedTime;

bool offer(AlarmGate& gate, uint32_t uid)
{
    bool const passes = gate.mayPass(uid);
    if (passes)
        gate.sent(uid);
    return passes;
}

TEST(AlarmGate, HoldsBackOtherEventsForTheGracePeriod)
{
    VirtualClock clock(0, 4294967290u); // the ticks wrap within the period
    AlarmGate gate;
    gate.setGracePeriod(ElapsedTime(60000));
    EXPECT_TRUE(offer(gate, 1)); // the first one is not held back
    clock.advance(10000);
    EXPECT_FALSE(offer(gate, 2));
    clock.advance(49999);
    EXPECT_FALSE(offer(gate, 3));
    clock.advance(1);
    EXPECT_TRUE(offer(gate, 2)); // being held back left no quiet time
}

TEST(AlarmGate, KeepsAnEventQuietFrom15SecondsAfterItsLastSign)
{
    VirtualClock clock;
    AlarmGate gate;
    EXPECT_TRUE(offer(gate, 1));
    clock.advance(5000);
    EXPECT_FALSE(offer(gate, 1)); // quiet until 20000
    clock.advance(14999);
    EXPECT_TRUE(offer(gate, 2));
    EXPECT_FALSE(offer(gate, 1)); // 19999; quiet until 34999
    clock.advance(15001);
    EXPECT_FALSE(offer(gate, 1)); // its time is over, but nothing has come since that would have noticed
    clock.advance(15000);
    EXPECT_TRUE(offer(gate, 3)); // notices
    EXPECT_TRUE(offer(gate, 1));
}

TEST(AlarmGate, ForgetsAnEventThatCouldNotBeSent)
{
    VirtualClock clock;
    AlarmGate gate;
    gate.setGracePeriod(ElapsedTime(1000));
    EXPECT_TRUE(gate.mayPass(1));
    EXPECT_TRUE(offer(gate, 1)); // no quiet time and no grace period had begun
    clock.advance(15000);
    EXPECT_TRUE(gate.mayPass(2)); // fails, so that the quiet time of 1 goes unnoticed
    EXPECT_FALSE(offer(gate, 1));
}

} // namespace
