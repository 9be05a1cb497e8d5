#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/LineCrossingSpy.h"

#include <functional>

namespace {

using Segment = rkml::LineSegment2D<float>;
using Box = rkml::BoundingBox<int>;
using Centres = std::vector<rkml::Point2D<int>>;

Segment const upright({500, 250}, {500, 750});
Segment const flat({250, 500}, {750, 500});

Box boxAt(int x, int y, int size = 20)
{
    return {x - size / 2, y - size / 2, size, size};
}

/// Frames of 1000 x 1000; neither age nor distance is asked for. The first frame only enters the object.
struct CrossingRun : SpyRun<LineCrossingSpy> {
    explicit CrossingRun(Segment const& line = upright, bool whole = true, int direction = 0)
        : SpyRun("line", "", line, 0)
    {
        spy.setCrossLine(whole);
        EXPECT_TRUE(spy.setDirection(direction));
        spy.setMinAge(rktl::ElapsedTime());
    }

    std::string through(Centres const& centres)
    {
        std::vector<Box> boxes;
        for (auto const& centre : centres)
            boxes.push_back(boxAt(centre.x, centre.y));
        return along(boxes);
    }
};

} // namespace

TEST(LineCrossingSpy, WholeObjectOrAnyPointAcrossTheSegment)
{
    struct {
        char const* why;
        Centres path;
        char const* whole;
        char const* anyPoint;
    } const cases[] = {
        {"all of it over, and it stands there", {{440, 500}, {520, 500}, {530, 510}}, ".AA", ".AA"},
        {"from the other side", {{560, 500}, {480, 500}}, ".A", ".A"},
        {"its right corners only", {{440, 500}, {495, 500}, {494, 500}}, "...", ".AA"},
        {"over and back", {{440, 500}, {520, 500}, {440, 500}, {520, 500}}, ".A.A", ".A.A"},
        {"in two steps", {{440, 500}, {495, 500}, {515, 500}}, "..A", ".AA"},
        {"above the segment", {{440, 100}, {520, 100}}, "..", ".."},
        {"past its end by the corners only", {{440, 745}, {520, 745}}, ".A", ".A"},
        {"past its end by the centre", {{440, 755}, {520, 755}}, "..", ".A"},
        {"along it", {{440, 300}, {440, 700}}, "..", ".."},
        {"along it, astride", {{495, 300}, {495, 700}}, "..", ".."},
        {"from above the end to across, the centre at 752", {{440, 722}, {520, 762}}, "..", ".A"}, // two corners at 737, 747
        {"a centre on the segment puts the judgement off", {{440, 500}, {500, 500}, {560, 500}}, "..A", "..A"},
        {"and a corner does, on its last pixel too", {{440, 500}, {490, 740}, {480, 500}}, "...", "..."},
        {"landed on it and gone back", {{440, 500}, {500, 500}, {440, 500}}, "...", "..."},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.whole, CrossingRun(upright, true).through(c.path)) << c.why;
        EXPECT_EQ(c.anyPoint, CrossingRun(upright, false).through(c.path)) << c.why;
        // The sides of the line do not depend on which end comes first.
        EXPECT_EQ(c.whole, CrossingRun({upright.second(), upright.first()}, true).through(c.path)) << c.why;
    }
}

TEST(LineCrossingSpy, DirectionNamesTheSideToEndOn)
{
    Segment const diagonal({250, 250}, {750, 750}), steep({400, 250}, {600, 750}); // of 45 degrees, and more
    struct {
        char const* why;
        Segment line;
        int direction;
        Centres path;
        char const* alarms;
    } const cases[] = {
        {"to the right", upright, 1, {{440, 500}, {520, 500}, {530, 500}}, ".AA"},
        {"to the right, but left is asked for", upright, 2, {{440, 500}, {520, 500}, {530, 500}}, "..."},
        {"to the left", upright, 2, {{560, 500}, {480, 500}}, ".A"},
        {"to the left, but right is asked for", upright, 1, {{560, 500}, {480, 500}}, ".."},
        {"over, then back to where it began", upright, 2, {{440, 500}, {520, 500}, {440, 500}}, "..."},
        {"down", flat, 1, {{500, 440}, {500, 520}}, ".A"},
        {"up", flat, 2, {{500, 560}, {500, 480}}, ".A"},
        {"down, but up is asked for", flat, 2, {{500, 440}, {500, 520}}, ".."},
        {"45 degrees still count as flat: up", diagonal, 2, {{500, 560}, {500, 440}}, ".A"},
        {"which is to the right of that line", diagonal, 2, {{440, 500}, {560, 500}}, ".A"},
        {"steeper: to the left", steep, 2, {{560, 500}, {440, 500}}, ".A"},
        {"steeper: to the right", steep, 2, {{440, 500}, {560, 500}}, ".."},
    };
    for (auto const& c : cases)
        for (bool whole : {true, false})
            for (bool turned : {true, false}) {
                Segment const line = turned ? Segment(c.line.second(), c.line.first()) : c.line;
                EXPECT_EQ(c.alarms, CrossingRun(line, whole, c.direction).through(c.path)) << c.why << whole << turned;
            }
    // Where one point is enough it has to be on that side; where the whole has to pass only the centre does.
    EXPECT_EQ(".A", CrossingRun(upright, false, 1).through({{440, 500}, {495, 500}}));
    EXPECT_EQ("..", CrossingRun(upright, false, 2).through({{440, 500}, {495, 500}}));
}

