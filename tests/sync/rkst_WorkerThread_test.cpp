#include <gtest/gtest.h>

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Exception.h"
#include "sync/rkst_MutexLock.h"
#include "sync/rkst_WorkerThread.h"

#include <atomic>
#include <string>

using rkst::Event;
using rktl::ElapsedTime;

namespace {

constexpr unsigned int patience = 5000; // ms, for what happens at once

/// Writes down what it does: s start, S stop, i initialise, d deinitialise, n new event, t timer.
class Recorder : public rkst::WorkerThread {
public:
    Recorder()
        : WorkerThread(ElapsedTime(0xFFFFFFFFll))
    {
    }

    ~Recorder() noexcept override
    {
        release.signal();
        stop(ElapsedTime(patience));
    }

    std::string trace() const
    {
        rkst::MutexLock const lock(mMutex, patience);
        return mTrace;
    }

    bool isIdle() const { return mNotRunningEvent.wait(0); }
    bool waitForEnd() const { return mNotRunningEvent.wait(patience); }
    using WorkerThread::startTimer;

    Event entered{true, false}; // a handler runs
    Event release{true, true};  // it may return
    std::atomic<bool> fails = false;

protected:
    void onStart() override
    {
        mStopSeen.reset();
        record('s');
    }

    void onStop(ElapsedTime const&) override
    {
        record('S');
        mStopSeen.signal();
    }

    void onInitialize() override { record('i'); }
    void onDeinitialize() override
    {
        EXPECT_TRUE(mStopSeen.wait(patience)); // so that S always comes before d
        record('d');
    }

    void onNewEvent() override { handle('n'); }
    void onTimer() override { handle('t'); }

private:
    void record(char what)
    {
        rkst::MutexLock const lock(mMutex, patience);
        mTrace += what;
    }

    void handle(char what)
    {
        record(what);
        entered.signal();
        EXPECT_TRUE(release.wait(patience));
        if (fails)
            throw rktl::Exception("failed");
    }

    rkst::Mutex mMutex{false};
    Event mStopSeen{true, false};
    std::string mTrace;
};

} // namespace

TEST(WorkerThread, SlotsLeadToTheirHandlersAndAnswerTheCaller)
{
    Recorder worker;

    EXPECT_TRUE(worker.start());
    EXPECT_FALSE(worker.start());
    int result = 77;
    EXPECT_TRUE(worker.setEvent(0, patience, &result));
    EXPECT_EQ(1, result);
    EXPECT_TRUE(worker.setEvent(1, patience, nullptr));
    EXPECT_TRUE(worker.stop(ElapsedTime(patience)));
    EXPECT_FALSE(worker.setEvent(0, 100, &result));
    EXPECT_EQ("sintSd", worker.trace());
}

TEST(WorkerThread, NewEventComesBeforeTimerAndSynchronousCallKeepsItsLimit)
{
    Recorder worker;
    worker.release.reset();
    EXPECT_TRUE(worker.setEvent(1)); // both are there when the worker looks for the first time
    EXPECT_TRUE(worker.setEvent(0));
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.entered.wait(patience));
    int result = 77;
    EXPECT_FALSE(worker.setEvent(0, 30, &result)) << "the handler has not returned";
    EXPECT_FALSE(worker.setEvent(0, 30, &result)) << "the earlier call is still under way";
    EXPECT_EQ(77, result);
    worker.release.signal();
    EXPECT_TRUE(worker.setEvent(1, patience, &result));
    EXPECT_EQ(1, result);
    EXPECT_EQ("sint", worker.trace().substr(0, 4));
}

TEST(WorkerThread, StopDropsEventsThatWereNotServed)
{
    Recorder worker;
    worker.release.reset();
    EXPECT_TRUE(worker.start());
    worker.setEvent(0);
    EXPECT_TRUE(worker.entered.wait(patience));
    worker.setEvent(0);
    worker.setEvent(1);
    EXPECT_FALSE(worker.stop(ElapsedTime(20))) << "the handler does not return";
    EXPECT_TRUE(worker.isIdle());
    worker.release.signal();
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.setEvent(1, patience, nullptr));
    EXPECT_TRUE(worker.stop(ElapsedTime(patience)));
    EXPECT_EQ("sinSsitSd", worker.trace()) << "triggers do not outlive a stop";
}

TEST(WorkerThread, SynchronousCallWorksAgainAfterAHandlerThatThrew)
{
    Recorder worker;
    worker.fails = true;
    EXPECT_TRUE(worker.start());
    int result = 77;
    EXPECT_FALSE(worker.setEvent(0, patience, &result));
    EXPECT_EQ(77, result);
    EXPECT_TRUE(worker.waitForEnd());
    worker.fails = false;
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.setEvent(0, patience, &result));
    EXPECT_EQ(1, result);
}

TEST(WorkerThread, TimerTriggersItsSlotUntilTheStop)
{
    Recorder worker;
    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.startTimer(1, 5));
    EXPECT_FALSE(worker.startTimer(1, 5)) << "it runs already";
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(worker.entered.wait(patience));
        worker.entered.reset();
    }
    EXPECT_TRUE(worker.stop(ElapsedTime(patience)));
    EXPECT_EQ("sittt", worker.trace().substr(0, 5));

    EXPECT_TRUE(worker.start());
    EXPECT_TRUE(worker.startTimer(1, 5)) << "the stop stopped it too";
}
