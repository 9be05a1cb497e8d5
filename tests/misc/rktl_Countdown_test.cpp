#include <gtest/gtest.h>

#include "misc/rktl_Countdown.h"
#include "misc/rktl_FpsCalculator.h"
#include "support/virtual_clock.h"

using rktl::Countdown;
using rktl::ElapsedTime;
using rktl::FpsCalculator;
using rktl::TimeStamp;

TEST(Countdown, ExpiresAfterItsPeriodWhereverTheTickStands)
{
    for (uint32_t const tick : {0u, 1u, 4294967290u}) { // the last one wraps around
        SCOPED_TRACE(tick);
        VirtualClock clock(0, tick);
        Countdown countdown(100);
        clock.advance(99);
        EXPECT_FALSE(countdown.hasExpired());
        clock.advance(1);
        EXPECT_TRUE(countdown.hasExpired());
        countdown.restart();
        EXPECT_FALSE(countdown.hasExpired());
        countdown.expire();
        EXPECT_TRUE(countdown.hasExpired());
    }
    EXPECT_TRUE(Countdown().hasExpired()) << "a period of 0";
}

TEST(Countdown, AllOnesNeverExpiresAndOfASpanTheLowBitsCount)
{
    VirtualClock clock;
    Countdown countdown;
    countdown.start(ElapsedTime(-1));
    countdown.expire();
    clock.advance(0x7fffffff);
    EXPECT_FALSE(countdown.hasExpired());
    countdown.start(ElapsedTime((int64_t(1) << 32) + 5));
    EXPECT_FALSE(countdown.hasExpired());
    clock.advance(5);
    EXPECT_TRUE(countdown.hasExpired());
}

TEST(FpsCalculator, CountsEntriesOverTheirSpan)
{
    FpsCalculator fps(10);
    EXPECT_EQ(-1.0, fps.calcFps());
    fps.update(TimeStamp(100, 0, true));
    EXPECT_EQ(0.0, fps.calcFps());
    for (int second = 101; second <= 110; ++second)
        fps.update(TimeStamp(second, 0, true));
    EXPECT_EQ(11 / 10.0, fps.calcFps());
    fps.update(TimeStamp(110, 500, true)); // pushes the first one out: 11 entries in 9.5 s
    EXPECT_EQ(11 / 9.5, fps.calcFps());
    fps.setTimeWindow(0);
    EXPECT_EQ(11 / 9.5, fps.calcFps());
}
