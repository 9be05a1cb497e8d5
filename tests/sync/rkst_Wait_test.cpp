#include <gtest/gtest.h>

#include "sync/rkst_Event.h"
#include "sync/rkst_Mutex.h"
#include "sync/rkst_Wait.h"

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

// A wake-up that is lost would make a round last to its limit.
TEST(Wait, SleepsUntilAnyOfTheEventsIsSignalled)
{
    Event ping(false, false), pong(false, false), stop(true, false);
    std::thread echo([&] {
        std::vector<rkst::WaitObject*> const objects = {&stop, nullptr, &ping};
        for (unsigned int index = 2; rkst::Wait(objects, 20000, index) && index == 2;)
            pong.signal();
    });
    std::vector<rkst::WaitObject*> const answer = {&pong};
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < 3000; ++i) {
        ping.signal();
        unsigned int index = 0;
        ASSERT_TRUE(rkst::Wait(answer, 20000, index)) << i;
    }
    stop.signal();
    echo.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(15));
}

// Events in the list are not waited for by asking them again and again; a mutex still is.
TEST(Wait, NoticesAMutexAmongEvents)
{
    Event never(false, false);
    rkst::Mutex mutex(false);
    Event locked(true, false), release(true, false);
    std::thread holder([&] {
        mutex.lock(0xFFFFFFFF);
        locked.signal();
        release.wait(20000);
        mutex.unlock();
    });
    locked.wait(20000);
    std::vector<rkst::WaitObject*> const objects = {&never, &mutex};
    unsigned int index = 0;
    EXPECT_FALSE(rkst::Wait(objects, 20, index));
    release.signal();
    EXPECT_TRUE(rkst::Wait(objects, 20000, index));
    EXPECT_EQ(1u, index);
    holder.join();
    mutex.unlock();
}
