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
    }
}
