#include <gtest/gtest.h>

#include "image/rk_sobel.h"
#include "image/rk_image.h"

#include <vector>

TEST(RkSobel, DifferencesOfSidesAndAZeroRim)
{
    // 1 2 3 4 / 5 6 7 8 / 9 10 11 13, so that right minus left and top minus bottom differ from pixel to pixel.
    unsigned char bytes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13};
    rk_image image = {bytes, 4, 3, 1, 12};
    std::vector<rk_magnitude> out(12, rk_magnitude{77, 77});
    ASSERT_TRUE(rk_sobel_image(&image, out.data()));
    for (size_t i = 0; i < out.size(); ++i) {
        // (1, 1): (3 + 14 + 11) - (1 + 10 + 9) = 8, (1 + 4 + 3) - (9 + 20 + 11) = -32
        // (2, 1): (4 + 16 + 13) - (2 + 12 + 10) = 9, (2 + 6 + 4) - (10 + 22 + 13) = -33
        EXPECT_EQ(i == 5 ? 8 : i == 6 ? 9 : 0, out[i].dx) << i;
        EXPECT_EQ(i == 5 ? -32 : i == 6 ? -33 : 0, out[i].dy) << i;
    }
}
