#include <gtest/gtest.h>

#include "sync/rkst_Event.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <pthread.h>
#include <thread>
#include <vector>

using rkst::Event;

namespace {

constexpr unsigned int forever = 0xFFFFFFFF;

/// How many of three threads obtain the event within 300 ms after one signal.
int obtainedBySignal(bool manualReset)
{
    Event const event(manualReset, false);
    std::atomic<int> obtained = 0;
    std::vector<std::thread> waiters;
    for (int i = 0; i < 3; ++i)
        waiters.emplace_back([&] { obtained += event.wait(300); });
    event.signal();
    for (std::thread& waiter : waiters)
        waiter.join();
    return obtained;
}

Event* signalledByHandler = nullptr;
std::atomic<int> handled = 0;

void onSignal(int)
{
    signalledByHandler->signal();
    ++handled;
}

} // namespace

TEST(Event, AutoResetLetsOneWaitThroughAndManualResetAll)
{
    Event const once(false, true);
    EXPECT_TRUE(once.wait(0));
    EXPECT_FALSE(once.wait(0));

    Event const lasting(true, true);
    EXPECT_TRUE(lasting.wait(0));
    EXPECT_TRUE(lasting.wait(forever));
    EXPECT_TRUE(lasting.reset());
    EXPECT_FALSE(lasting.wait(0));

    EXPECT_EQ(1, obtainedBySignal(false));
    EXPECT_EQ(3, obtainedBySignal(true));
}

TEST(Event, WaitLastsAsLongAsItsLimitAndNotMuchLonger)
{
    auto const start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Event(false, false).wait(300)); // longer than the slice in which a waiter looks for its cancellation
    auto const lasted = std::chrono::steady_clock::now() - start;
    EXPECT_GE(lasted, std::chrono::milliseconds(300));
    EXPECT_LT(lasted, std::chrono::milliseconds(2000));
}

// A handler that takes a lock which the interrupted thread holds would never return.
TEST(Event, SignalHandlerMayInterruptAnyOperationOnTheSameEvent)
{
    Event event(false, false);
    signalledByHandler = &event;
    handled = 0;
    struct sigaction action {
    }, before{};
    action.sa_handler = onSignal;
    ASSERT_EQ(0, sigaction(SIGUSR1, &action, &before));

    std::atomic<bool> enough = false;
    std::thread interrupted([&] {
        while (!enough) {
            event.wait(1);
            event.reset();
            event.signal();
        }
    });
    for (int sent = 1; sent <= 300; ++sent) {
        pthread_kill(interrupted.native_handle(), SIGUSR1);
        while (handled < sent)
            std::this_thread::yield();
    }
    enough = true;
    interrupted.join();

    // And it wakes a thread that waits without limit.
    event.reset();
    std::thread waiter([&] { EXPECT_TRUE(event.wait(forever)); });
    raise(SIGUSR1);
    waiter.join();
    sigaction(SIGUSR1, &before, nullptr);
}
