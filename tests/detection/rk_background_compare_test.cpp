#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

// Weight one half, 100 then 132: mean 116, standard deviation 16, so that 80 / 128 tenths are one step.
TEST(BackgroundCompare, GrayStrengthGrowsWithTheDistance)
{
    BackgroundModel model(4, 4, 0);
    rk_background_set_weight(&model, 0.5f);
    ByteImage const white(4, 4, 1, 255);
    EXPECT_EQ(0u, Comparison(&model, &white).count); // not seeded
    model.learn(ByteImage(4, 4, 1, 100));
    EXPECT_EQ(0u, Comparison(&model, &white).count); // no variance known yet
    model.learn(ByteImage(4, 4, 1, 132));

    ByteImage const image(
        4, 4, 1, std::vector<uint8_t>{116, 133, 134, 98, 255, 0, 99, 116, 116, 116, 116, 116, 116, 116, 116, 255});
    // 17 steps are 10.6 tenths, 18 are 11.25 (210), 139 are 86.9 (255 / 8.6^2 = 3.4), 116 are 72.5 (255 / 7.2^2 = 4.9)
    std::vector<uint8_t> want = {0, 0, 45, 45, 252, 251, 0, 0, 0, 0, 0, 0, 0, 0, 0, 252};
    Comparison const compared(&model, &image);
    EXPECT_EQ(want, compared.foreground);
    EXPECT_EQ(5u, compared.count);

    ByteImage mask(4, 4, 1, 1);
    mask.data[4] = 0;
    want[4] = 0;
    Comparison const masked(&model, &image, &mask);
    EXPECT_EQ(want, masked.foreground);
    EXPECT_EQ(4u, masked.count);
}

TEST(BackgroundShadows, GradesHowEvenlyAPixelWasDarkened)
{
    BackgroundModel model(10, 1, 1);
    for (size_t channel = 0; channel < 3; ++channel)
        model.setChannel(channel, 200, 85);
    // Of a pixel: t is 1 / 30 of the sum of its shares, d1 and d2 are the differences of two shares.
    // 100 100 100: all by a half. 100 104 100: t = 0.050667, d1 = d2 = 0.02: 0.60526 * 255 = 154.3.
    // 108 100 100: t = 0.051333, d2 = 0.04: 0.22078 * 255 = 56.3. 120 100 100: d2 = 0.1 is no shadow.
    // 104 100 80: t = 0.047333, d1 = 0.1 is too much, d2 = 0.02: 0.57746 * 255 = 147.3. 100 104 200: red is not darker.
    // 16 17 17: blue is too dark to tell. 17 17 18: t = 0.0086667, d1 = 0.005: 0.42308 * 255 = 107.9. The ninth is masked.
    ByteImage const image(10, 1, 4,
        std::vector<uint8_t>{100, 100, 100, 0, 100, 104, 100, 0, 108, 100, 100, 0, 120, 100, 100, 0, 104, 100, 80, 0, 100, 104,
            200, 0, 16, 17, 17, 0, 17, 17, 18, 0, 100, 104, 100, 0, 100, 104, 100, 0});
    ByteImage mask(10, 1, 1, 1), shadows(10, 1, 1, 3);
    mask.data[8] = 0;
    ASSERT_EQ(1, rk_background_compare_shadows(&model, &image, &mask, &shadows));
    EXPECT_EQ((std::vector<uint8_t>{255, 154, 56, 255, 147, 255, 255, 107, 255, 154}), shadows.bytes());
}
