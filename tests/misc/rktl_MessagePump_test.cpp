#include <gtest/gtest.h>

#include "misc/rktl_MessagePump.h"

#include <string>

namespace {

constexpr unsigned int patience = 5000; // ms, for what happens at once

std::string drain(rktl::CircularQueue<int>& ring)
{
    std::string entries;
    for (; !ring.isEmpty(); ring.pop())
        entries += std::to_string(ring.front()) + " ";
    return entries;
}

/// Writes down the entries, with its own way to hold up the work and to let it fail.
class TestPump : public rktl::CircularMessagePump<int> {
public:
    using Entry = rktl::ConstSmartPtr<int>;

    explicit TestPump(unsigned int capacity, unsigned int timeout = 0xFFFFFFFF)
        : MessagePump(timeout)
    {
        reserve(capacity);
    }

    ~TestPump() noexcept override { stop(rktl::ElapsedTime(patience)); }

    rkst::Event working{false, false}; // an entry is being worked on
    rkst::Event proceed{true, true};   // the work may end
    rkst::Event fails{false, false};   // the next work fails
    std::string done;                  // to be read while the worker is stopped

protected:
    void pump() override
    {
        while (Entry const entry = peek()) {
            working.signal();
            EXPECT_TRUE(proceed.wait(patience));
            if (fails.wait(0))
                return;
            done += std::to_string(*entry) + " ";
            EXPECT_TRUE(pop(entry));
        }
    }
};

TestPump::Entry entry(int value)
{
    return TestPump::Entry(new int(value));
}

} // namespace

TEST(CircularQueue, FullRingOverwritesItsOldest)
{
    struct {
        unsigned int capacity;
        int pushes;
        char const* kept;
    } const cases[] = {{0, 3, ""}, {1, 2, "2 "}, {2, 2, "1 2 "}, {2, 3, "2 3 "}, {2, 10, "9 10 "}};
    for (auto const& c : cases) {
        rktl::CircularQueue<int> ring(c.capacity);
        for (int i = 1; i <= c.pushes; ++i)
            ring.push(i);
        EXPECT_EQ(c.kept, drain(ring)) << c.pushes << " into " << c.capacity;
    }
}

// From every place of the read position, since that is where a wrap goes wrong.
TEST(CircularQueue, ReserveKeepsTheNewestInTheirOrder)
{
    for (int turned = 0; turned < 5; ++turned) {
        for (auto const& [capacity, kept] : {std::pair(2u, "3 4 "), std::pair(4u, "1 2 3 4 "), std::pair(9u, "1 2 3 4 ")}) {
            rktl::CircularQueue<int> ring(4);
            for (int i = 0; i < turned; ++i) {
                ring.push(0);
                ring.pop();
            }
            for (int i = 1; i <= 4; ++i)
                ring.push(i);
            ring.reserve(capacity);
            EXPECT_EQ(kept, drain(ring)) << turned;
            ring.push(5);
            EXPECT_EQ("5 ", drain(ring));
        }
    }
}

TEST(MessagePump, EntriesWaitForTheStartAndPopTakesOnlyWhatWasSeen)
{
    TestPump pump(2);

    TestPump::Entry const first = entry(1), second = entry(2), third = entry(3);
    EXPECT_TRUE(pump.push(first));
    EXPECT_TRUE(pump.push(second));
    EXPECT_EQ(first, pump.peek());
    EXPECT_TRUE(pump.push(third));
    EXPECT_TRUE(pump.pop(first)) << "overwritten meanwhile, so nothing goes";
    EXPECT_EQ(second, pump.peek());
    EXPECT_EQ(second, pump.pop());
    EXPECT_TRUE(pump.start());
    EXPECT_TRUE(pump.setEvent(0, patience, nullptr));
    EXPECT_TRUE(pump.stop(rktl::ElapsedTime(patience)));
    EXPECT_EQ("3 ", pump.done);
}

TEST(MessagePump, EntryStaysWhileItIsWorkedOnAndIsOverwrittenByNewerOnes)
{
    TestPump pump(2);
    pump.proceed.reset();
    EXPECT_TRUE(pump.start());
    pump.push(entry(1));
    EXPECT_TRUE(pump.working.wait(patience));
    EXPECT_EQ(1, *pump.peek());
    for (int i = 2; i <= 4; ++i)
        pump.push(entry(i));
    pump.proceed.signal();
    EXPECT_TRUE(pump.setEvent(0, patience, nullptr));
    EXPECT_TRUE(pump.stop(rktl::ElapsedTime(patience)));
    EXPECT_EQ("1 3 4 ", pump.done);
}

TEST(MessagePump, FailedWorkKeepsItsEntryForTheIdleRound)
{
    TestPump pump(2, 20);
    pump.fails.signal();
    EXPECT_TRUE(pump.start());
    pump.push(entry(1));
    EXPECT_TRUE(pump.working.wait(patience));
    EXPECT_TRUE(pump.working.wait(patience)) << "tried again after the time-out";
    EXPECT_TRUE(pump.setEvent(0, patience, nullptr));
    EXPECT_TRUE(pump.stop(rktl::ElapsedTime(patience)));
    EXPECT_EQ("1 ", pump.done);
}

TEST(CircularQueue, EntryThatLeftIsNotKeptAliveByTheRing)
{
    struct Witness {
        rkst::Event gone;
        ~Witness() { gone.signal(); }
    };
    using Entry = rktl::ConstSmartPtr<Witness>;
    struct {
        unsigned int capacity;
        int pushes;
        bool popped;
        bool gone;
    } const cases[] = {{3, 1, false, false}, {3, 1, true, true}, {2, 2, false, false}, {2, 3, false, true}, {0, 1, false, true}};
    for (auto const& c : cases) {
        rkst::Event const gone(true, false);
        rktl::CircularQueue<Entry> ring(c.capacity);
        ring.push(Entry(new Witness{gone}));
        for (int i = 1; i < c.pushes; ++i)
            ring.push(Entry(new Witness{rkst::Event(true, false)}));
        if (c.popped)
            ring.pop();
        EXPECT_EQ(c.gone, gone.wait(0)) << c.pushes << " into " << c.capacity;
    }
}
