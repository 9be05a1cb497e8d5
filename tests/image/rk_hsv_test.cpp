#include <gtest/gtest.h>

#include "image/rk_hsv.h"

#include <cmath>
#include <limits>
#include <vector>

TEST(RkHsv, HueOfEverySector)
{
    struct {
        unsigned char r, g, b;
        float h, s, v;
    } const cases[] = {
        {0, 0, 0, 0, 0, 0}, {51, 51, 51, 0, 0, 0.2f}, {255, 0, 0, 0, 1, 1}, {255, 255, 0, 60, 1, 1}, {0, 255, 0, 120, 1, 1},
        {0, 255, 255, 180, 1, 1}, {0, 0, 255, 240, 1, 1}, {255, 0, 255, 300, 1, 1}, // the negative hue, turned
    };
    for (auto const& c : cases) {
        float h, s, v;
        ASSERT_TRUE(rk_rgb_to_hsv(c.r, c.g, c.b, &h, &s, &v));
        EXPECT_EQ(c.h, h);
        EXPECT_EQ(c.s, s);
        EXPECT_EQ(c.v, v);
    }
}

TEST(RkHsv, BytesOfEverySectorAndBeyond)
{
    float const none = std::numeric_limits<float>::quiet_NaN();
    struct {
        char const* why;
        float h, s, v;
        int result;
        std::vector<int> rgb;
    } const cases[] = {
        {"red", 0, 1, 1, 1, {255, 0, 0}},
        {"between red and yellow: 0.5 * 255 is cut", 30, 1, 1, 1, {255, 127, 0}},
        {"a full turn is red", 360, 1, 1, 1, {255, 0, 0}},
        {"beyond: v in all three", 420, 1, 0.5f, 1, {127, 127, 127}},
        {"too bright is held, too much saturation does not go below 0", 0, 2, 3, 1, {255, 0, 0}},
        {"negative hue", -1, 1, 1, 0, {9, 9, 9}},
        {"no number", none, 1, 1, 0, {9, 9, 9}},
    };
    for (auto const& c : cases) {
        unsigned char r = 9, g = 9, b = 9;
        EXPECT_EQ(c.result, rk_hsv_to_rgb(c.h, c.s, c.v, &r, &g, &b)) << c.why;
        EXPECT_EQ(c.rgb, (std::vector<int>{r, g, b})) << c.why;
    }
}
