#include <gtest/gtest.h>

#include "math/rkml_Mask2d.h"
#include "math/rkml_Polygon2d.h"
#include "misc/rktl_String.h"
#include "support/bytes.h"

using rkml::BoundingBox;
using rkml::Mask2D;
using rkml::Point2D;
using rkml::Polygon2D;
using support::messageOf;

namespace {

Polygon2D<int> rectangle(int left, int top, int right, int bottom)
{
    return Polygon2D<int>({{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

double shareOf(Mask2D<int> const& mask, int x, int y, int width, int height, int value)
{
    return mask.getOverlap(BoundingBox<int>(x, y, width, height), value);
}

} // namespace

TEST(Polygon2D, ContainsByTheEvenOddRule)
{
    struct {
        char const* why;
        Polygon2D<int> polygon;
        int x;
        int y;
        bool inside;
    } const cases[] = {
        {"on the right edge", rectangle(0, 0, 10, 10), 10, 5, true},
        {"on the left edge", rectangle(0, 0, 10, 10), 0, 5, true},
        {"on the top edge", rectangle(0, 0, 10, 10), 5, 0, true},
        {"on the bottom edge no edge counts", rectangle(0, 0, 10, 10), 5, 10, false},
        {"in the notch", Polygon2D<int>({{0, 0}, {10, 0}, {5, 5}, {10, 10}, {0, 10}}), 8, 5, false},
        {"crossed twice over itself", Polygon2D<int>({{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {9, 0}, {9, 9}, {0, 9}}), 4, 4,
            false},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.inside, c.polygon.contains(c.x, c.y)) << c.why;
    EXPECT_FALSE(Polygon2D<unsigned int>({{4, 4}, {8, 4}, {8, 8}, {4, 8}}).contains(0, 6)) << "differences of unsigned numbers";
}

TEST(Polygon2D, FormsReadBack)
{
    EXPECT_EQ(
        "<r><vertex x=\"1\" y=\"2\" /><vertex x=\"3\" y=\"4\" /></r>", Polygon2D<int>({{1, 2}, {3, 4}}).toXML("r", "vertex"));
    Polygon2D<int> polygon({{7, 7}});
    EXPECT_TRUE(polygon.fromXML("<r><a x=\"1\" y=\"2\"/><b x=\"3\"/><c y=\"5\" x=\"4\">text</c></r>"));
    EXPECT_EQ(Polygon2D<int>({{1, 2}, {4, 5}}), polygon);

    // The length asked for is two bytes more than what is written.
    EXPECT_EQ(42u, Polygon2D<float>({{0, 0}, {1, 0}, {1, 1}}).getBinLength());
    support::Bytes const bytes = support::hex("0400 0200 04000000 01000000 02000000 04000000 03000000 fcffffff");
    Polygon2D<int> const line({{1, 2}, {3, -4}});
    support::Bytes written(line.getBinLength());
    EXPECT_EQ(bytes.size(), line.toBin(written.data()));
    written.resize(bytes.size());
    EXPECT_EQ(bytes, written);
    support::expectEveryPrefixThrows<Polygon2D<int>>(bytes);
    EXPECT_EQ(28u, support::fromBin(polygon, bytes));
    EXPECT_EQ(line, polygon);
    EXPECT_EQ("rkml::Polygon2D::fromBin( .. ) - size of value_type is incorrect",
        messageOf([&] { support::fromBin(polygon, support::hex("0800 0000")); }));
    EXPECT_TRUE(polygon.points().empty());

    Polygon2D<int> const tooLong(std::vector<Point2D<int>>(65536));
    written.resize(tooLong.getBinLength());
    EXPECT_NE("", messageOf([&] { tooLong.toBin(written.data()); }));
}

TEST(Polygon2D, OnePointBeyondTheFrameMakesAllPixels)
{
    using F = Polygon2D<float>;
    EXPECT_EQ(rectangle(0, 120, 320, 480), F({{0, 0.25f}, {0.5f, 0.25f}, {0.5f, 1}, {0, 1}}).denormalize(640, 480));
    EXPECT_EQ(Polygon2D<int>({{1, 0}, {2, 0}, {1, -3}}), F({{0.5f, 0.25f}, {1.5f, 0.25f}, {1, -2.5f}}).denormalize(640, 480));
    EXPECT_EQ(Polygon2D<int>({{0, 0}, {1, 0}}), F({{std::nanf(""), 0.25f}, {0.5f, 0.25f}}).denormalize(640, 480));
    EXPECT_THROW(F({{0, 0}}).denormalize(0, 480), rktl::Exception);
}

TEST(Mask2D, CellsOutsideTheArrayHoldTheDefault)
{
    Mask2D<int> mask(0);
    mask.addPolygon(rectangle(0, 0, 10, 10), 1);
    EXPECT_EQ(0.5, shareOf(mask, -5, 0, 10, 10, 1));
    EXPECT_EQ(1.0, shareOf(mask, 2147483647, 0, 2147483647, 1, 0));
    EXPECT_EQ(0.0, shareOf(mask, 3, 3, 0, 4, 1)) << "a box without area";
    EXPECT_THROW(mask.addPolygon(rectangle(-2000000000, 0, 2000000000, 2000000000), 4), rktl::Exception);
    EXPECT_TRUE(mask.addPolygon(rectangle(-1, -1, 1, 1), 3)); // grows to the left and above, and takes two cells of the first:
    // every cell of the grown array is asked, so one on the right edge counts, which drawing in place leaves out
    EXPECT_EQ(1.0, shareOf(mask, -1, -1, 2, 2, 3));
    EXPECT_EQ(98.0 / 100.0, shareOf(mask, 0, 0, 10, 10, 1));

    Mask2D<int> clipped(0);
    BoundingBox<int> const clip(0, 0, 8, 6);
    EXPECT_FALSE(clipped.addPolygon(Polygon2D<int>({{0, 0}, {5, 5}}), 1, clip));
    EXPECT_TRUE(clipped.addPolygon(rectangle(100, 0, 110, 10), 1, clip));
    EXPECT_TRUE(clipped.addPolygon(rectangle(-2000000000, 2, 4, 2000000000), 1, clip));
    EXPECT_TRUE(clipped.addPolygon(rectangle(7, -5, 9, 1), 1, clip));
    EXPECT_EQ(17.0 / 200.0, shareOf(clipped, -1, -2, 20, 10, 1)); // 4 x 4 and 1 x 1

    Mask2D<bool> bits(false);
    bits.addPolygon(Polygon2D<int>({{0, 0}, {4, 4}, {0, 4}}), true); // row y holds the columns 0 to y
    EXPECT_EQ(10.0 / 16.0, bits.getOverlap(BoundingBox<int>(0, 0, 4, 4), true));
}
