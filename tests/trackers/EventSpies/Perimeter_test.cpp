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
    PerimeterRun whole;
    whole.spy.setIntrusion(1.0);
    EXPECT_EQ("..A", whole.along({outside, {399, 450, 100, 100}, {400, 450, 100, 100}}));
}

TEST(Perimeter, JudgesWhatItSawLastTime)
{
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
}

TEST(Perimeter, RegionsOfEveryKind)
{
    float const nan = std::nanf(""), inf = std::numeric_limits<float>::infinity();
    struct {
        char const* why;
        rksl::List<Region> regions;
        char const* alarms;
    } const cases[] = {
        {"normalised", {rectangle(0.4f, 0.4f, 0.6f, 0.6f)}, ".A"},
        {"none", {}, ".."},
        {"a line beside a region", {Region({{0, 0}, {9, 9}}), rectangle(400, 400, 600, 600)}, ".A"},
        {"without end", {rectangle(300, 0, 4e9f, inf)}, ".A"},
        {"no number counts as 0", {rectangle(400, nan, 600, 600)}, ".A"},
    };
    for (auto const& c : cases) {
        PerimeterRun run(c.regions);
        EXPECT_EQ(c.alarms, run.along({{100, 450, 100, 100}, {450, 450, 100, 100}})) << c.why;
    }
}

TEST(Perimeter, FormsKeepRegionsAndIntrusion)
{
    Perimeter spy;
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
}
