#include <gtest/gtest.h>

#include "sync/rkst_Event.h"
#include "sync/rkst_Mutex.h"
#include "sync/rkst_Wait.h"
#include "support/virtual_clock.h"

#include <chrono>
#include <thread>
#include <vector>

using rkst::Event;

TEST(Wait, FirstObjectThatCanBeHadIsObtainedAndTheOthersAreLeftAlone)
{
    Event clear(false, false), first(false, true), second(false, true);
    std::vector<rkst::WaitObject*> const objects = {nullptr, &clear, &first, &second};
    unsigned int index = 77;
    EXPECT_TRUE(rkst::Wait(objects, 0, index));
    EXPECT_EQ(2u, index);
    EXPECT_FALSE(first.wait(0)) << "the wait consumed it";
    EXPECT_TRUE(second.wait(0));

    index = 77;
    EXPECT_FALSE(rkst::Wait(objects, 0, index));
    EXPECT_EQ(77u, index);

    rkst::Mutex mutex(false);
    std::vector<rkst::WaitObject*> const locks = {&mutex};
    EXPECT_TRUE(rkst::Wait(locks, 0, index));
    std::thread([&] { EXPECT_FALSE(mutex.lock(0)); }).join();
    EXPECT_TRUE(mutex.unlock());
}

TEST(Wait, EmptyListWaitsOutItsLimitThoughTheReplaceableClockStandsStill)
{
    VirtualClock const frozen;
    unsigned int index = 0;
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(rkst::Wait({}, 50, index));
    auto const lasted = std::chrono::steady_clock::now() - start;
    EXPECT_GE(lasted, std::chrono::milliseconds(50));
    EXPECT_LT(lasted, std::chrono::milliseconds(2000));
}

// All 32 states of five events, so that each position is moved into each gap.
TEST(Wait, MultipleReportsAllThatAreSignalledByTheirPositionInTheList)
{
    for (unsigned int pattern = 0; pattern < 32; ++pattern) {
        std::vector<Event> events;
        std::array<rkst::WaitObject*, 5> objects;
        for (unsigned int i = 0; i < 5; ++i)
            events.emplace_back(false, (pattern >> i & 1) != 0);
        for (unsigned int i = 0; i < 5; ++i)
            objects[i] = &events[i];
        std::bitset<5> signalled("11111");
        EXPECT_EQ(pattern != 0, rkst::WaitMultiple(objects, 0, signalled));
        EXPECT_EQ(pattern, signalled.to_ulong());
        for (Event const& event : events)
            EXPECT_FALSE(event.wait(0)) << "all that were reported are consumed";
    }
}
