#include <gtest/gtest.h>

#include "math/rkml_ClipBox.h"

using Box = rkml::BoundingBox<int>;

TEST(ClipBox, KeepsWhatLiesInThePicture)
{
    struct {
        char const* why;
        Box box, want;
    } const cases[] = {
        {"up to the far corner", {90, 40, 10, 10}, {90, 40, 10, 10}},
        {"over the near corner: the size falls by as much", {-2, -3, 10, 10}, {0, 0, 8, 7}},
        {"over the far corner", {95, 45, 10, 10}, {95, 45, 5, 5}},
        {"wholly behind: at the edge", {120, 70, 10, 10}, {100, 50, 0, 0}},
        {"a negative size", {10, 10, -5, -5}, {10, 10, 0, 0}},
        {"sums beyond 32 bits", {2147483000, 10, 2147483000, 2147483647}, {100, 10, 0, 40}},
    };
    for (auto const& c : cases)
        EXPECT_TRUE(c.want == rkml::clipBox(c.box, 100, 50)) << c.why;
}
