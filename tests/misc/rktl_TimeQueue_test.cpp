#include <gtest/gtest.h>

#include "misc/rktl_Fifo.h"
#include "misc/rktl_String.h"
#include "misc/rktl_TimeQueue.h"
#include "support/bytes.h"

#include <random>

using rktl::ElapsedTime;
using rktl::TimeQueue;
using rktl::TimeStamp;

namespace {

TimeStamp at(int64_t seconds)
{
    return TimeStamp(1000 + seconds, 0, false);
}

// A window of 10 s; each item is its time, with a letter where it matters.
TimeQueue<std::string> queueOf(std::vector<int> const& seconds)
{
    TimeQueue<std::string> queue(ElapsedTime::fromSeconds(10));
    for (int const second : seconds)
        queue.insert(std::to_string(second), at(second));
    return queue;
}

template <class Iterator> std::string text(Iterator begin, Iterator end)
{
    std::string joined;
    for (; begin != end; ++begin)
        joined += (joined.empty() ? "" : " ") + begin->second;
    return joined;
}

std::string text(TimeQueue<std::string> const& queue)
{
    return text(queue.begin(), queue.end());
}

} // namespace

// A row whose front has gone is used again from its beginning, or moved up, in the middle of all else.
TEST(TimeQueue, DoesTheSameInARow)
{
    TimeQueue<int> blocks(ElapsedTime::fromSeconds(10));
    TimeQueue<int, rktl::Fifo<std::pair<TimeStamp, int>>> row(ElapsedTime::fromSeconds(10));
    std::mt19937 random(7);
    for (int i = 0, now = 0; i < 5000; ++i, now += int(random() % 4)) {
        int const late = random() % 8 == 0 ? int(random() % 15) : 0, pause = random() % 100 == 0 ? 20 : 0;
        now += pause;
        blocks.insert(i, at(now - late));
        row.insert(i, at(now - late));
        if (blocks.size() > 1 && random() % 50 == 0) {
            blocks.erase(std::next(blocks.begin()));
            row.erase(std::next(row.begin()));
        }
        ASSERT_TRUE(std::equal(blocks.begin(), blocks.end(), row.begin(), row.end())) << i;
        ASSERT_EQ(blocks.size(), row.size());
    }
}

TEST(TimeQueue, KeepsOrderAndForgetsBehindTheWindow)
{
    TimeQueue<std::string> queue = queueOf({0, 5, 11});
    EXPECT_EQ("5 11", text(queue));
    queue.insert("late", at(1));
    EXPECT_EQ("late 5 11", text(queue)) << "an old item in front cleans nothing";
    queue.insert("12", at(12));
    EXPECT_EQ("5 11 12", text(queue));
    queue.insert("second 11", at(11));
    EXPECT_EQ("5 11 second 11 12", text(queue));

    TimeQueue<std::string> const copy = queue;
    queue.clean(at(15));
    EXPECT_EQ("5 11 second 11 12", text(queue)) << "exactly one window back stays";
    queue.clean(at(15) + ElapsedTime(1));
    EXPECT_EQ("11 second 11 12", text(queue));
    EXPECT_EQ("5 11 second 11 12", text(copy));
}

TEST(TimeQueue, WillPopSpansEntriesAndTime)
{
    EXPECT_FALSE(queueOf({}).willPop(at(100)));
    TimeQueue<std::string> const queue = queueOf({0, 4});
    EXPECT_FALSE(queue.willPop(at(10)));
    EXPECT_TRUE(queue.willPop(at(10) + ElapsedTime(1)));
    EXPECT_FALSE(queue.willPop(at(-6)));
    EXPECT_TRUE(queue.willPop(at(-6) - ElapsedTime(1))) << "a time before the oldest, from there to the newest";
}

TEST(TimeQueue, TopIsWhatIsOlderThanTheWindow)
{
    TimeQueue<std::string> queue = queueOf({0, 1, 5});
    auto const topAt = [&](int64_t second) {
        auto const range = queue.top(at(second));
        return text(range.first, range.second);
    };
    EXPECT_EQ("", topAt(10));
    EXPECT_EQ("0", topAt(11));
    EXPECT_EQ("0 1 5", topAt(16));
    EXPECT_EQ("", topAt(4)) << "the newest lies behind that time";
    EXPECT_TRUE(queue.top(at(4)).first == queue.end());
}

TEST(TimeQueue, RefusesANegativeWindowAndReadsOfNothing)
{
    using support::messageOf;
    EXPECT_EQ("rkml::TimeQueue::TimeQueue() - time window can not be negative",
        messageOf([] { TimeQueue<int> queue(ElapsedTime(-1)); }));
    TimeQueue<int> const queue((ElapsedTime()));
    EXPECT_EQ("rkml::TimeQueue::newest() - queue is empty", messageOf([&] { queue.newest(); }));
}
