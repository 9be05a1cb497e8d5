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
        {"down is not 90", 90, 89, 0, 100, false},
        {"left is 180", 180, 1, -100, 0, true},
        {"down is 270", 270, 1, 0, 100, true},
        {"up and right is 45", 45, 1, 100, -100, true},
        {"360 is 0", 360, 1, 100, 0, true},
        {"725 is 5, and 355 lies 10 away across 0", 725, 15, 1000, 87, true},
        {"15 lies 10 from 5", 5, 15, 1000, -268, true},
        {"348 lies 17 from 5", 5, 15, 1000, 213, false},
        {"340 lies 10 from 350", 350, 15, 1000, 364, true},
        {"0 lies 10 from 350, but beyond a full turn nothing is compared", 350, 15, 1000, 0, false},
        {"as far away as the tolerance is too far", 45, 45, 100, 0, false},
        {"and a degree more is enough", 45, 46, 100, 0, true},
        {"a tolerance of 0 never matches", 0, 0, 100, 0, false},
        {"one of 360 always does", 0, 360, -100, 30, true},
        {"standing still is no heading", 0, 20, 0, 0, false},
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

    // Normalised from (600, 400) to (800, 600); left and right edges belong to it. Another zone takes in frame 10.
    DirectionRun zoned;
    zoned.spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>{0.6f, 0.4f, 0.2f, 0.2f}),
        rkml::Polygon2D<float>(rkml::BoundingBox<float>{950, 400, 100, 200})});
    Points path;
    for (int i = 0; i < 12; ++i)
        path.emplace_back(i * 100, 500);
    EXPECT_EQ("......AAA.A.", zoned.along(path));

    // The centre counts, not the corner: halves are cut.
    DirectionRun centred;
    centred.spy.setZones({rkml::Polygon2D<float>(rkml::BoundingBox<float>{599, 499, 1, 2})});
    alarms.clear();
    for (int i = 0; i < 7; ++i)
        alarms += centred.see([&] { centred.scene.put(7, {i * 100 - 26, 450, 53, 101}); });
    EXPECT_EQ("......A", alarms);

    DirectionRun broken;
    broken.spy.setZones({rkml::Polygon2D<float>(std::vector<rkml::Point2D<float>>{{0.5f, 0.5f}, {0.6f, 0.6f}})});
    broken.along(straight(100, 0, 6));
    EXPECT_EQ("rkml::Polygon2D::contains() - invalid polygon", support::messageOf([&] { broken.see(Point(600, 0)); }));
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
        {"unmatched", [](auto&, Object& object) { object.setState(5); }, "......AAAAAAAAA"},
        {"resurrected", [](auto&, Object& object) { object.setState(4); }, "......AAAAAAAAA"},
        {"purged", [](auto&, Object& object) { object.setState(2); }, "......A.AAAAA.A"},
        {"nascent", [](auto&, Object& object) { object.setState(1); }, "......A.......A"},
        {"static", [](auto&, Object& object) { object.setType("Static"); }, "......A.......A"},
        {"without a path", [](auto&, Object& object) { object = Object(); }, "......A.......A"},
        {"another size of frame", [](DirectionRun& run, auto&) { run.scene.resize(999, 1000); }, "......A......AA"},
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

    // A gap longer than the window leaves a single point, which has no heading, whatever the tolerance.
    DirectionRun gap(0, 400);
    EXPECT_EQ("......", gap.along(straight(100, 0, 6)));
    gap.frames += 10;
    EXPECT_EQ('.', gap.see(Point(9000, 5000)));
}

TEST(Direction, NotConfiguredIsSilent)
{
    Direction spy;
    EXPECT_EQ(0u, spy.getAngle() + spy.getTolerance());
    auto const raises = [](Direction& silent) {
        TrackedScene scene;
        for (int64_t position = 0; position < 3000; position += 200) {
            scene.at(position);
            scene.put(1, {int(position), 0, 0, 0});
            silent.spy(scene.frame);
        }
        rksl::List<Event> events;
        silent.getEvents(events);
        return !events.empty();
    };
    spy.setAngle(0);
    spy.setTimeWindow(rktl::ElapsedTime(1000));
    EXPECT_FALSE(raises(spy));
    spy.setTolerance(10);
    EXPECT_TRUE(raises(spy));
    spy.setTimeWindow(rktl::ElapsedTime(-1));
    spy.reset();
    EXPECT_FALSE(raises(spy));
}

TEST(Direction, XmlTakesWholeDegreesAndTheLastDistance)
{
    Direction const spy("a", "b", 405, 30, rktl::ElapsedTime(2000), 4294967295u);
    rktl::String const xml = spy.toXML();
    size_t const keys = xml.find("</EventSpy>");
    EXPECT_EQ("<DirectionSpy><EventSpy><name>a</name>", xml.substr(0, 38));
    EXPECT_EQ("</EventSpy><angle>45</angle><tolerance>4294967295</tolerance><time-window "
              "unit=\"second\">2</time-window></DirectionSpy>",
        xml.substr(keys));
    EXPECT_EQ("", spy.toXML(nullptr));

    Direction read;
    ASSERT_TRUE(read.fromXML(xml.c_str()));
    EXPECT_EQ(xml, read.toXML());
    EXPECT_EQ(30u, read.getMinDistance());

    ASSERT_TRUE(read.fromXML("<x><min-distance>8</min-distance><other/><EventSpy><min-distance>9</min-distance></EventSpy></x>"));
    EXPECT_EQ(9u, read.getMinDistance());
    EXPECT_EQ(45u, read.getAngle()); // what is not named stays
    ASSERT_TRUE(read.fromXML("<x><EventSpy><min-distance>9</min-distance></EventSpy><min-distance>8</min-distance>"
                             "<angle>-1</angle><tolerance>725</tolerance></x>"));
    EXPECT_EQ(8u, read.getMinDistance());
    EXPECT_EQ(255u, read.getAngle()); // 4294967295 modulo 360
    EXPECT_EQ(725u, read.getTolerance());
    for (char const* refused : {"", "<x/>", "no xml", "<x><EventSpy/></x>"})
        EXPECT_FALSE(read.fromXML(refused)) << refused;
}

TEST(Direction, BinaryAnglesAreTextInRadians)
{
    Direction spy("name", "desc", 45, 100, rktl::ElapsedTime(2000), 15);
    spy.setMinAge(rktl::ElapsedTime(1500));
    support::Bytes const bytes = support::toBin(spy);
    rksl::MemIOStream form;
    form << rktl::String("name") << rktl::UUID() << rktl::String("desc") << rktl::ElapsedTime(300000) << rktl::Integer(0)
         << rktl::Integer(0) << rktl::String("alarm") << rksl::StringMap<rktl::String>();
    form << rksl::List<rkml::Polygon2D<float>>() << rksl::List<rktl::String>() << rktl::Double(1.0) << rktl::Double(1.0)
         << rktl::ElapsedTime(1500) << rktl::Integer(100) << rktl::Integer(0);
    form << rktl::String("0.785398") << rktl::String("0.261799") << rktl::ElapsedTime(2000);
    EXPECT_EQ(support::toBin(form), bytes);

    Direction read;
    EXPECT_EQ(bytes.size(), support::fromBin(read, bytes));
    EXPECT_EQ(spy.toXML(), read.toXML());
    EXPECT_EQ(bytes, support::toBin(read));
    support::expectEveryPrefixThrows<Direction>(bytes);
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
