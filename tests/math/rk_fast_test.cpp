#include <gtest/gtest.h>

#include "math/rk_fast.h"

// Every root r and both neighbours of its square: a rounding slip shows at r*r - 1 and r*r.
TEST(FastSqrt, IsTheRootRoundedDown)
{
    for (int32_t root = 1; root <= 46340; ++root) {
        int32_t const square = root * root;
        ASSERT_EQ(root, rk_fast_sqrt(square)) << square;
        ASSERT_EQ(root - 1, rk_fast_sqrt(square - 1)) << square - 1;
    }
    EXPECT_EQ(0, rk_fast_sqrt(0));
    EXPECT_EQ(46340, rk_fast_sqrt(INT32_MAX)); // 46341 squared is above 2^31 - 1
    EXPECT_EQ(0, rk_fast_sqrt(-1));
    EXPECT_EQ(0, rk_fast_sqrt(INT32_MIN));
}

// The degree is truncated and 1 is added. The factor 57.2957802 is a little above 180/pi, so 45, 90 and 180 degrees come
// out just above the whole number, while the added turn is a little short, so that 270 comes out just below.
TEST(Unwrap, CountsDegreesFromOne)
{
    struct {
        int32_t dx, dy;
        uint32_t degrees;
    } const cases[] = {
        {0, 0, 1}, {100, 0, 1}, {100, 100, 46}, {0, 100, 91}, {-100, 0, 181}, {0, -1, 270}, {1, -1, 315}, {1000, -1, 360},
        {1000, 17, 1}, {1000, 18, 2}, // atan 0.018 = 1.03 degrees
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.degrees, rk_unwrap(c.dx, c.dy)) << c.dx << ", " << c.dy;
}
