#include <gtest/gtest.h>

#include "math/rk_bbox.h"
#include "math/rk_geometry.h"

TEST(Bbox, OverlapIsTheSharedArea)
{
    rk_bbox const box = {10, 20, 30, 40};
    struct {
        char const* why;
        rk_bbox other;
        uint32_t area;
    } const cases[] = {
        {"inside", {15, 25, 2, 3}, 6},
        {"a corner", {38, 58, 10, 10}, 4},
        {"side by side", {40, 20, 5, 40}, 0},
        {"without extent", {15, 25, 0, 0}, 0},
        {"reaching beyond 32 bits", {30, 50, UINT32_MAX, UINT32_MAX}, 100},
    };
    for (auto const& c : cases) {
        EXPECT_EQ(c.area, rk_bbox_overlap(&box, &c.other)) << c.why;
        EXPECT_EQ(c.area, rk_bbox_overlap(&c.other, &box)) << c.why;
    }
}

static void expectBox(rk_bbox const& want, rk_bbox const& got)
{
    EXPECT_EQ(want.x, got.x);
    EXPECT_EQ(want.y, got.y);
    EXPECT_EQ(want.width, got.width);
    EXPECT_EQ(want.height, got.height);
}

TEST(Bbox, RestrictKeepsSidesOnTheLastPixel)
{
    struct {
        char const* why;
        rk_bbox before, after;
    } const cases[] = {
        {"one too wide", {90, 40, 10, 9}, {90, 40, 9, 9}},
        {"begins on the last column", {99, 0, 5, 5}, {99, 0, 0, 5}},
        {"begins beyond", {100, 200, 5, 5}, {100, 200, 0, 0}},
        {"reaches beyond 32 bits", {90, 40, UINT32_MAX, UINT32_MAX}, {90, 40, 9, 9}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        rk_bbox box = c.before;
        EXPECT_EQ(1, rk_bbox_restrict(&box, 100, 50));
        expectBox(c.after, box);
    }
}

TEST(Bbox, InflateStopsAtZeroAndKeepsTheOtherSide)
{
    rk_bbox box = {3, 10, 20, 30};
    rk_bbox_inflate(&box, 7, 4, 5, 6);
    expectBox({0, 6, 28, 40}, box); // right side 23 + 5, bottom 40 + 6
}
