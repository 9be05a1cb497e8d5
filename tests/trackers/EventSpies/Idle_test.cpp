#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/Idle.h"

namespace {

/// 1000 ms to wait and 10 pixels to wander: the first frame whose places span more than the wait time is frame 6, at 1200 ms.
struct IdleRun : SpyRun<Idle> {
    explicit IdleRun(int64_t wait = 1000, int movement = 10)
        : SpyRun("idle", "", rktl::ElapsedTime(wait), movement)
    {
    }

    char standAt(int x, int size = 20)
    {
        return see([&] { scene.put(7, {x - size / 2, 500 - size / 2, size, size}); });
    }
    std::string through(std::vector<int> const& columns)
    {
        std::string alarms;
        for (int x : columns)
            alarms += standAt(x);
        return alarms;
    }
};

std::vector<int> drifting(int step, int count)
{
    std::vector<int> columns;
    for (int i = 0; i < count; ++i)
        columns.push_back(500 + i * step);
    return columns;
}

} // namespace

TEST(Idle, StayingForTheWaitTimeWithinTheMovement)
{
    struct {
        char const* why;
        std::vector<int> columns;
        char const* alarms;
    } const cases[] = {
        {"standing", drifting(0, 8), "......AA"},
        {"just short of the wait time, and away", {500, 500, 500, 500, 500, 500, 700, 700}, "........"},
        {"a step of the whole movement, to and fro", {500, 510, 500, 510, 500, 510, 500}, "......A"},
        {"a longer step starts anew", {500, 500, 500, 500, 511, 511, 511, 511, 511, 511, 511}, "..........A"},
        // Frame 6 holds the places 1 to 6, their mean 3.5 steps behind the origin and 2.5 before the last.
        {"drifting by 4 a frame, 10 from the mean", drifting(4, 8), "......AA"},
        // 13 from the mean of 6 places, 25 / 2 cut from that of 5 makes 13 too: never more than 5 places are kept.
        {"drifting by 5 a frame", drifting(5, 20), "...................."},
        {"walking", drifting(30, 8), "........"},
        // A jump begins another time of waiting, but the alarm goes on until it drifts from there.
        {"jumping after the alarm", {500, 500, 500, 500, 500, 500, 500, 700, 700, 710, 720, 720}, "......AAAA.."},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.alarms, IdleRun().through(c.columns)) << c.why;
}

TEST(Idle, SilentSettings)
{
    struct {
        int64_t wait;
        int movement;
    } const cases[] = {{1000, -1}, {-1, 10}, {0, 10}}; // the place before is older than a window of 0 at once
    for (auto const& c : cases) {
        IdleRun run(c.wait, c.movement);
        EXPECT_EQ("........", run.through(drifting(0, 8))) << c.wait << c.movement;
    }
    EXPECT_EQ("......A", IdleRun(1000, 0).through(drifting(0, 7)));
}

TEST(Idle, FormsKeepTimeAndMovement)
{
    Idle const spy("idle", "", rktl::ElapsedTime(80000), 12);
    expectBothFormsSurvive(spy);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><wait-time unit=\"second\">80</wait-time><movement>12</movement></IdleSpy>",
        xml.substr(xml.find("</EventSpy>")));
    rksl::MemIOStream form;
    form << rktl::ElapsedTime(80000) << rktl::String("12");
    expectBinaryTail(spy, form);
}
