#include <gtest/gtest.h>

#include "math/rk_geometry.h"

TEST(Geometry, SegmentsCrossInWholePixelsAfterRounding)
{
    struct {
        char const* why;
        rk_segment a;
        rk_segment b;
        int crosses;
    } const cases[] = {
        {"one end point shared", {0, 0, 10, 0}, {10, 0, 10, 10}, 1},
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
