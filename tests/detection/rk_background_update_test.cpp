#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

#include <random>

TEST(BackgroundUpdate, RefusesFramesThatDoNotSuitAndLearnsNothingOfThem)
{
    ByteImage const gray(5, 4, 1, 50), colour(5, 4, 4, 50), otherGray(4, 5, 1, 50), narrow(3, 9, 1, 50), flat(9, 3, 1, 50);
    ByteImage const smallColour(4, 3, 4, 50);
    std::vector<uint8_t> const all(64, 255);
    rk_image empty = {nullptr, 5, 4, 1, 0};
    struct {
        char const* why;
        int mode;
        uint32_t edges;
        rk_image const* gray;
        rk_image const* colour;
        bool mask;
    } const cases[] = {
        {"no mask", 0, 0, &gray, nullptr, false},
        {"gray model, no gray", 0, 0, nullptr, &colour, true},
        {"gray model, gray of four channels", 0, 0, &colour, nullptr, true},
        {"gray without data", 0, 0, &empty, nullptr, true},
        {"colour model, no colour", 1, 0, &gray, nullptr, true},
        {"colour model, colour of one channel", 2, 0, nullptr, &gray, true},
        {"edges want gray", 1, 1, nullptr, &colour, true},
        {"two sizes", 1, 0, &otherGray, &colour, true},
        {"three columns", 0, 0, &narrow, nullptr, true},
        {"three rows", 0, 0, &flat, nullptr, true},
        {"three rows of colour", 1, 0, nullptr, &smallColour, true},
        {"unknown mode", -1, 0, &gray, &colour, true},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        BackgroundModel model(5, 4, c.mode);
        model.track_edges = c.edges;
        EXPECT_EQ(0, rk_background_update(&model, c.gray, c.colour, c.mask ? all.data() : nullptr));
        EXPECT_EQ(5u, model.width);
        EXPECT_EQ(4u, model.height);
        EXPECT_EQ(255, model.channel0[0].unset);
    }
    EXPECT_EQ(0, rk_background_update(nullptr, &gray, &colour, all.data()));
}

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

TEST(BackgroundUpdate, ColourGoesToItsChannelsAndMaskedPixelsStay)
{
    BackgroundModel model(4, 4, 1);
    ByteImage const gray(4, 4, 1, 77), colour(4, 4, 4, std::vector<uint8_t>{10, 20, 30, 40});
    std::vector<uint8_t> mask(16, 1);
    mask[6] = 0;
    ASSERT_EQ(1, rk_background_update(&model, &gray, &colour, mask.data()));
    for (size_t channel = 0; channel < 3; ++channel) {
        EXPECT_EQ(10 * (int)channel + 10, model.at(channel, 5).mean);
        EXPECT_EQ(255, model.at(channel, 6).unset);
    }
    rk_background_set_weight(&model, 0.0f); // frozen
    ASSERT_EQ(1, model.learn(ByteImage(4, 4, 4, 255)));
    EXPECT_EQ(10, model.channel0[5].mean);
    EXPECT_EQ(255, model.channel0[6].mean);
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
