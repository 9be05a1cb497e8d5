#include <gtest/gtest.h>

#include "support/spy_run.h"
#include "trackers/EventSpies/Speed.h"

namespace {

using Segment = rkml::LineSegment2D<float>;

Segment const first({250, 0}, {250, 1000}), second({750, 0}, {750, 1000});

/// Frames of 1000 x 1000 every 200 ms; the lines are 10 m apart, at 30 km/h 1200 ms. Objects are 20 wide, and old enough when
/// they meet the first line.
struct SpeedRun : SpyRun<Speed> {
    explicit SpeedRun(unsigned short limit = 30, unsigned short distance = 10, int metric = 1)
        : SpyRun("speed", "", first, second, limit, metric, distance)
    {
    }

    /// The object's centre, one frame each, behind a second and a bit at the first place.
    std::string through(std::vector<int> const& places)
    {
        std::vector<rkml::BoundingBox<int>> boxes(6, boxAt(places.front()));
        for (int const place : places)
            boxes.push_back(boxAt(place));
        return along(boxes).substr(6);
    }

    static rkml::BoundingBox<int> boxAt(int x) { return {x - 10, 490, 20, 20}; }
};

std::string descriptionOf(unsigned short limit, unsigned short distance, int metric, std::vector<int> const& places)
{
    SpeedRun run(limit, distance, metric);
    run.through(places);
    return run.events.empty() ? "" : run.events.front().getDescription();
}

} // namespace

TEST(Speed, AlarmsBelowTheTimeThatTheLimitAllows)
{
    // Across line 1 in the second frame, across line 2 in the last but one.
    EXPECT_EQ("......AA", SpeedRun().through({200, 300, 400, 500, 600, 700, 800, 900})) << "1000 ms";
    EXPECT_EQ(".........", SpeedRun().through({200, 300, 400, 500, 600, 650, 700, 800, 900})) << "1200 ms are just slow enough";
    EXPECT_EQ("......AA", SpeedRun().through({800, 700, 600, 500, 400, 300, 200, 100})) << "the other way";
}

TEST(Speed, SaysHowFastItWas)
{
    // 10 m in 1 s are 36 km/h, 10 ft 6.818 mph; a foot in 800 ms is 0.852 mph.
    EXPECT_EQ("36 km/h", descriptionOf(30, 10, 1, {200, 300, 400, 500, 600, 700, 800}));
    EXPECT_EQ("7 mph", descriptionOf(1, 10, 0, {200, 300, 400, 500, 600, 700, 800}));
    EXPECT_EQ("", descriptionOf(1, 1, 0, {200, 300, 400, 500, 700, 800})) << "below the limit";
    EXPECT_EQ("Unkown Speed", descriptionOf(30, 10, 1, {200, 800})) << "both lines in one frame";

    SpeedRun run;
    ASSERT_TRUE(run.spy.fromXML("<S><speed-limit>1000000</speed-limit><distance>2000000000</distance><unit>metric</unit></S>"));
    run.through({200, 300, 400, 500, 600, 700, 800});
    ASSERT_FALSE(run.events.empty());
    EXPECT_EQ("-1 km/h", run.events.front().getDescription()) << "7,200,000,000 is held to all ones, and printed with its sign";
}

TEST(Speed, ForgetsObjectsThatAreGone)
{
    SpeedRun run;
    EXPECT_EQ("..", run.through({200, 300}));
    run.see([&] { run.scene.frame.getObjects().clear(); });
    EXPECT_EQ("..", run.through({700, 800})) << "another object of the same id";
    EXPECT_EQ("..", run.through({200, 300}));
    run.spy.reset();
    EXPECT_EQ("...", run.along({SpeedRun::boxAt(300), SpeedRun::boxAt(700), SpeedRun::boxAt(800)}));
}

// The clone that a detector runs hears its own lines, not those of the spy that it was made from.
TEST(Speed, CopiesHearTheirOwnLines)
{
    SpeedRun run;
    run.through({200, 300});
    std::unique_ptr<Speed> const original(run.spy.clone());
    EXPECT_EQ(run.spy.toXML(), original->toXML());
    run.spy = *original;
    run.scene.frame.getObjects().clear();
    EXPECT_EQ("......A", run.through({200, 300, 400, 500, 600, 700, 800}));
}

TEST(Speed, Forms)
{
    Speed spy("s", "", {{0.25f, 0}, {0.25f, 1}}, {{0.75f, 0}, {0.75f, 1}}, 30, 1, 10);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><speed-limit>30</speed-limit><distance>10</distance><unit>metric</unit><first-segment>"
              "<first x=\"0.25\" y=\"0\" /><second x=\"0.25\" y=\"1\" /></first-segment><second-segment>"
              "<first x=\"0.75\" y=\"0\" /><second x=\"0.75\" y=\"1\" /></second-segment></SpeedSpy>",
        xml.substr(xml.find("</EventSpy>")));
    expectBothFormsSurvive(spy);
    rksl::MemIOStream tail;
    tail << rktl::Integer(1) << rktl::Integer(10) << rktl::Integer(30);
    for (auto const& [x, y] : {std::pair(0.25f, 0.0f), std::pair(0.25f, 1.0f), std::pair(0.75f, 0.0f), std::pair(0.75f, 1.0f)})
        tail << rkml::Point2D<float>(x, y);
    expectBinaryTail(spy, tail);
}
