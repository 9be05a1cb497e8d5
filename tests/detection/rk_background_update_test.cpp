#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

#include <random>

TEST(BackgroundUpdate, FrameOfANewSizeStartsTheModelAnew)
{
    BackgroundModel model(8, 8, 0);
    ASSERT_EQ(1, model.learn(ByteImage(8, 8, 1, 10)));
    ByteImage const wide(9, 4, 1, std::vector<uint8_t>{1, 90, 200});
    ASSERT_EQ(1, model.learn(wide));
    EXPECT_EQ(9u, model.width);
    EXPECT_EQ(4u, model.height);
    Comparison const same(&model, &wide);
    EXPECT_EQ(1, same.result);
    EXPECT_EQ(0u, same.count);
    EXPECT_EQ(200, model.channel0[35].mean);
}

namespace {

/// One channel of one pixel, written down a second time and slowly, after the description of the method.
struct PlainPixel {
    int mean = 0, square = 0, inverse = 0;
    bool seen = false;

    void learn(int x, int weight)
    {
        if (!seen) {
            mean = x;
            square = x * x;
            seen = true;
            return;
        }
        mean = (mean * (128 - weight) + weight * x) / 128;
        square = (square * (128 - weight) + weight * x * x) / 128;
        int const variance = square - mean * mean;
        if (variance <= 15 * 15)
            return;
        int root = 0;
        while ((root + 1) * (root + 1) <= variance)
            ++root;
        inverse = 1280 / root;
    }

    int membership(int x) const
    {
        int const tenths = inverse * std::abs(x - mean) / 128;
        if (!seen || tenths <= 10)
            return 255;
        return tenths > 99 ? 0 : 25500 / (tenths * tenths);
    }
};

/// Values that stay near one, jump far, and sit at the limits.
uint8_t shapedValue(std::mt19937& random, size_t pixel)
{
    switch (random() % 8) {
    case 0:
        return (uint8_t)random();
    case 1:
        return random() % 2 ? 255 : 0;
    default:
        return (uint8_t)(pixel * 7 + random() % (1 + pixel % 60));
    }
}

struct PlainModel {
    size_t channels;
    std::vector<PlainPixel> pixels;

    int strength(rk_image const& image, size_t i) const
    {
        int sum = 0;
        size_t const used = channels == 4 ? 3 : 1;
        for (size_t c = 0; c < used; ++c)
            sum += pixels[channels * i + c].membership(image.data[channels * i + c]);
        return 255 - sum / (int)used;
    }
};

} // namespace

// The fast walk over bands and words must give what the plain definition gives, at sizes around the block of 64 bytes and
// the word of 8, with and without masks, for regions wiped and weights changed in between.
TEST(BackgroundCompare, WalkInBlocksEqualsThePlainDefinition)
{
    std::mt19937 random(20240607);
    struct {
        uint32_t width, height;
        int mode;
    } const shapes[] = {{4, 4, 0}, {13, 5, 0}, {16, 12, 0}, {67, 9, 0}, {5, 4, 1}, {8, 6, 1}, {33, 7, 1}};
    for (auto const& shape : shapes) {
        SCOPED_TRACE(testing::Message() << shape.width << "x" << shape.height << " mode " << shape.mode);
        uint32_t const channels = shape.mode ? 4 : 1;
        size_t const count = shape.width * shape.height;
        BackgroundModel model(shape.width, shape.height, shape.mode);
        PlainModel plain = {channels, std::vector<PlainPixel>(count * channels)};
        ByteImage image(shape.width, shape.height, channels), mask(shape.width, shape.height, 1);
        for (int round = 0; round < 60; ++round) {
            int const weight = round % 20 == 19 ? 1 : 12;
            rk_background_set_weight(&model, weight == 1 ? 0.01f : 0.1f);
            for (size_t i = 0; i < image.size; ++i)
                image.data[i] = shapedValue(random, i);
            for (size_t i = 0; i < count; ++i)
                mask.data[i] = random() % 4 ? (uint8_t)(1 + random() % 255) : 0;

            rk_image const* const used = round % 2 ? &mask : nullptr;
            std::vector<uint8_t> want(count);
            for (size_t i = 0; i < count; ++i)
                want[i] = used && !mask.data[i] ? 0 : (uint8_t)plain.strength(image, i);
            Comparison const got(&model, &image, used);
            ASSERT_EQ(want, got.foreground) << "round " << round;
            ASSERT_EQ(count - (size_t)std::count(want.begin(), want.end(), 0), got.count);

            ASSERT_EQ(1, rk_background_update(&model, shape.mode ? nullptr : &image, shape.mode ? &image : nullptr, mask.data));
            for (size_t i = 0; i < image.size; ++i)
                if (mask.data[i / channels])
                    plain.pixels[i].learn(image.data[i], weight);
            if (round % 16 == 15) {
                rk_bbox const region = {1, 1, 2, 3};
                rk_background_reset_region(&model, &region);
                for (size_t i = 0; i < plain.pixels.size(); ++i) {
                    size_t const x = i / channels % shape.width, y = i / channels / shape.width;
                    if (x >= 1 && x < 3 && y >= 1 && y < 4)
                        plain.pixels[i].seen = false;
                }
            }
        }
    }
}
