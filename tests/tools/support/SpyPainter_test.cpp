#include "support/SpyPainter.h"

#include "trackers/EventSpies/CrowdDensity.h"
#include "trackers/EventSpies/LineCrossingSpy.h"

#include <cmath>
#include <limits>

namespace {

using tools::Rgb;

constexpr Rgb ground = {120, 120, 120};

/// A frame of 200 x 120, enlarged twice; coordinates are those of the frame.
class Picture {
public:
    explicit Picture(FrameEventSpy const& spy) { tools::paintSpy(image, 2, spy); }

    bool isPainted(uint32_t x, uint32_t y) const { return image.at(2 * x, 2 * y) != ground; }
    bool isBlank() const { return image.bytes == tools::RgbImage(400, 240, ground).bytes; }

    tools::RgbImage image{400, 240, ground};
};

LineCrossingSpy lineOf(rkml::Point2D<float> const& from, rkml::Point2D<float> const& to, int32_t way)
{
    LineCrossingSpy spy("line", "", {from, to}, 0);
    EXPECT_TRUE(spy.setDirection(way));
    return spy;
}

CrowdDensity regionOf(rkml::Polygon2D<float> const& region)
{
    CrowdDensity spy;
    rksl::List<rkml::Polygon2D<float>> regions;
    regions.push_back(region);
    spy.setRegions(regions);
    return spy;
}

// The arrow, 18 pixels of the frame long, says which side to end on.
TEST(SpyPainter, PointsTheArrowOfALineToTheSideThatCounts)
{
    struct {
        int32_t way;
        bool isLeft, isRight; // for the flat line: above, below
    } const cases[] = {{0, true, true}, {1, false, true}, {2, true, false}};
    for (auto const& c : cases) {
        Picture const steep(lineOf({0.5f, 0.1f}, {0.5f, 0.9f}, c.way));
        EXPECT_TRUE(steep.isPainted(100, 40)) << "the line itself";
        EXPECT_EQ(c.isLeft, steep.isPainted(90, 60)) << c.way;
        EXPECT_EQ(c.isRight, steep.isPainted(110, 60)) << c.way;
        Picture const flat(lineOf({180, 60}, {20, 60}, c.way)); // pixels, drawn from right to left
        EXPECT_TRUE(flat.isPainted(60, 60));
        EXPECT_EQ(c.isLeft, flat.isPainted(100, 50)) << c.way;
        EXPECT_EQ(c.isRight, flat.isPainted(100, 70)) << c.way;
    }
}

TEST(SpyPainter, FillsARegionLightlyWithinItsOutline)
{
    // An L: its notch, to the upper right, lies outside.
    Picture const drawn(regionOf(rkml::Polygon2D<float>({{20, 20}, {60, 20}, {60, 60}, {100, 60}, {100, 100}, {20, 100}})));
    Rgb const inside = drawn.image.at(2 * 40, 2 * 80);
    EXPECT_NE(ground, inside);
    EXPECT_LT(std::abs(inside.blue - ground.blue), 40) << "the scene shows through";
    EXPECT_GT(std::abs(drawn.image.at(2 * 20, 2 * 80).blue - ground.blue), 100) << "the outline";
    EXPECT_FALSE(drawn.isPainted(80, 40)) << "the notch";
    EXPECT_FALSE(drawn.isPainted(120, 80));
}

TEST(SpyPainter, ClipsWhatLiesOutsideAndLeavesOutWhatHasNoShape)
{
    float const far = 1e9f;
    Picture const beyond(regionOf(rkml::Polygon2D<float>({{100, -far}, {far, -far}, {far, far}, {100, far}})));
    EXPECT_TRUE(beyond.isPainted(150, 60));
    EXPECT_FALSE(beyond.isPainted(50, 60));
    float const none = std::numeric_limits<float>::quiet_NaN();
    Picture const broken(regionOf(rkml::Polygon2D<float>({{none, 20}, {60, none}, {none, none}})));
    EXPECT_FALSE(broken.isPainted(190, 110));
    EXPECT_TRUE(Picture(regionOf(rkml::Polygon2D<float>({{50, 50}}))).isBlank());
    EXPECT_TRUE(Picture(regionOf({})).isBlank());
}

} // namespace
