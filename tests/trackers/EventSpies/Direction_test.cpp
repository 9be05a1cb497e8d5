#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/bytes.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/Direction.h"

#include <algorithm>
#include <functional>

namespace {

using Point = rkml::Point2D<int>;
using Points = std::vector<Point>;

/// One object, seen every 200 ms by a spy with a window of 1000 ms: the first judgement is that of frame 6, the first whose
/// track spans more than the window; the oldest point is then that of frame 1.
class DirectionRun : public SpyRun<Direction> {
public:
    explicit DirectionRun(unsigned int angle = 0, unsigned int tolerance = 20, unsigned int minDistance = 0)
        : SpyRun("heading", "", angle, minDistance, rktl::ElapsedTime(1000), tolerance)
    {
    }

    using SpyRun<Direction>::see;
    char see(Point const& centre)
    {
        return see([&] { scene.put(7, {centre.x, centre.y, 0, 0}); });
    }

    /// Each point a frame.
    std::string along(Points const& path)
    {
        std::string alarms;
        for (Point const& centre : path)
            alarms += see(centre);
        return alarms;
    }
};

Points straight(int dx, int dy, int count = 7)
{
    Points path;
    for (int i = 0; i < count; ++i)
        path.emplace_back(5000 + i * dx, 5000 + i * dy);
    return path;
}

std::string alarmsOf(unsigned int angle, unsigned int tolerance, Points const& path)
{
    return DirectionRun(angle, tolerance).along(path);
}

} // namespace

TEST(Direction, HeadingsOfThePictureAgainstAngleAndTolerance)
{
    struct {
        char const* why;
        unsigned int angle, tolerance;
        int dx, dy; // of one step
        bool alarms;
    } const cases[] = {
        {"right is 0", 0, 1, 100, 0, true},
        {"y points down, so up is 90", 90, 1, 0, -100, true},
        {"down is 270", 270, 1, 0, 100, true},
        {"725 is 5, and 355 lies 10 away across 0", 725, 15, 1000, 87, true},
        {"348 lies 17 from 5", 5, 15, 1000, 213, false},
        {"0 lies 10 from 350, but beyond a full turn nothing is compared", 350, 15, 1000, 0, false},
        {"as far away as the tolerance is too far", 45, 45, 100, 0, false},
        {"and a degree more is enough", 45, 46, 100, 0, true},
        {"a tolerance of 0 never matches", 0, 0, 100, 0, false},
        {"one of 360 always does", 0, 360, -100, 30, true},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.alarms ? "......A" : ".......", alarmsOf(c.angle, c.tolerance, straight(c.dx, c.dy))) << c.why;
}

// The points judged are those from the second on. Their regression has the slope 44000 / 700000 = 0.063 downwards, 3.6 degrees,
// while the way from the oldest to the newest leads 3 degrees upwards.
TEST(Direction, BothHeadingsMustMatchTheSameValue)
{
    Points const across = {{0, 0}, {0, 1000}, {200, 900}, {400, 950}, {600, 1050}, {800, 1100}, {1000, 948}};
    EXPECT_EQ(".......", alarmsOf(5, 15, across)); // 356.4 against 365, 3 against 5
    Points mirrored;
    for (Point const& point : across)
        mirrored.emplace_back(1000 - point.x, point.y);
    EXPECT_EQ("......A", alarmsOf(185, 15, mirrored)); // 183.6 and 177 against 185
    EXPECT_EQ(".......", alarmsOf(185, 7, mirrored));  // the displacement alone is 8 away
    EXPECT_EQ(".......", alarmsOf(174, 9, mirrored));  // the fitted line alone is 9.6 away
}

TEST(Direction, DistanceAndAgeAreReachedExactly)
{
    // Frame 6 lies 5 steps of (30, 40), 250 pixels, behind the oldest point; the run's start stays there.
    EXPECT_EQ("......AAA", DirectionRun(307, 5, 250).along(straight(30, 40, 9)));
    EXPECT_EQ(".......AA", DirectionRun(307, 5, 251).along(straight(30, 40, 9)));

    for (int64_t const age : {1200, 1201}) {
        DirectionRun run;
        run.spy.setMinAge(rktl::ElapsedTime(age));
        EXPECT_EQ(age == 1200 ? "......AA" : ".......A", run.along(straight(100, 0, 8))) << age;
    }
}

// 100 pixels a frame. The run starts at frame 6 from the point of frame 1, and only from there 1000 pixels are reached in frame
// 11. While the configured heading is another one, nothing matches.
TEST(Direction, RunSurvivesGapsShorterThanTheWindow)
{
    auto const alarmsWithGap = [](int firstAway, int lastAway) {
        DirectionRun run(0, 20, 1000);
        std::string alarms;
        for (Point const& centre : straight(100, 0, 20)) {
            run.spy.setAngle(run.frames >= firstAway && run.frames <= lastAway ? 180 : 0);
            alarms += run.see(centre);
        }
        return alarms;
    };
    EXPECT_EQ("...........AAAAAAAAA", alarmsWithGap(0, 0));
    EXPECT_EQ("...........AAAAAAAAA", alarmsWithGap(7, 10)); // 800 ms behind the match of frame 6
    EXPECT_EQ(".................AAA", alarmsWithGap(7, 11)); // 1000 ms: over; the next starts at frame 12 from that of 7
}

