#include <gtest/gtest.h>

#include "math/rkml_BoundingBox.h"
#include "math/rkml_Point2d.h"
#include "misc/rktl_String.h"
#include "support/bytes.h"

#include <cmath>

using rkml::BoundingBox;
using rkml::Point2D;
using support::messageOf;

TEST(Point2D, DenormalizesFractionsAndLeavesPixels)
{
    struct {
        char const* why;
        float x;
        float y;
        int wantX;
        int wantY;
    } const cases[] = {
        {"pixels, both unscaled", 2.0f, 0.5f, 2, 1},
        {"halves away from 0", 0.25f / 64.0f, -0.25f / 48.0f, 3, -3}, // 2.5 and -2.5
        {"a negative one is scaled", -2.0f, 0.5f, -1280, 240},
        {"beyond 32 bits", 3e9f, -3e9f, 2147483647, -2147483647 - 1},
        {"no number", NAN, 0.5f, 0, 240},
    };
    for (auto const& c : cases) {
        Point2D<int> const got = Point2D<float>(c.x, c.y).denormalize<int>(640, 480);
        EXPECT_EQ(Point2D<int>(c.wantX, c.wantY), got) << c.why << ": " << got.x << ", " << got.y;
    }
    EXPECT_EQ(Point2D<unsigned int>(320, 0), (Point2D<float>(0.5f, -0.5f).denormalize<unsigned int>(640, 480)));
    EXPECT_EQ(Point2D<unsigned int>(4294967295u, 3), (Point2D<float>(5e9f, 2.5f).denormalize<unsigned int>(640, 480)));

    // In single precision 0.1f x 10 is 1 exactly; in double precision the digits of 0.1f stay.
    double const exact = static_cast<double>(0.1f) * 10.0;
    ASSERT_NE(1.0, exact);
    EXPECT_EQ(Point2D<double>(exact, exact), Point2D<float>(0.1f, 0.1f).denormalize<double>(10.0, 10.0));
}

TEST(Point2D, FormsReadBack)
{
    EXPECT_EQ("<first x=\"0.333333\" y=\"-2\" />", Point2D<float>(1.0f / 3.0f, -2.0f).toXML("first"));
    EXPECT_EQ("<rkml_Point2D x=\"4294967295\" y=\"1234567\" />",
        Point2D<unsigned int>(4294967295u, 1234567).rksl::Serializable::toXML());
    Point2D<float> point(7.0f, 8.0f);
    EXPECT_TRUE(point.fromXML("<p y=\"0.25\" x=\"1e1\"/>"));
    EXPECT_EQ(Point2D<float>(10.0f, 0.25f), point);
    Point2D<int> whole;
    EXPECT_TRUE(whole.fromXML("<p x=\"-1.9\" y=\"1e300\"/>"));
    EXPECT_EQ(Point2D<int>(-1, 2147483647), whole);

    support::Bytes const narrow = support::hex("04000000 feffffff 00010000");
    EXPECT_EQ(narrow, support::toBin(Point2D<int>(-2, 256)));
    support::expectEveryPrefixThrows<Point2D<int>>(narrow);
    support::Bytes const wide = support::hex("08000000 000000000000f03f 00000000000000c0");
    EXPECT_EQ(wide, support::toBin(Point2D<double>(1.0, -2.0)));
    support::expectEveryPrefixThrows<Point2D<double>>(wide);
    EXPECT_EQ(
        "rkml::Point2D::fromBin( .. ) - size of value_type is incorrect", messageOf([&] { support::fromBin(whole, wide); }));
}

TEST(BoundingBox, FormsReadBack)
{
    EXPECT_EQ("<b><x>1</x><y>-2</y><width>3</width><height>4</height></b>", BoundingBox<int>(1, -2, 3, 4).toXML("b"));
    BoundingBox<int> box(9, 9, 9, 9);
    EXPECT_FALSE(box.fromXML("<b/>"));
    EXPECT_TRUE(box.fromXML("<b><height>5</height><depth>6</depth><x> -7</x></b>"));
    EXPECT_EQ(BoundingBox<int>(-7, 9, 9, 5), box);

    support::Bytes const bytes = support::hex("04000000 01000000 feffffff 03000000 04000000");
    EXPECT_EQ(bytes, support::toBin(BoundingBox<int>(1, -2, 3, 4)));
    support::expectEveryPrefixThrows<BoundingBox<int>>(bytes);
    EXPECT_EQ("rkml::BoundingBox::fromBin( .. ) - size of value_type is incorrect",
        messageOf([&] { support::fromBin(box, support::hex("08000000 01000000 02000000 03000000 04000000")); }));
}
