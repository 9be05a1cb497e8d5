#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/LineCrossingSpy.h"

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
        {"its right corners only", {{440, 500}, {495, 500}, {494, 500}}, "...", ".AA"},
        {"in two steps", {{440, 500}, {495, 500}, {515, 500}}, "..A", ".AA"},
        {"above the segment", {{440, 100}, {520, 100}}, "..", ".."},
        {"past its end by the corners only", {{440, 745}, {520, 745}}, ".A", ".A"},
        {"past its end by the centre", {{440, 755}, {520, 755}}, "..", ".A"},
        {"along it, astride", {{495, 300}, {495, 700}}, "..", ".."},
        {"from above the end to across, the centre at 752", {{440, 722}, {520, 762}}, "..", ".A"}, // two corners at 737, 747
        {"a centre on the segment puts the judgement off", {{440, 500}, {500, 500}, {560, 500}}, "..A", "..A"},
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
        {"over, then back to where it began", upright, 2, {{440, 500}, {520, 500}, {440, 500}}, "..."},
        {"down", flat, 1, {{500, 440}, {500, 520}}, ".A"},
        {"45 degrees still count as flat: up", diagonal, 2, {{500, 560}, {500, 440}}, ".A"},
        {"steeper: to the left", steep, 2, {{560, 500}, {440, 500}}, ".A"},
    };
    for (auto const& c : cases)
        for (bool whole : {true, false})
            for (bool turned : {true, false}) {
                Segment const line = turned ? Segment(c.line.second(), c.line.first()) : c.line;
                EXPECT_EQ(c.alarms, CrossingRun(line, whole, c.direction).through(c.path)) << c.why << whole << turned;
            }
}

TEST(LineCrossingSpy, SegmentInPixelsOfTheFrame)
{
    float const nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        Segment configured, pixels; // of 640 x 480
    } const cases[] = {
        {"normalised", {{0.5f, 0}, {1, 0.25f}}, {{320, 0}, {640, 120}}},
        {"one coordinate above 1 makes all pixels", {{0.5f, 0.4f}, {2, 1}}, {{1, 0}, {2, 1}}},
        {"or one below 0", {{0.5f, -0.5f}, {1, 1}}, {{1, -1}, {1, 1}}},
        {"far away", {{-inf, 7}, {inf, 7}}, {{-2147483648.0f, 7}, {2147483648.0f, 7}}},
        {"no number", {{nan, 7}, {9, 7}}, {{0, 7}, {9, 7}}},
        {"no length", {{9, 9}, {9, 9}}, {{0, 0}, {0, 0}}},
    };
    for (auto const& c : cases) {
        LineCrossingSpy spy("", "", c.configured, 0);
        spy.reserveFrameSize(640, 480);
        EXPECT_EQ(c.pixels.first(), spy.getPixelLine().first()) << c.why;
        EXPECT_EQ(c.pixels.second(), spy.getPixelLine().second()) << c.why;
    }
}

TEST(LineCrossingSpy, FormsKeepTheLineAndItsSettings)
{
    LineCrossingSpy spy("gate", "north", {{0.5f, 0.25f}, {0.5f, 0.75f}}, -2);
    spy.setMinAge(rktl::ElapsedTime(2000));
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
}

TEST(LineCrossingSpy, TextReplacesWhatItNamesAndRefusesOtherDirections)
{
    LineCrossingSpy spy("gate", "", upright, 7);
    spy.setMinAge(rktl::ElapsedTime(9));
    ASSERT_TRUE(spy.fromXML("<x><first x=\"1\" y=\"2\"/><min-distance>8</min-distance><direction>1</direction></x>"));
    EXPECT_EQ(rkml::Point2D<float>(0, 0), spy.getSegment().second()) << "a missing point is the corner";
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
