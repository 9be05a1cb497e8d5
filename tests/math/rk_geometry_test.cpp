#include <gtest/gtest.h>

#include "math/rk_geometry.h"

#include <cmath>

TEST(Geometry, SegmentsCrossInWholePixelsAfterRounding)
{
    struct {
        char const* why;
        rk_segment a;
        rk_segment b;
        int crosses;
    } const cases[] = {
        {"a cross", {0, 0, 10, 10}, {0, 10, 10, 0}, 1},
        {"one end point shared", {0, 0, 10, 0}, {10, 0, 10, 10}, 1},
        {"apart", {0, 0, 4, 4}, {10, 0, 6, 3}, 0},
        {"parallel", {0, 0, 10, 0}, {0, 1, 10, 1}, 0},
        {"on one line, overlapping", {0, 0, 10, 0}, {5, 0, 15, 0}, 0},
        {"half a pixel beyond the end rounds into it", {0, 0, 10, 0}, {10, -5, 9, 4}, 1}, // at x = 9.44
        {"4.5 rounds up, past the end", {0, 0, 4, 0}, {4, -1, 5, 1}, 0},
        {"-4.5 rounds to -4, into the end", {-4, 0, 0, 0}, {-4, -1, -5, 1}, 1},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.crosses, rk_intersects(&c.a, &c.b)) << c.why;
        EXPECT_EQ(0, rk_intersects(&c.a, nullptr)) << c.why;
    }
}

TEST(Geometry, CrossingOfLinesReachesBeyondTheSegments)
{
    rk_point point = {7, 7};
    rk_segment a, b;
    rk_set_segment(&a, 0, 0, 1, 1);
    rk_set_segment(&b, 10, 0, 9, 1);
    ASSERT_EQ(1, rk_get_intersection(&a, &b, &point));
    EXPECT_EQ(5, point.x);
    EXPECT_EQ(5, point.y);
    EXPECT_EQ(0, rk_get_intersection(&a, &a, &point));
    EXPECT_EQ(5, point.x);

    // Nearly parallel lines that meet 4e9 pixels away.
    rk_set_segment(&a, 0, 0, 2000000000, 0);
    rk_set_segment(&b, 0, 2, 2000000000, 1);
    ASSERT_EQ(1, rk_get_intersection(&a, &b, &point));
    EXPECT_EQ(2147483647, point.x);
    EXPECT_EQ(0, point.y);
}

TEST(Geometry, ColinearContainsLooksAtRangesOnly)
{
    rk_segment const diagonal = {10, 10, 0, 0};
    rk_point const offTheLine = {10, 0}, outside = {11, 5};
    EXPECT_EQ(1, rk_colinear_contains(&diagonal, &offTheLine));
    EXPECT_EQ(0, rk_colinear_contains(&diagonal, &outside));
    EXPECT_EQ(0, rk_colinear_contains(nullptr, &outside));
}

TEST(Geometry, DistancesAndHeadings)
{
    rk_point const origin = {0, 0}, point = {-3, 4}, left = {-7, 0};
    rk_fpoint const half = {0.5f, 0.5f};
    EXPECT_EQ(5.0f, rk_distance_to_point(&origin, &point));
    EXPECT_EQ(7.0f, rk_distance_to_point(&left, &origin));
    EXPECT_EQ(2.5f, rk_distance_to(&half, 2.0f, -1.5f));
    EXPECT_EQ(static_cast<float>(std::atan2(4.0, -3.0)), rk_angle_to_point(&origin, &point));
}

TEST(Geometry, EllipseHasItsFociOnTheLongerAxis)
{
    rk_ellipse ellipse;
    rk_fpoint const center = {50.0f, 20.0f};
    rk_init_ellipse(&ellipse, &center, 10.0f, 6.0f); // sqrt(25 - 9) = 4
    EXPECT_EQ(46.0f, ellipse.focus1_x);
    EXPECT_EQ(54.0f, ellipse.focus2_x);
    EXPECT_EQ(20.0f, ellipse.focus1_y);
    EXPECT_EQ(1, rk_ellipse_contains(&ellipse, 55.0f, 20.0f)) << "the border";
    EXPECT_EQ(1, rk_ellipse_contains(&ellipse, 50.0f, 23.0f)) << "the border, 5 from either focus";
    EXPECT_EQ(0, rk_ellipse_contains(&ellipse, 50.0f, 23.5f));
    EXPECT_EQ(0, rk_ellipse_contains(&ellipse, 55.5f, 20.0f));

    rk_init_ellipse(&ellipse, &center, 6.0f, 10.0f);
    EXPECT_EQ(10.0f, ellipse.major);
    EXPECT_EQ(6.0f, ellipse.minor);
    EXPECT_EQ(50.0f, ellipse.focus1_x);
    EXPECT_EQ(16.0f, ellipse.focus1_y);
    EXPECT_EQ(24.0f, ellipse.focus2_y);

    rk_init_ellipse(&ellipse, &center, 8.0f, 8.0f);
    EXPECT_EQ(50.0f, ellipse.focus1_x);
    EXPECT_EQ(50.0f, ellipse.focus2_x);
    EXPECT_EQ(1, rk_ellipse_contains(&ellipse, 50.0f, 24.0f));
    EXPECT_EQ(0, rk_ellipse_contains(&ellipse, 53.0f, 23.0f));
}
