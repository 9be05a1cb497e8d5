#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/Idle.h"

#include <functional>

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

TEST(Idle, ZoneHoldsTheMean)
{
    // Columns 495 to 505: after four steps of 4 the newest place is out of it, the mean is not.
    IdleRun zoned;
    zoned.spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>{495, 0, 10, 1000})});
    EXPECT_EQ("......AA", zoned.through({500, 500, 500, 500, 500, 500, 506, 506}));
    IdleRun beside;
    beside.spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>{0, 0, 499, 1000})});
    EXPECT_EQ(".........", beside.through(drifting(0, 9)));
}

TEST(Idle, WhatKeepsAnObjectAndWhatLosesIt)
{
    struct {
        char const* why;
        std::function<void(IdleRun&, Object&)> happens; // in frame 7
        char const* alarms;                             // of frames 6 to 14
    } const cases[] = {
        {"nothing", [](auto&, auto&) {}, "AAAAAAAAA"},
        {"unmatched", [](auto&, Object& object) { object.setState(5); }, "AAAAAAAAA"},
        {"static", [](auto&, Object& object) { object.setType("Static"); }, "AAAAAAAAA"},
        {"purged", [](auto&, Object& object) { object.setState(2); }, "A.AAAAAAA"},
        {"nascent", [](auto&, Object& object) { object.setState(1); }, "A.......A"},
        {"gone for a frame", [](IdleRun& run, auto&) { run.scene.frame.getObjects().clear(); }, "A.......A"},
        {"too high",
            [](IdleRun& run, auto&) {
                run.scene.put(7, {490, 490, 20, 51});
            },
            "A.......A"},
        {"reset", [](IdleRun& run, auto&) { run.spy.reset(); }, "A......AA"},
    };
    for (auto const& c : cases) {
        IdleRun run;
        run.spy.setMaxHeight(0.05f);
        std::string alarms;
        for (int i = 0; i < 15; ++i)
            alarms += run.see([&] {
                Object& object = run.scene.put(7, {490, 490, 20, 20});
                object.setState(Object::tracked);
                object.setType("Moving");
                if (i == 7)
                    c.happens(run, object);
            });
        EXPECT_EQ(c.alarms, alarms.substr(6)) << c.why;
    }
}

TEST(Idle, SilentSettings)
{
    struct {
        int64_t wait;
        int movement;
        char const* fault;
    } const cases[] = {
        {1000, -1, "movement: -1 pixels are less than standing still"},
        {1000, -7, "movement: -7 pixels are less than standing still"}, {-1, 10, "wait-time: no object stays for 0 or less"},
        {0, 10, "wait-time: no object stays for 0 or less"}, // the place before is older than the window at once
    };
    for (auto const& c : cases) {
        IdleRun run(c.wait, c.movement);
        EXPECT_EQ("........", run.through(drifting(0, 8))) << c.wait << c.movement;
        std::vector<rktl::String> faults;
        run.spy.findFaults(faults);
        EXPECT_EQ(std::vector<rktl::String>{c.fault}, faults);
    }
    EXPECT_EQ("......A", IdleRun(1000, 0).through(drifting(0, 7)));
}

TEST(Idle, FormsKeepTimeAndMovement)
{
    Idle spy;
    expectBothFormsSurvive(spy);
    spy = Idle("idle", "", rktl::ElapsedTime(80000), 12);
    expectBothFormsSurvive(spy);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><wait-time unit=\"second\">80</wait-time><movement>12</movement></IdleSpy>",
        xml.substr(xml.find("</EventSpy>")));
    rksl::MemIOStream form;
    form << rktl::ElapsedTime(80000) << rktl::String("12");
    expectBinaryTail(spy, form);
    ASSERT_TRUE(spy.fromXML("<x><movement>7</movement></x>"));
    EXPECT_EQ(rktl::ElapsedTime(80000), spy.getWaitTime());
    EXPECT_EQ(7, spy.getMovement());
}
