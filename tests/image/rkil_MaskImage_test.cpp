#include <gtest/gtest.h>

#include "image/rkil_MaskImage.h"
#include "support/picture.h"

#include <algorithm>

using Rows = std::vector<std::string>;
using Polygon = rkml::Polygon2D<float>;

namespace {

rksl::List<Polygon> list(std::vector<std::vector<rkml::Point2D<float>>> const& polygons)
{
    rksl::List<Polygon> result;
    for (auto const& points : polygons)
        result.push_back(Polygon(points));
    return result;
}

} // namespace

TEST(MaskImage, DrawsFractionsAndPixels)
{
    struct {
        char const* why;
        std::vector<std::vector<rkml::Point2D<float>>> polygons;
        Rows rows;
    } const cases[] = {
        {"fractions: corners (0, 0) to (2, 2); right edge inside, row 2 outside", {{{0, 0}, {0.5f, 0}, {0.5f, 0.5f}, {0, 0.5f}}},
            {"...#", "...#", "####", "####"}},
        // (0, 0), (2, 0), (1, 1), (0, 1): one row, and 1.5 is rounded up
        {"one coordinate beyond 1: all are pixels", {{{0, 0}, {1.5f, 0}, {1, 1}, {0, 1}}}, {"...#", "####", "####", "####"}},
        {"pixels, the negative held to 0", {{{-5, 2}, {1, 2}, {1, 9}, {-5, 9}}}, {"####", "####", "..##", "..##"}},
        {"two polygons", {{{0, 0}, {0, 1}, {0.25f, 1}, {0.25f, 0}}, {{3, 3}, {3, 5}, {4, 5}, {4, 3}}},
            {"..##", "..##", "..##", "..#."}},
        {"a line encloses nothing", {{{0, 0}, {1, 1}}}, {"####", "####", "####", "####"}},
    };
    for (auto const& c : cases) {
        rkil::MaskImage mask;
        mask.setMaskPolygons(list(c.polygons));
        EXPECT_TRUE(mask.empty()) << "no size";
        ASSERT_TRUE(mask.resize(4, 4));
        EXPECT_EQ(c.rows, test::rowsOf(*mask.getImage())) << c.why;
    }
}

TEST(MaskImage, IsDrawnWhenPolygonsArriveAndNotBefore)
{
    rkil::MaskImage mask(3, 2, 7, 200);
    EXPECT_EQ(6, std::count(mask.getImage()->data, mask.getImage()->data + 6, 0)) << "not drawn yet";
    EXPECT_TRUE(mask.empty());
    mask.setMaskPolygons(list({{{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {{0, 0}}}));
    EXPECT_EQ(6, std::count(mask.getImage()->data, mask.getImage()->data + 6, 200));
    mask.setMaskPolygons({});
    EXPECT_EQ(6, std::count(mask.getImage()->data, mask.getImage()->data + 6, 200)) << "without polygons the pixels stay";
    mask.setMaskPolygons(list({{{9, 9}, {12, 9}, {12, 12}}}));
    EXPECT_EQ(6, std::count(mask.getImage()->data, mask.getImage()->data + 6, 7));
    ASSERT_TRUE(mask.resize(1, 1, 8, 9));
    EXPECT_EQ(8, mask.getImage()->data[0]);
}

TEST(MaskImage, BlanksEveryByteOfAPixel)
{
    rkil::MaskImage mask;
    mask.setMaskPolygons(list({{{0, 0}, {0, 1}, {0.5f, 1}, {0.5f, 0}}})); // of 19 columns those up to 10 (9.5 rounded)
    ASSERT_TRUE(mask.resize(19, 1));
    rkil::FlatImage<4> colour, maskedColour;
    rkil::FlatImage<1> gray;
    colour.resize(19, 1, 77);
    gray.resize(19, 1, 77);
    ASSERT_TRUE(mask.maskImage(colour, maskedColour));
    ASSERT_TRUE(mask.maskImage(gray, gray));
    for (unsigned int i = 0; i < 4 * 19; ++i) {
        EXPECT_EQ(i / 4 <= 10 ? 0 : 77, maskedColour.getImage()->data[i]) << i;
        EXPECT_EQ(i / 4 <= 10 ? 0 : 77, gray.getImage()->data[i / 4]) << i;
    }
    rkil::FlatImage<1> other, target;
    other.resize(18, 1);
    EXPECT_FALSE(mask.maskImage(other, target));
    EXPECT_TRUE(target.empty()) << "nothing changed";
}
