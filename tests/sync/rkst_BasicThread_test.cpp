#include <gtest/gtest.h>

#include "misc/rktl_ElapsedTime.h"
#include "misc/rktl_Exception.h"
#include "sync/rkst_SimpleThread.h"
#include "sync/rkst_Wait.h"

#include <atomic>
#include <functional>

using rkst::Event;
using rktl::ElapsedTime;

namespace {

constexpr unsigned int patience = 5000; // ms, for what happens at once

/// Runs what the test says.
class TestThread : public rkst::SimpleThread {
public:
    explicit TestThread(std::function<void(TestThread&)> work)
        : mWork(std::move(work))
    {
    }

    ~TestThread() noexcept override { stop(ElapsedTime(patience)); }

    using SimpleThread::process;
    void process() override
    {
        ++runs;
        mWork(*this);
    }

    bool waitForStop() const { return mStopEvent.wait(patience); }
    bool waitForEnd() const { return mNotRunningEvent.wait(patience); }
    bool isIdle() const { return mNotRunningEvent.wait(0); }

    std::atomic<int> runs = 0;

private:
    std::function<void(TestThread&)> mWork;
};

} // namespace

TEST(BasicThread, ExceptionEndsTheThreadWithAReport)
{
    struct {
        std::function<void(TestThread&)> work;
        char const* report;
    } const cases[] = {
        {[](TestThread&) { throw rktl::Exception("no disk"); }, "Caught exception in rkst::BasicThread: no disk\n"},
        {[](TestThread&) { throw 5; }, "Caught unknown exception in rkst::BasicThread.\n"},
    };
    for (auto const& c : cases) {
        TestThread thread(c.work);
        testing::internal::CaptureStdout();
        EXPECT_TRUE(thread.start());
        EXPECT_TRUE(thread.waitForEnd());
        EXPECT_EQ(c.report, testing::internal::GetCapturedStdout());
        EXPECT_TRUE(thread.start()) << "the object is idle again";
    }
}

// The thread ignores the stop event, sleeping or waiting; what it holds is released, and the object works again.
TEST(BasicThread, ThreadThatDoesNotHeedTheStopIsCancelledAndUnwound)
{
    std::function<void()> const stuck[] = {
        [] { rkst::Wait(60000); },
        [] { Event(false, false).wait(0xFFFFFFFF); },
    };
    for (auto const& getStuck : stuck) {
        Event const entered(true, false), unwound(true, false);
        TestThread thread([&](TestThread& self) {
            if (self.runs > 1)
                return;
            struct Guard {
                Event event;
                ~Guard() { event.signal(); }
            } const guard{unwound};
            entered.signal();
            getStuck();
        });
        EXPECT_TRUE(thread.start());
        EXPECT_TRUE(entered.wait(patience));
        EXPECT_FALSE(unwound.wait(0));
        EXPECT_FALSE(thread.stop(ElapsedTime(20)));
        EXPECT_TRUE(unwound.wait(0)) << "stop waits a little for a cancelled thread";
        EXPECT_TRUE(thread.isIdle());
        EXPECT_TRUE(thread.start());
        EXPECT_TRUE(thread.waitForEnd());
        EXPECT_EQ(2, thread.runs);
    }
}

// It computes on where it cannot be cancelled, and ends when the object runs again already.
TEST(BasicThread, LateEndOfACancelledThreadDoesNotEndTheNextRun)
{
    std::atomic<bool> compute = true;
    Event const late(true, false), second(true, false);
    TestThread thread([&](TestThread& self) {
        if (self.runs == 1) {
            pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
            while (compute)
                rkst::Wait(1);
            late.signal();
        } else {
            second.signal();
            EXPECT_TRUE(self.waitForStop());
        }
    });
    EXPECT_TRUE(thread.start());
    EXPECT_FALSE(thread.stop(ElapsedTime(100)));
    EXPECT_TRUE(thread.start());
    EXPECT_TRUE(second.wait(patience));
    compute = false;
    EXPECT_TRUE(late.wait(patience));
    rkst::Wait(20); // for the few instructions that the old thread has left
    EXPECT_FALSE(thread.isIdle());
    EXPECT_TRUE(thread.stop(ElapsedTime(patience)));
}