TEST(LineCrossingSpy, DistanceAgeAndSizeAreReachedExactly)
{
    CrossingRun far;
    far.spy.setMinDistance(100);
    EXPECT_EQ("..AA", far.through({{440, 500}, {539, 500}, {540, 500}, {515, 500}})) << "the largest travel stays";

    CrossingRun old;
    old.spy.setMinAge(rktl::ElapsedTime(400));
    EXPECT_EQ("..A", old.through({{440, 500}, {520, 500}, {520, 500}}));

    CrossingRun small;
    small.spy.setMaxWidth(0.02f);
    small.spy.setMaxHeight(0.02f);
    EXPECT_EQ("...A", small.along({boxAt(440, 500), {510, 490, 21, 20}, {510, 490, 20, 21}, boxAt(520, 500)}));
}

TEST(LineCrossingSpy, ANewObjectComesFromItsBirthUnlessItIsOlderThanTheSpy)
{
    CrossingRun born;
    EXPECT_EQ('.', born.see([] {}));
    EXPECT_EQ('.', born.see([&] { born.scene.put(7, boxAt(440, 500)).setState(Object::nascent); }));
    EXPECT_EQ('.', born.see([&] { born.scene.put(7, boxAt(520, 500)).setState(Object::tracked); })) << "entered";
    EXPECT_EQ('A', born.see([&] { born.scene.put(7, boxAt(521, 500)); }));

    CrossingRun older;
    older.scene.put(7, boxAt(440, 500));
    older.frames = 1;
    EXPECT_EQ("..", older.through({{520, 500}, {521, 500}}));
}

TEST(LineCrossingSpy, WhatKeepsAnObjectAndWhatLosesIt)
{
    struct {
        char const* why;
        std::function<void(CrossingRun&, Object&)> happens; // in the third frame
        char const* alarms;
    } const cases[] = {
        {"nothing", [](auto&, auto&) {}, ".AAAA"},
        {"unmatched", [](auto&, Object& object) { object.setState(5); }, ".AAAA"},
        {"purged", [](auto&, Object& object) { object.setState(2); }, ".A.AA"},
        {"nascent: entered again with its birth box", [](auto&, Object& object) { object.setState(1); }, ".A..A"},
        {"static", [](auto&, Object& object) { object.setType("Static"); }, ".A..A"},
        {"another size of frame: older than the spy now", [](CrossingRun& run, auto&) { run.scene.resize(1000, 999); }, ".A..."},
        {"a frame without size", [](CrossingRun& run, auto&) { run.scene.resize(0, 1000); }, ".A..."},
        {"reset", [](CrossingRun& run, auto&) { run.spy.reset(); }, ".A..."},
        {"another line",
            [](CrossingRun& run, auto&) {
                run.spy.setLineSegment({{510, 0}, {510, 999}});
            },
            ".A.AA"},
        {"a line without length", [](CrossingRun& run, auto&) { run.spy.setLineSegment(Segment()); }, ".A.AA"},
    };
    for (auto const& c : cases) {
        CrossingRun run;
        std::string alarms;
        for (int x : {440, 540, 541, 542, 543})
            alarms += run.see([&] {
                run.scene.resize(1000, 1000);
                Object& object = run.scene.put(7, boxAt(x, 500));
                object.setState(Object::tracked);
                object.setType("Moving");
                if (run.frames == 3) // this frame is counted already
                    c.happens(run, object);
            });
        EXPECT_EQ(c.alarms, alarms) << c.why;
    }
}

