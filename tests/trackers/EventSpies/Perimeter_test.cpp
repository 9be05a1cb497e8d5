#include <gtest/gtest.h>

#include "streams/rksl_MemIOStream.h"
#include "support/spy_run.h"
#include "trackers/EventSpies/Perimeter.h"

#include <functional>
#include <limits>

namespace {

using Box = rkml::BoundingBox<int>;
using Region = rkml::Polygon2D<float>;

Region rectangle(float left, float top, float right, float bottom)
{
    return Region({{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

/// Frames of 1000 x 1000 with a region over columns and rows 400 to 599; neither age nor distance is asked for.
struct PerimeterRun : SpyRun<Perimeter> {
    explicit PerimeterRun(rksl::List<Region> const& regions = {rectangle(400, 400, 600, 600)})
    {
        spy.setRegions(regions);
        spy.setMinAge(rktl::ElapsedTime());
    }
};

Box const outside(100, 450, 100, 100), inside(450, 450, 100, 100);

} // namespace

TEST(Perimeter, BegunOutsideAndComeIn)
{
    struct {
        char const* why;
        std::vector<Box> boxes;
        char const* alarms;
    } const cases[] = {
        {"as long as it stays, the first frame apart", {outside, inside, inside, outside}, ".AA."},
        {"half of the box is enough", {outside, {350, 450, 100, 100}}, ".A"},
        {"a column less is not", {outside, {349, 450, 100, 100}}, ".."},
        {"born beside the region", {{300, 450, 100, 100}, inside}, ".A"},
        {"born with a column in it", {{301, 450, 100, 100}, inside}, ".."},
        {"born in it, out and in again", {inside, outside, inside}, "..."},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.alarms, PerimeterRun().along(c.boxes)) << c.why;
}

TEST(Perimeter, LimitsAreReachedExactly)
{
    // From the centre (150, 500) by (99, 10), 99.503 pixels, and by (99, 9), 99.41; the rounded travel counts.
    for (int dy : {10, 9}) {
        PerimeterRun far({rectangle(210, 400, 600, 600)});
        far.spy.setMinDistance(100);
        EXPECT_EQ(dy == 10 ? ".A" : "..", far.along({outside, {199, 450 + dy, 100, 100}})) << dy;
    }
    PerimeterRun old;
    old.spy.setMinAge(rktl::ElapsedTime(400));
    EXPECT_EQ("..A", old.along({outside, inside, inside}));

    PerimeterRun small;
    small.spy.setMaxWidth(0.1f);
    small.spy.setMaxHeight(0.1f);
    EXPECT_EQ("...A", small.along({outside, {450, 450, 101, 100}, {450, 450, 100, 101}, inside}));

    PerimeterRun whole;
    whole.spy.setIntrusion(1.0);
    EXPECT_EQ("..A", whole.along({outside, {399, 450, 100, 100}, {400, 450, 100, 100}}));
}

TEST(Perimeter, JudgesWhatItSawLastTime)
{
    PerimeterRun known;
    known.scene.put(7, outside);
    EXPECT_EQ(".A", known.along({inside, inside})) << "not the frame in which the spy sees it first";

    PerimeterRun gone;
    EXPECT_EQ(".A", gone.along({outside, inside}));
    EXPECT_EQ('A', gone.see([&] { gone.scene.frame.getObjects().clear(); })) << "its copy, a last time";
    EXPECT_EQ('.', gone.see([] {}));

    struct {
        int32_t state;
        char const* alarms; // there with that state, then gone
    } const states[] = {{-1, ".A"}, {0, ".A"}, {1, ".A"}, {2, ".."}, {3, "AA"}, {4, "AA"}, {5, "AA"}};
    for (auto const& c : states) {
        PerimeterRun run;
        run.along({outside});
        std::string alarms(1, run.see([&] { run.scene.put(7, inside).setState(c.state); }));
        alarms += run.see([&] { run.scene.frame.getObjects().clear(); });
        EXPECT_EQ(c.alarms, alarms) << c.state;
    }
    PerimeterRun still;
    EXPECT_EQ('.', still.see([&] { still.scene.put(7, outside).setType("Static"); }));
    EXPECT_EQ('.', still.see([&] { still.scene.put(7, inside); }));

    PerimeterRun resized;
    EXPECT_EQ(".A", resized.along({outside, inside}));
    resized.scene.resize(1000, 999);
    EXPECT_EQ(".A", resized.along({inside, inside})) << "all is forgotten, then seen once more";
}

TEST(Perimeter, RegionsOfEveryKind)
{
    float const nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        rksl::List<Region> regions;
        char const* alarms;
        std::vector<rktl::String> faults;
    } const cases[] = {
        {"normalised", {rectangle(0.4f, 0.4f, 0.6f, 0.6f)}, ".A", {}},
        {"two that share the object", {rectangle(400, 450, 500, 500), rectangle(0.45f, 0.5f, 0.55f, 0.525f)}, ".A", {}},
        {"none", {}, "..", {"perimeter-regions: there is none to come into"}},
        {"a line beside a region", {Region({{0, 0}, {9, 9}}), rectangle(400, 400, 600, 600)}, ".A",
            {"perimeter-regions: region 1 has 2 points, it needs 3"}},
        {"outside of the frame", {rectangle(4000, 0, 5000, 1000)}, "..", {}},
        {"without end", {rectangle(300, 0, 4e9f, inf)}, ".A",
            {"perimeter-regions: region 1 has a coordinate that is no finite number"}},
        {"no number counts as 0", {rectangle(400, nan, 600, 600)}, ".A",
            {"perimeter-regions: region 1 has a coordinate that is no finite number"}},
    };
    for (auto const& c : cases) {
        PerimeterRun run(c.regions);
        EXPECT_EQ(c.alarms, run.along({{100, 450, 100, 100}, {450, 450, 100, 100}})) << c.why;
        std::vector<rktl::String> faults;
        run.spy.findFaults(faults);
        EXPECT_EQ(c.faults, faults) << c.why;
    }
    PerimeterRun empty;
    empty.scene.resize(0, 1000);
    EXPECT_EQ("..", empty.along({outside, inside}));
}

TEST(Perimeter, FormsKeepRegionsAndIntrusion)
{
    Perimeter spy;
    expectBothFormsSurvive(spy);
    spy.setName("fence");
    spy.setRegions({rectangle(0, 0, 0.5f, 1), Region()});
    spy.setIntrusion(0.25);
    expectBothFormsSurvive(spy);
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><perimeter-regions><region><vertex x=\"0\" y=\"0\" /><vertex x=\"0.5\" y=\"0\" /><vertex x=\"0.5\" "
              "y=\"1\" /><vertex x=\"0\" y=\"1\" /></region><region></region></perimeter-regions><intrusion>0.25</intrusion>"
              "</PerimeterSpy>",
        xml.substr(xml.find("</EventSpy>")));
    rksl::MemIOStream form;
    form << spy.getRegions() << rktl::String("0.250000");
    expectBinaryTail(spy, form);

    Perimeter read;
    ASSERT_TRUE(read.fromXML("<x><rkml_PolygonList><a><b x=\"1\" y=\"2\"/></a></rkml_PolygonList><intrusion>2</intrusion>"
                             "<min-distance>8</min-distance></x>"));
    EXPECT_EQ(Region(std::vector<rkml::Point2D<float>>{{1, 2}}), read.getRegions().front());
    EXPECT_EQ(8u, read.getMinDistance());
    std::vector<rktl::String> faults;
    read.findFaults(faults);
    EXPECT_EQ((std::vector<rktl::String>{
                  "perimeter-regions: region 1 has 1 point, it needs 3", "intrusion: 2 is no share from 0 to 1"}),
        faults);
}
