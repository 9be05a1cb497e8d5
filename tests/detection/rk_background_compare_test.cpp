#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

TEST(BackgroundCompare, RefusesShapesThatDoNotFitAndWritesNothing)
{
    BackgroundModel gray(4, 4, 0), colour(4, 4, 1);
    ByteImage const image1(4, 4, 1), image4(4, 4, 4), wide(8, 2, 1), other(5, 4, 1);
    rk_image const hollow = {nullptr, 4, 4, 1, 16};
    ByteImage foreground(4, 4, 1, 9), small(3, 4, 1, 9);
    struct {
        char const* why;
        rk_background* model;
        rk_image const* image;
        rk_image const* mask;
        rk_image* foreground;
    } const cases[] = {
        {"no model", nullptr, &image1, nullptr, &foreground},
        {"no image", &gray, nullptr, nullptr, &foreground},
        {"no foreground", &gray, &image1, nullptr, nullptr},
        {"gray model, four channels", &gray, &image4, nullptr, &foreground},
        {"colour model, one channel", &colour, &image1, nullptr, &foreground},
        {"as many pixels, other shape", &gray, &wide, nullptr, &foreground},
        {"image without bytes", &gray, &hollow, nullptr, &foreground},
        {"mask too large", &gray, &image1, &other, &foreground},
        {"foreground too small", &gray, &image1, nullptr, &small},
    };
    for (auto const& c : cases) {
        uint32_t count = 5;
        EXPECT_EQ(0, rk_background_compare(c.model, c.image, c.mask, c.foreground, &count)) << c.why;
        EXPECT_EQ(5u, count) << c.why;
        EXPECT_EQ(std::vector<uint8_t>(16, 9), foreground.bytes()) << c.why;
    }
    EXPECT_EQ(0, rk_background_compare(&gray, &image1, nullptr, &foreground, nullptr));
}

TEST(BackgroundCompare, UnknownModeGivesNoForeground)
{
    BackgroundModel model(4, 4, 3);
    ByteImage const image(4, 4, 4, 200);
    Comparison const compared(&model, &image);
    EXPECT_EQ(0, compared.result);
    EXPECT_EQ(0u, compared.count);
    EXPECT_EQ(std::vector<uint8_t>(16, 0), compared.foreground);
}

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

TEST(BackgroundCompare, ColourStrengthIsTheMeanOfThreeMemberships)
{
    BackgroundModel model(4, 1, 1);
    model.setChannel(0, 100, 128); // a step is a tenth
    model.setChannel(1, 110, 128);
    model.setChannel(2, 120, 128);
    ByteImage const image(4, 1, 4,
        std::vector<uint8_t>{
            110, 120, 130, 0, // ten tenths each: background
            111, 110, 120, 9, // (210 + 255 + 255) / 3 = 240
            100, 122, 100, 0, // (255 + 177 + 63) / 3 = 165
            200, 210, 220, 0, // nothing fits
        });
    Comparison const compared(&model, &image);
    EXPECT_EQ((std::vector<uint8_t>{0, 15, 90, 255}), compared.foreground);
    EXPECT_EQ(3u, compared.count);
}

TEST(BackgroundShadows, GradesHowEvenlyAPixelWasDarkened)
{
    BackgroundModel model(10, 1, 1);
    for (size_t channel = 0; channel < 3; ++channel)
        model.setChannel(channel, 200, 85);
    ByteImage const image(10, 1, 4,
        std::vector<uint8_t>{
            100,
            100,
            100,
            0, // all by a half
            100,
            104,
            100,
            0, // t = 1.52 / 30 = 0.050667, d1 = d2 = 0.02: 0.60526 * 255 = 154.3
            108,
            100,
            100,
            0, // t = 1.54 / 30 = 0.051333, d2 = 0.04: 0.22078 * 255 = 56.3
            120,
            100,
            100,
            0, // t = 0.0533, d2 = 0.1: not a shadow
            104,
            100,
            80,
            0, // t = 1.42 / 30 = 0.047333, d1 = 0.1 is too much, d2 = 0.02: 0.57746 * 255 = 147.3
            100,
            104,
            200,
            0, // red is not darker
            16,
            17,
            17,
            0, // blue is too dark to tell
            17,
            17,
            18,
            0, // t = 0.26 / 30 = 0.0086667, d1 = 0.005: 0.42308 * 255 = 107.9
            100,
            104,
            100,
            0, // masked
            100,
            104,
            100,
            0,
        });
    ByteImage mask(10, 1, 1, 1), shadows(10, 1, 1, 3);
    mask.data[8] = 0;
    ASSERT_EQ(1, rk_background_compare_shadows(&model, &image, &mask, &shadows));
    EXPECT_EQ((std::vector<uint8_t>{255, 154, 56, 255, 147, 255, 255, 107, 255, 154}), shadows.bytes());

    BackgroundModel lab(10, 1, 2), gray(10, 1, 0);
    ByteImage const shortMask(9, 1, 1), tall(5, 2, 4);
    EXPECT_EQ(0, rk_background_compare_shadows(&lab, &image, nullptr, &shadows));
    EXPECT_EQ(0, rk_background_compare_shadows(&gray, &image, nullptr, &shadows));
    EXPECT_EQ(0, rk_background_compare_shadows(&model, &image, &shortMask, &shadows));
    EXPECT_EQ(0, rk_background_compare_shadows(&model, &tall, nullptr, &shadows));
    EXPECT_EQ(0, rk_background_compare_shadows(&model, &mask, nullptr, &shadows));
    EXPECT_EQ(0, rk_background_compare_shadows(&model, &image, nullptr, nullptr));
}