TEST(Direction, FiltersNeitherEndNorExtendARun)
{
    // The limit is 100 of 1000 pixels. The run starts at frame 6 from frame 1, so frame 8 is the first with 700 pixels.
    DirectionRun grown(0, 20, 700);
    grown.spy.setMaxWidth(0.1f);
    grown.spy.setMaxHeight(0.1f);
    std::string alarms;
    for (int i = 0; i < 11; ++i) {
        int const width = i == 7 || i == 9 ? 101 : 100, height = i == 10 ? 101 : 100;
        alarms += grown.see([&] { grown.scene.put(7, {i * 100 - width / 2, 500, width, height}); });
    }
    EXPECT_EQ("........A..", alarms);
}

// Something happens to the object, or to the frame, in frame 7. Where the track is lost, it spans the window again in frame 14,
// or in 13 where frame 7 itself counts. Where only its point is missing, the track of frame 13 begins with that of frame 8, and
// spans no more than the window.
TEST(Direction, WhatKeepsATrackAndWhatLosesIt)
{
    struct {
        char const* why;
        std::function<void(DirectionRun&, Object&)> happens;
        char const* alarms;
    } const cases[] = {
        {"nothing", [](auto&, auto&) {}, "......AAAAAAAAA"},
        {"purged", [](auto&, Object& object) { object.setState(2); }, "......A.AAAAA.A"},
        {"nascent", [](auto&, Object& object) { object.setState(1); }, "......A.......A"},
        {"static", [](auto&, Object& object) { object.setType("Static"); }, "......A.......A"},
        {"without a path", [](auto&, Object& object) { object = Object(); }, "......A.......A"},
        {"reset", [](DirectionRun& run, auto&) { run.spy.reset(); }, "......A......AA"},
    };
    for (auto const& c : cases) {
        DirectionRun run;
        std::string alarms;
        for (Point const& centre : straight(100, 0, 15))
            alarms += run.see([&] {
                Object& object = run.scene.put(7, {centre.x, centre.y, 0, 0});
                object.setState(Object::tracked);
                object.setType("Moving");
                if (run.frames == 8) // frame 7, counted already
                    c.happens(run, object);
            });
        EXPECT_EQ(c.alarms, alarms) << c.why;
    }
}

TEST(Direction, XmlTakesWholeDegreesAndTheLastDistance)
{
    Direction const spy("a", "b", 405, 30, rktl::ElapsedTime(2000), 4294967295u);
    rktl::String const xml = spy.toXML();
    size_t const keys = xml.find("</EventSpy>");
    EXPECT_EQ("</EventSpy><angle>45</angle><tolerance>4294967295</tolerance><time-window "
              "unit=\"second\">2</time-window></DirectionSpy>",
        xml.substr(keys));
    Direction read("", "", 45, 0, rktl::ElapsedTime(1000), 15);
    ASSERT_TRUE(read.fromXML("<x><EventSpy><min-distance>9</min-distance></EventSpy><min-distance>8</min-distance>"
                             "<angle>-1</angle><tolerance>725</tolerance></x>"));
    EXPECT_EQ(8u, read.getMinDistance());
    EXPECT_EQ(255u, read.getAngle()); // 4294967295 modulo 360
    EXPECT_EQ(725u, read.getTolerance());
}

TEST(Direction, BinaryAnglesAreTextInRadians)
{
    Direction spy("name", "desc", 45, 100, rktl::ElapsedTime(2000), 15);
    spy.setMinAge(rktl::ElapsedTime(1500));
    rksl::MemIOStream form;
    form << rktl::String("0.785398") << rktl::String("0.261799") << rktl::ElapsedTime(2000);
    expectBinaryTail(spy, form);
    expectBothFormsSurvive(spy);
}

// Numbers of a foreign form that are none.
TEST(Direction, NumbersThatAreNoneDoNoHarm)
{
    Direction spy("", "", 45, 0, rktl::ElapsedTime(1000), 15);
    support::Bytes bytes = support::toBin(spy);
    std::string const text = "0.785398";
    auto const place = std::search(bytes.begin(), bytes.end(), text.begin(), text.end());
    ASSERT_NE(bytes.end(), place);
    std::string const nan = "nan     ";
    std::copy(nan.begin(), nan.end(), place);
    Direction read;
    support::fromBin(read, bytes);
    EXPECT_EQ(0u, read.getAngle());
}