TEST(LineCrossingSpy, SegmentInPixelsOfTheFrame)
{
    float const nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        Segment configured, pixels; // of 640 x 480
        char const* fault;
    } const cases[] = {
        {"normalised", {{0.5f, 0}, {1, 0.25f}}, {{320, 0}, {640, 120}}, ""},
        {"one coordinate above 1 makes all pixels", {{0.5f, 0.4f}, {2, 1}}, {{1, 0}, {2, 1}}, ""},
        {"or one below 0", {{0.5f, -0.5f}, {1, 1}}, {{1, -1}, {1, 1}}, ""},
        {"far away", {{-inf, 7}, {inf, 7}}, {{-2147483648.0f, 7}, {2147483648.0f, 7}},
            "first, second: the line has a coordinate that is no finite number"},
        {"no number", {{nan, 7}, {9, 7}}, {{0, 7}, {9, 7}}, "first, second: the line has a coordinate that is no finite number"},
        {"no length", {{9, 9}, {9, 9}}, {{0, 0}, {0, 0}}, "first, second: a line of no length is crossed by nothing"},
    };
    for (auto const& c : cases) {
        LineCrossingSpy spy("", "", c.configured, 0);
        spy.reserveFrameSize(640, 480);
        EXPECT_EQ(c.pixels.first(), spy.getPixelLine().first()) << c.why;
        EXPECT_EQ(c.pixels.second(), spy.getPixelLine().second()) << c.why;
        std::vector<rktl::String> faults;
        spy.findFaults(faults);
        EXPECT_EQ(*c.fault ? 1u : 0u, faults.size()) << c.why;
        EXPECT_EQ(c.fault, faults.empty() ? "" : faults.front()) << c.why;
    }
    EXPECT_EQ("..", CrossingRun(Segment()).through({{440, 500}, {520, 500}}));
    EXPECT_EQ(".A", CrossingRun({{-100000, 480}, {100000, 480}}, false).through({{440, 500}, {440, 450}}));
    // So far away rounding puts every point on the segment.
    EXPECT_EQ("..", CrossingRun({{-inf, 480}, {inf, 480}}, false).through({{440, 500}, {440, 450}}));
}

TEST(LineCrossingSpy, FormsKeepTheLineAndItsSettings)
{
    LineCrossingSpy spy("gate", "north", {{0.5f, 0.25f}, {0.5f, 0.75f}}, -2);
    spy.setMinAge(rktl::ElapsedTime(2000));
    expectBothFormsSurvive(spy);
    spy.setCrossLine(false);
    spy.setDirection(2);
    expectBothFormsSurvive(spy);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><first x=\"0.5\" y=\"0.25\" /><second x=\"0.5\" y=\"0.75\" /><cross-line>0</cross-line>"
              "<direction>2</direction></LineCrossingSpy>",
        xml.substr(xml.find("</EventSpy>")));
    rksl::MemIOStream form;
    form << rkml::Point2D<float>(0.5f, 0.25f) << rkml::Point2D<float>(0.5f, 0.75f) << rktl::Integer(0) << rktl::Integer(2);
    expectBinaryTail(spy, form);
    expectBothFormsSurvive(LineCrossingSpy());

    LineCrossingSpy const copy(spy);
    EXPECT_EQ(xml, copy.toXML());
}

TEST(LineCrossingSpy, TextReplacesWhatItNamesAndRefusesOtherDirections)
{
    LineCrossingSpy spy("gate", "", upright, 7);
    spy.setMinAge(rktl::ElapsedTime(9));
    ASSERT_TRUE(spy.fromXML("<x><first x=\"1\" y=\"2\"/><min-distance>8</min-distance><direction>1</direction></x>"));
    EXPECT_EQ(rkml::Point2D<float>(0, 0), spy.getSegment().second()) << "a missing point is the corner";
    EXPECT_EQ(8u, spy.getMinDistance());
    EXPECT_EQ(rktl::ElapsedTime(1000), spy.getMinAge());
    ASSERT_TRUE(spy.fromXML("<x><min-age unit=\"second\">3</min-age><cross-line>0</cross-line></x>"));
    EXPECT_EQ(rktl::ElapsedTime(3000), spy.getMinAge());
    EXPECT_EQ(rkml::Point2D<float>(1, 2), spy.getSegment().first()) << "no length: the old line stays";
    EXPECT_FALSE(spy.getCrossLine());
    for (char const* direction : {"3", "-1"}) {
        std::string const text = "<x><first x=\"8\" y=\"8\"/><direction>" + std::string(direction) + "</direction></x>";
        EXPECT_FALSE(spy.fromXML(text.c_str()));
        EXPECT_EQ(rkml::Point2D<float>(1, 2), spy.getSegment().first());
        EXPECT_EQ(1, spy.getDirection());
    }
    support::Bytes bytes = support::toBin(spy);
    bytes[bytes.size() - 4] = 3; // the last number is the direction
    EXPECT_EQ("rksl::Serializable::fromBin() - Failed!", support::thrownBy([&] { support::fromBin(spy, bytes); }));
}
