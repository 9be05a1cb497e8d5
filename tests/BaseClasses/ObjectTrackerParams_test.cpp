#include <gtest/gtest.h>

#include "BaseClasses/ObjectTrackerParams.h"
#include "math/rk_geometry.h"
#include "support/bytes.h"

namespace {

rkml::Polygon2D<float> polygon(std::vector<rkml::Point2D<float>> points)
{
    return rkml::Polygon2D<float>(std::move(points));
}

std::string linesOf(std::list<rk_segment> const& segments)
{
    std::string text;
    for (rk_segment const& side : segments)
        text += std::to_string(side.x1) + "," + std::to_string(side.y1) + "-" + std::to_string(side.x2) + "," +
            std::to_string(side.y2) + " ";
    return text;
}

} // namespace

TEST(ObjectTrackerParams, WritesOneElementALine)
{
    ObjectTrackerParams params;
    EXPECT_EQ("<resurrection-window unit=\"millisecond\">-15000</resurrection-window>\n"
              "<resurrection-distance>25</resurrection-distance>\n"
              "<resurrection-confidence>0.6</resurrection-confidence>\n"
              "<invalid-window unit=\"second\">10</invalid-window>\n"
              "<defer-time unit=\"millisecond\">1000</defer-time>\n"
              "<min-track-length>5</min-track-length>\n"
              "<max-track-merges>5</max-track-merges>\n"
              "<occlusion-zones/>\n",
        params.xmlSerialize());
    params.mRemoveFalseObjects = params.mAdvancedHistograms = params.mAdvancedObjectFeatures = 1;
    EXPECT_NE(std::string::npos,
        params.xmlSerialize().find("</resurrection-confidence>\n<remove-false-objects/>\n<advanced-histograms/>\n"
                                   "<advanced-object-features/>\n<invalid-window"));
}

TEST(ObjectTrackerParams, ReadsWhatTheTextNames)
{
    ObjectTrackerParams params;
    params.mAdvancedHistograms = 1;
    params.mMinTrackLength = 9;
    params.mOcclusionZones.push_back(polygon({{0, 0}, {1, 0}, {1, 1}}));
    EXPECT_FALSE(params.xmlUnserialize(""));
    EXPECT_TRUE(params.mAdvancedHistograms) << "an empty text changes nothing";

    EXPECT_TRUE(params.xmlUnserialize("<remove-false-objects>0</remove-false-objects><unknown/><resurrection-distance>40"
                                      "</resurrection-distance><defer-time unit=\"second\">2</defer-time>"));
    EXPECT_TRUE(params.mRemoveFalseObjects) << "set by its presence, whatever it holds";
    EXPECT_FALSE(params.mAdvancedHistograms) << "cleared by its absence";
    EXPECT_EQ(0u, params.mOcclusionZones.size());
    EXPECT_EQ(40, params.mResurrectionDistance.value);
    EXPECT_EQ(2000, params.mDeferTime.toMilliseconds());
    EXPECT_EQ(9, params.mMinTrackLength.value) << "what the text does not name stays";
}

TEST(ObjectTrackerParams, SurviveBothForms)
{
    ObjectTrackerParams params;
    params.mResurrectionWindow = rktl::ElapsedTime(8000);
    params.mResurrectionConfidence = 0.25;
    params.mAlwaysUpdateHistograms = 1;
    params.mMaxTrackMerges = 2;
    params.mOcclusionZones.push_back(polygon({{0, 0}, {1, 0}, {0.5f, 0.25f}}));
    params.mOcclusionZones.push_back(polygon({{10, 20}, {30, 20}, {30, 40}, {10, 40}}));
    ObjectTrackerParams fromXml, fromBin;
    ASSERT_TRUE(fromXml.xmlUnserialize(params.xmlSerialize()));
    ASSERT_TRUE(fromBin.read(params)); // through the plain ProcessParams
    for (ObjectTrackerParams const& read : {fromXml, fromBin}) {
        EXPECT_EQ(8000, read.mResurrectionWindow.toMilliseconds());
        EXPECT_EQ(0.25, read.mResurrectionConfidence.value);
        EXPECT_EQ(1, read.mAlwaysUpdateHistograms.value);
        EXPECT_EQ(2, read.mMaxTrackMerges.value);
        EXPECT_TRUE(params.mOcclusionZones == read.mOcclusionZones);
    }
    // Another stage's fields, and fields that break off: refused, nothing changed.
    rksl::MemIOStream other, half;
    other << rktl::String("no window");
    half << rktl::ElapsedTime(1) << rktl::Integer(2);
    EXPECT_FALSE(fromBin.binUnserialize(other));
    EXPECT_FALSE(fromBin.binUnserialize(half));
    EXPECT_EQ(8000, fromBin.mResurrectionWindow.toMilliseconds());
    EXPECT_EQ(25, fromBin.mResurrectionDistance.value);
}

TEST(ObjectTrackerParams, ZonesBecomeTheirSidesInPixels)
{
    std::list<rk_segment> segments = {{1, 1, 1, 1}};
    ObjectTrackerParams::Zones zones;
    zones.push_back(polygon({{0, 0}, {1, 0}, {0.25f, 50}}));
    EXPECT_FALSE(ObjectTrackerParams::generateOcclusions(0, 10, 1.0, zones, segments));
    EXPECT_EQ("1,1-1,1 ", linesOf(segments));
    EXPECT_TRUE(ObjectTrackerParams::generateOcclusions(201, 100, 0.5, zones, segments));
    // 201 * 0.5 = 100.5, away from 0; the third vertex has a coordinate in pixels, so it stays, as integers.
    EXPECT_EQ("0,0-101,0 101,0-0,50 0,50-0,0 ", linesOf(segments));
}
