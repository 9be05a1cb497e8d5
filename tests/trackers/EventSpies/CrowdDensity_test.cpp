#include <gtest/gtest.h>

#include "support/spy_run.h"
#include "trackers/EventSpies/CrowdDensity.h"

#include <cmath>

namespace {

using Polygon = rkml::Polygon2D<float>;
using Box = rkml::BoundingBox<float>;

/// Frames of 10 x 10; the region is 5 columns of 9 rows: of a polygon's edges the right one belongs to it, the lowest row does
/// not.
struct CrowdRun : SpyRun<CrowdDensity> {
    explicit CrowdRun(float maxDensity = 0.2f, int64_t waitTime = 400)
        : SpyRun("crowd", "", maxDensity, rktl::ElapsedTime(waitTime))
    {
        scene.resize(10, 10);
        spy.setRegions({Polygon(Box(0, 0, 4, 9))});
    }

    /// An image with the first so many pixels of the columns 0 to 4 that bright.
    void paint(char const* name, int pixels, unsigned char brightness = 255, unsigned int size = 10)
    {
        rkil::FlatImage<1> image;
        image.resize(size, size);
        std::fill_n(image.getImage()->data, size * size, 0);
        for (int i = 0; i < pixels; ++i)
            image.getImage()->data[i / 5 * 10 + i % 5] = brightness;
        scene.frame.setImage(name, *image.getImage(), rkil::MultiImage::flatGray);
    }

    /// One frame for each letter: 'x' a crowd, '-' none, ' ' without images.
    std::string crowds(std::string const& letters)
    {
        std::string alarms;
        for (char const letter : letters)
            alarms += see([&] {
                scene.frame.clearImages();
                if (letter != ' ')
                    paint("Processed Image", letter == 'x' ? 30 : 0);
            });
        return alarms;
    }

    char with(std::function<void()> const& prepare)
    {
        return see([&] { scene.frame.clearImages(), prepare(); });
    }
};

} // namespace

// The wait time is two frames.
TEST(CrowdDensity, LastsForTheWaitTimeAndEndsByIt)
{
    EXPECT_EQ("..AAA", CrowdRun().crowds("xxxxx"));
    EXPECT_EQ("AA", CrowdRun(0.2f, 0).crowds("xx"));
    EXPECT_EQ("..A.A", CrowdRun().crowds("x-x-x")) << "dips shorter than the wait time do not break it";

    CrowdRun run;
    EXPECT_EQ("..A", run.crowds("xxx"));
    uint32_t const uid = run.events.front().getUID();
    EXPECT_EQ(".A", run.crowds("-x"));
    EXPECT_EQ(uid, run.events.front().getUID());
    EXPECT_EQ("....A", run.crowds("--xxx"));
    EXPECT_NE(uid, run.events.front().getUID()) << "gone for the wait time, it has to last anew";
    EXPECT_EQ("...A", run.crowds("   x")) << "frames without images say nothing";
}

TEST(CrowdDensity, CountsBrightPixelsOfTheRegionsInEitherImage)
{
    // 9 of 45 are exactly the limit of a fifth; 10 are more.
    for (int pixels : {9, 10}) {
        CrowdRun run(0.2f, 0);
        EXPECT_EQ(pixels == 10 ? 'A' : '.', run.with([&] { run.paint("Processed Image", pixels); })) << pixels;
        EXPECT_EQ(pixels == 10 ? 'A' : '.', run.with([&] {
            run.paint("Processed Image", pixels);
            run.paint("Stationary Object Processed", 4); // the same pixels count once
        })) << pixels;
        EXPECT_EQ('.', run.with([&] { run.paint("Processed Image", pixels, 200); })) << "200 is not yet bright";
    }
    CrowdRun run(0.0f, 0);
    EXPECT_EQ('.', run.with([&] { run.paint("Processed Image", 30, 255, 20); })) << "an image of another size is none";
}

TEST(CrowdDensity, RegionsThatHoldNothingAlarmNever)
{
    float const nan = std::nanf("");
    std::vector<rkml::Point2D<float>> const twoPoints = {{0, 0}, {1, 1}};
    for (auto const& regions : std::initializer_list<rksl::List<Polygon>>{{}, {Polygon()}, {Polygon(twoPoints)},
             {Polygon(Box(200, 200, 50, 50))}, {Polygon({{nan, nan}, {nan, nan}, {nan, nan}})}}) {
        CrowdRun run(0.0f, 0);
        run.spy.setRegions(regions);
        EXPECT_EQ("..", run.crowds("xx"));
    }
}

TEST(CrowdDensity, LimitsAndForms)
{
    CrowdDensity spy("c", "", 0.5f, rktl::ElapsedTime(2500));
    spy.setRegions({Polygon({{0, 0}, {0.5f, 0}, {0, 0.5f}})});
    rktl::String const xml = spy.toXML();
    EXPECT_EQ("</EventSpy><max-density>0.5</max-density><wait-time unit=\"second\">2.5</wait-time><crowd-regions><region>"
              "<vertex x=\"0\" y=\"0\" /><vertex x=\"0.5\" y=\"0\" /><vertex x=\"0\" y=\"0.5\" /></region></crowd-regions>"
              "</CrowdDensitySpy>",
        xml.substr(xml.find("</EventSpy>")));
    expectBothFormsSurvive(spy);
    rksl::MemIOStream tail;
    tail << rktl::Double(0.5) << rktl::ElapsedTime(2500) << spy.getRegions();
    expectBinaryTail(spy, tail);
}
