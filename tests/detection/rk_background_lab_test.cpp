#include <gtest/gtest.h>

#include "detection/rk_background_fixture.h"

#include <memory>

namespace {

struct Lab {
    int l, a, b;
};

/// A model of one colour, where one step of a channel is `step` / 128 tenths.
void setModel(BackgroundModel& model, Lab mean, int step = 128)
{
    model.setChannel(0, mean.l, step);
    model.setChannel(1, mean.a, step);
    model.setChannel(2, mean.b, step);
}

void setPixel(ByteImage& image, size_t pixel, Lab value)
{
    image.data[4 * pixel] = (uint8_t)value.l;
    image.data[4 * pixel + 1] = (uint8_t)value.a;
    image.data[4 * pixel + 2] = (uint8_t)value.b;
}

std::unique_ptr<ByteImage> frameOf(Lab value, size_t differing, Lab other)
{
    auto image = std::make_unique<ByteImage>(10, 10, 4);
    for (size_t i = 0; i < 100; ++i)
        setPixel(*image, i, i < differing ? other : value);
    return image;
}

} // namespace

// Strength of lightness by distance in tenths: 255 - 255 / (d / 10)^2, rounded: 13: 105, 14: 125, 15: 142, 16: 156,
// 19: 185, 20: 192, 100: 255. Up to 63 (distance 11: 45) a pixel is not strong.
TEST(BackgroundLab, DisturbanceSetsTheNoiseOfTheChroma)
{
    struct {
        int strong;
        int distance;
        int lightness;
        int minStdev;
    } const cases[] = {
        {70, 16, 150, 20}, {69, 16, 150, 10}, {50, 20, 150, 20}, {49, 20, 150, 10}, {50, 19, 150, 10}, // ratio 0.5, average 191
        {20, 14, 150, 10}, {20, 13, 150, 5},                                                           // ratio 0.2, average 114
        {100, 11, 150, 5},                                                // all differ, none strongly
        {0, 0, 115, 5}, {0, 0, 114, 10}, {0, 0, 236, 5}, {0, 0, 237, 10}, // the calm frame asks the lightness
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::Message() << c.strong << " pixels at " << c.distance << ", lightness " << c.lightness);
        BackgroundModel model(10, 10, 2);
        setModel(model, {c.lightness, 150, 150});
        auto const image = frameOf({c.lightness, 150, 150}, (size_t)c.strong, {c.lightness + c.distance, 150, 150});
        ByteImage mask(10, 10, 1, 1);
        EXPECT_EQ(1, Comparison(&model, image.get(), &mask).result);
        for (size_t channel : {1, 2}) {
            EXPECT_EQ(c.minStdev, model.at(channel, 99).min_stdev);
            EXPECT_EQ(c.minStdev * c.minStdev, model.at(channel, 99).min_variance);
        }
        EXPECT_EQ(15, model.at(0, 99).min_stdev);
    }
}

TEST(BackgroundLab, WeighsChromaAgainstLightness)
{
    BackgroundModel model(4, 1, 2);
    setModel(model, {200, 150, 150});
    ByteImage image(4, 1, 4);
    setPixel(image, 0, {210, 140, 160}); // ten tenths everywhere: background
    setPixel(image, 1, {211, 150, 150}); // not strong
    setPixel(image, 2, {200, 170, 138}); // min(63, 177) * 0.8 + 255 * 0.2 = 101.4; 153.6
    setPixel(image, 3, {100, 170, 150});
    ByteImage mask(4, 1, 1, 1);
    mask.data[3] = 0;
    Comparison const calm(&model, &image, &mask);
    EXPECT_EQ((std::vector<uint8_t>{0, 9, 153, 0}), calm.foreground); // 255 - (255 * 0.8 + 210 * 0.2) = 9
    EXPECT_EQ(2u, calm.count);
    EXPECT_EQ(5, model.at(1, 3).min_stdev); // a masked pixel keeps its setting

    setModel(model, {150, 150, 150});
    for (size_t i = 0; i < 4; ++i)
        setPixel(image, i, {250, 150, 150}); // lightness fits nowhere: 255 - 255 * 0.9 = 25.5
    EXPECT_EQ(std::vector<uint8_t>(4, 25), Comparison(&model, &image).foreground);
}

TEST(BackgroundLab, ShadowKeepsTheChromaAndIsNotNeutral)
{
    // At ratio 0.75 the squared chroma distance must be below 73.917 - 68.333 * 0.75 = 22.67.
    struct {
        char const* why;
        Lab mean;
        Lab pixel;
        bool shadow;
    } const cases[] = {
        {"distance 20", {200, 150, 150}, {150, 154, 152}, true},
        {"distance 25", {200, 150, 150}, {150, 154, 153}, false},
        {"neutral", {200, 137, 117}, {150, 137, 117}, false},
        {"just not neutral in a", {200, 138, 127}, {150, 138, 127}, true},
        {"just not neutral in b", {200, 127, 116}, {150, 127, 116}, true},
        {"too dark", {200, 150, 150}, {135, 150, 150}, false},
        {"dark", {200, 150, 150}, {136, 150, 150}, true},
        {"bright", {250, 150, 150}, {231, 150, 150}, true},
        {"too bright", {250, 150, 150}, {232, 150, 150}, false},
        {"hardly darker", {200, 150, 150}, {197, 150, 150}, true},
        {"ratio 0.99", {200, 150, 150}, {198, 150, 150}, false},
    };
    for (auto const& c : cases) {
        BackgroundModel model(4, 1, 2);
        setModel(model, c.mean, 1280); // two steps are twenty tenths already: everything here differs
        ByteImage image(4, 1, 4);
        for (size_t i = 0; i < 4; ++i)
            setPixel(image, i, c.pixel);
        Comparison const compared(&model, &image);
        EXPECT_EQ(c.shadow ? 0u : 4u, compared.count) << c.why;
        EXPECT_EQ(c.shadow, compared.foreground[3] == 0) << c.why;
    }
}
