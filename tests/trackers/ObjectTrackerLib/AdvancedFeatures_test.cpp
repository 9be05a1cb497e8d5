#include <gtest/gtest.h>

#include "image/rk_image.h"
#include "trackers/ObjectTrackerLib/AdvancedFeatures.h"

#include <string>
#include <vector>

using Box = rkml::BoundingBox<int>;

namespace {

/// Four bytes a pixel: R red, G green, B blue, '.' so dark that it has no colour.
struct Picture {
    explicit Picture(std::vector<std::string> const& rows)
    {
        for (std::string const& row : rows)
            for (char const c : row) {
                unsigned char const dark = 16;
                pixels.push_back(c == 'B' ? 255 : c == '.' ? dark : 0);
                pixels.push_back(c == 'G' ? 255 : c == '.' ? dark : 0);
                pixels.push_back(c == 'R' ? 255 : c == '.' ? dark : 0);
                pixels.push_back(255);
            }
        uint32_t const width = static_cast<uint32_t>(rows[0].size()), height = static_cast<uint32_t>(rows.size());
        image = {pixels.data(), width, height, 4, width * height * 4};
    }
    std::vector<unsigned char> pixels;
    rk_image image;
};

std::string colours(Object const& object, std::string const& area)
{
    std::string text;
    for (char const* part : {"", " Percentage", " (Secondary)", " (Secondary) Percentage"})
        text += object.getAttribute(area + part) + " ";
    return text;
}

} // namespace

TEST(AdvancedFeatures, LearnsTheColoursOfEachPart)
{
    Object object;
    object.insert({1, 0, 8, 4}, {}, rktl::TimeStamp::fromElapsedTime(rktl::ElapsedTime(1000)));
    AdvancedFeatures features;
    Picture const first({"GRRRRRRRR", "GRRRRRRRR", "GRRRRBBBB", "GBBBBBBBB"});
    features.learnColours(first.image, nullptr, {1, 0, 8, 4}, object);
    // 20 red, 12 blue pixels. The left part is columns 0 to 4: 14 of 20 red. The right part has 6 of each: the fullest bin is
    // the lower-numbered red, and what is left out as the fullest is blue, so there is no second colour.
    EXPECT_EQ("#f01010 1.000000   ", colours(object, "Upper Color"));
    EXPECT_EQ("#1010f0 0.750000 #f01010 0.250000 ", colours(object, "Lower Color"));
    EXPECT_EQ("#f01010 0.700000 #1010f0 0.300000 ", colours(object, "Left Color"));
    EXPECT_EQ("#f01010 0.500000   ", colours(object, "Right Color"));
    EXPECT_EQ("#f01010 0.625000 #1010f0 0.375000 ", colours(object, "Overall Color"));
    EXPECT_EQ(20u, object.getHistogram().getBinValue(7));

    Picture const green({"GGGGGGGGG", "GGGGGGGGG", "GGGGGGGGG", "GGGGGGGGG"});
    // 20 * 0.85 = 17, 12 * 0.85 = 10.2, 32 * 0.15 = 4.8, each rounded; 5 of 17 is too little for a second colour.
    features.learnColours(green.image, nullptr, {1, 0, 8, 4}, object);
    EXPECT_EQ(17u, object.getHistogram().getBinValue(7));
    EXPECT_EQ(10u, object.getHistogram().getBinValue(448));
    EXPECT_EQ(5u, object.getHistogram().getBinValue(56));
    EXPECT_EQ("#f01010 0.531250 #1010f0 0.312500 ", colours(object, "Overall Color"));
}

TEST(AdvancedFeatures, CountsOnlyColouredPixelsUnderTheMask)
{
    Object object;
    Picture const picture({"RR..", "GGGG", "BBBB", "...."});
    std::vector<unsigned char> bytes = {1, 0, 1, 1, 0, 0, 0, 0, 1, 1, 1, 255, 1, 1, 1, 1};
    rk_image const mask = {bytes.data(), 4, 4, 1, 16};
    AdvancedFeatures().learnColours(picture.image, &mask, {0, 0, 100, 100}, object);
    EXPECT_EQ(5u, object.getHistogram().getTotal());
    EXPECT_EQ("#1010f0 0.800000   ", colours(object, "Overall Color")) << "1 of 4 is less than 0.33";
}

TEST(AdvancedFeatures, UniformityFollowsTheSpreadOfGray)
{
    std::vector<unsigned char> bytes = {9, 0, 100, 9, 100, 0};
    rk_image const gray = {bytes.data(), 3, 2, 1, 6};
    Object object;
    AdvancedFeatures features;
    features.learnUniformity(gray, {1, 0, 2, 2}, object);
    // 0, 100, 100, 0 spread by 50; the average starts at 0: 0.15 * 50 = 7.5, then 7.5 * 0.85 + 7.5 = 13.875.
    EXPECT_EQ("0.970588", object.getAttribute("Object Uniformity"));
    features.learnUniformity(gray, {1, 0, 2, 2}, object);
    EXPECT_EQ("0.945588", object.getAttribute("Object Uniformity"));
    features.learnUniformity(gray, {3, 2, 5, 5}, object);
    EXPECT_EQ("0.945588", object.getAttribute("Object Uniformity")) << "a box without pixels says nothing";
}
